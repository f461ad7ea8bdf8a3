// The Vantry help-desk client for .NET Framework 4.7.2 and later, and .NET, over vantry.dll (64-bit).
//
//     using (var client = new Vantry.Client("https://helpdesk.example.com/helpdesk/rest", "technician", "secret"))
//     {
//         client.OnCertificate((host, der) => Ask(host, new X509Certificate2(der)));
//         string ticket = await client.CreateTicketAsync("42", EntityType.Client, "Printer", "It is on fire.");
//     }
//
// A failure is an exception: VantryException, or what a callback has thrown.
using System;
using System.Collections.Generic;
using System.Runtime.ExceptionServices;
using System.Runtime.InteropServices;
using System.Text;
using System.Threading.Tasks;
using Microsoft.Win32.SafeHandles;

namespace Vantry
{
    /// <summary>An operation or a setting that failed; the message is a text to show.</summary>
    public sealed class VantryException : Exception
    {
        public VantryException(int status, string message) : base(message) { Status = status; }

        /// <summary>The server's HTTP code or a vantry_status.</summary>
        public int Status { get; }
    }

    public enum EntityType
    {
        Asset = 0,
        Client = 1
    }

    public enum LogLevel
    {
        Trace = 0,
        Debug = 1,
        Info = 2,
        Warn = 3,
        Error = 4,
        Fatal = 5
    }

    /// <summary>One ticket of a list; the server's short forms of its texts.</summary>
    public sealed class Ticket
    {
        internal Ticket(string id, string name, string detail, string clientName)
        {
            Id = id;
            Name = name;
            Detail = detail;
            ClientName = clientName;
        }

        public string Id { get; }
        public string Name { get; }
        public string Detail { get; }
        public string ClientName { get; }
    }

    /// <summary>How far an exchange is, in bytes; ToReceive is 0 while that is not known.</summary>
    public struct Progress
    {
        public ulong Sent;
        public ulong ToSend;
        public ulong Received;
        public ulong ToReceive;
    }

    /// <summary>
    /// The process's one client: there is one object at a time. Operations may be called on any thread; one waits until
    /// the one before it is through. An Async method runs its operation on a thread of the pool.
    /// Callbacks run on the thread of the operation. One that throws has answered "no", and the operation throws its
    /// exception on. From within a callback an operation fails with status 604.
    /// </summary>
    public sealed class Client : IDisposable
    {
        public Client(string endpoint, string userName, string password)
        {
            using (var memory = new Memory())
            {
                Check(Native.vantry_set_endpoint(memory.Text(endpoint)));
                Check(Native.vantry_set_credentials(memory.Text(userName), memory.Text(password)));
            }
        }

        /// <summary>Has the library forget the callbacks and close the log file.</summary>
        public void Dispose()
        {
            OnCertificate(null);
            OnProgress(null);
            OnLog(LogLevel.Fatal, null);
            LogTo(null, LogLevel.Fatal);
        }

        /// <summary>
        /// Sets what is told the server's name and its certificate (DER), and tells whether it is trusted. Null: every
        /// server is whose certificate passes the system's own validation.
        /// </summary>
        public void OnCertificate(Func<string, byte[], bool> callback)
        {
            Native.CertificateCallback ask = (IntPtr user, IntPtr host, IntPtr der, UIntPtr size, ref int trust) =>
            {
                bool trusted = false;
                Guard(() =>
                {
                    var bytes = new byte[(int)size];
                    Marshal.Copy(der, bytes, 0, bytes.Length);
                    trusted = callback(Text(host), bytes);
                });
                trust = trusted ? 1 : 0;
            };
            Install(ref installedCertificate, callback == null ? null : ask,
                set => Native.vantry_set_certificate_callback(set, IntPtr.Zero));
        }

        /// <summary>
        /// Sets what is told the progress, every some 20 ms while an operation waits for the server, and tells whether
        /// to go on.
        /// </summary>
        public void OnProgress(Func<Progress, bool> callback)
        {
            Native.ProgressCallback tell =
                (IntPtr user, ulong sent, ulong toSend, ulong received, ulong toReceive, ref int giveUp) =>
            {
                bool goOn = false;
                var progress = new Progress
                {
                    Sent = sent,
                    ToSend = toSend,
                    Received = received,
                    ToReceive = toReceive
                };
                Guard(() => goOn = callback(progress));
                giveUp = goOn ? 0 : 1;
            };
            Install(ref installedProgress, callback == null ? null : tell,
                set => Native.vantry_set_progress_callback(set, IntPtr.Zero));
        }

        /// <summary>Sets what takes the log's lines of this level and above.</summary>
        public void OnLog(LogLevel level, Action<LogLevel, string> callback)
        {
            Native.LogCallback handOver =
                (user, lineLevel, line) => Guard(() => callback((LogLevel)lineLevel, Text(line)));
            Install(ref installedLog, callback == null ? null : handOver,
                set => Native.vantry_set_log_callback(set, IntPtr.Zero, (int)level));
        }

        /// <summary>Appends the log's lines of this level and above to a file; null: to none.</summary>
        public void LogTo(string path, LogLevel level)
        {
            using (var memory = new Memory())
            {
                Check(Native.vantry_set_log_file(path == null ? IntPtr.Zero : memory.Text(path), (int)level));
            }
        }

        public void CreateSession() => Run(Native.vantry_create_session).Dispose();

        public void CloseSession() => Run(Native.vantry_close_session).Dispose();

        /// <summary>Gives the id of the new ticket.</summary>
        public string CreateTicket(string entityId, EntityType entityType, string subject, string detail)
        {
            using (var memory = new Memory())
            {
                var ticket = new Native.NewTicket
                {
                    Size = Size<Native.NewTicket>(),
                    EntityId = memory.Text(entityId),
                    EntityType = (int)entityType,
                    Subject = memory.Text(subject),
                    Detail = memory.Text(detail)
                };
                using (Result result = Run(() => Native.vantry_create_ticket(ref ticket)))
                {
                    return Text(Native.vantry_result_ticket_id(result));
                }
            }
        }

        /// <summary>Gives the id of the new note; the work time is in the server's unit.</summary>
        public string SaveTechNote(string ticketId, string text, uint workTime, bool isVisible)
        {
            using (var memory = new Memory())
            {
                var note = new Native.TechNote
                {
                    Size = Size<Native.TechNote>(),
                    TicketId = memory.Text(ticketId),
                    Text = memory.Text(text),
                    WorkTime = workTime,
                    IsVisible = isVisible ? 1 : 0
                };
                using (Result result = Run(() => Native.vantry_save_tech_note(ref note)))
                {
                    return Text(Native.vantry_result_note_id(result));
                }
            }
        }

        /// <summary>Attaches a file to the note that was saved last.</summary>
        public void SaveAttachment(string noteId, string fileName, byte[] data)
        {
            GCHandle pinned = GCHandle.Alloc(data, GCHandleType.Pinned);
            try
            {
                using (var memory = new Memory())
                {
                    var attachment = new Native.Attachment
                    {
                        Size = Size<Native.Attachment>(),
                        NoteId = memory.Text(noteId),
                        FileName = memory.Text(fileName),
                        Data = pinned.AddrOfPinnedObject(),
                        DataSize = (UIntPtr)data.Length
                    };
                    Run(() => Native.vantry_save_attachment(ref attachment)).Dispose();
                }
            }
            finally
            {
                pinned.Free();
            }
        }

        public List<Ticket> RequestTicketList(string entityId, EntityType entityType)
        {
            using (var memory = new Memory())
            {
                IntPtr id = memory.Text(entityId);
                using (Result result = Run(() => Native.vantry_request_ticket_list(id, (int)entityType)))
                {
                    var tickets = new List<Ticket>();
                    var entry = new Native.Ticket { Size = Size<Native.Ticket>() };
                    while (Native.vantry_result_ticket(result, (UIntPtr)tickets.Count, ref entry) == 0)
                    {
                        tickets.Add(new Ticket(
                            Text(entry.Id), Text(entry.Name), Text(entry.Detail), Text(entry.ClientName)));
                    }
                    return tickets;
                }
            }
        }

        public Task CreateSessionAsync() => Task.Run(() => CreateSession());

        public Task CloseSessionAsync() => Task.Run(() => CloseSession());

        public Task<string> CreateTicketAsync(string entityId, EntityType entityType, string subject, string detail) =>
            Task.Run(() => CreateTicket(entityId, entityType, subject, detail));

        public Task<string> SaveTechNoteAsync(string ticketId, string text, uint workTime, bool isVisible) =>
            Task.Run(() => SaveTechNote(ticketId, text, workTime, isVisible));

        public Task SaveAttachmentAsync(string noteId, string fileName, byte[] data) =>
            Task.Run(() => SaveAttachment(noteId, fileName, data));

        public Task<List<Ticket>> RequestTicketListAsync(string entityId, EntityType entityType) =>
            Task.Run(() => RequestTicketList(entityId, entityType));

        // What the library knows has to stay referenced, whoever forgets the client.
        private static Native.CertificateCallback installedCertificate;
        private static Native.ProgressCallback installedProgress;
        private static Native.LogCallback installedLog;

        // What a callback has thrown during the call that this thread is in.
        [ThreadStatic] private static ExceptionDispatchInfo thrown;

        // The callback that is replaced is forgotten when no call can run it any more.
        private static void Install<Callback>(ref Callback installed, Callback callback, Func<Callback, int> set)
        {
            int status = set(callback);
            if (status == 0)
            {
                installed = callback;
            }
            Check(status);
        }

        // No exception may leave a callback.
        private static void Guard(Action body)
        {
            try
            {
                body();
            }
            catch (Exception exception)
            {
                thrown = thrown ?? ExceptionDispatchInfo.Capture(exception);
            }
        }

        private static void ThrowOn()
        {
            ExceptionDispatchInfo exception = thrown;
            thrown = null;
            exception?.Throw();
        }

        private static void Check(int status)
        {
            ThrowOn();
            if (status != 0)
            {
                throw new VantryException(status, Text(Native.vantry_status_message(status)));
            }
        }

        private static Result Run(Func<Result> operation)
        {
            Result result = operation();
            try
            {
                ThrowOn();
                if (Native.vantry_result_succeeded(result) == 0)
                {
                    throw new VantryException(
                        Native.vantry_result_status(result), Text(Native.vantry_result_message(result)));
                }
                return result;
            }
            catch
            {
                result.Dispose();
                throw;
            }
        }

        private static UIntPtr Size<Struct>() => (UIntPtr)Marshal.SizeOf(typeof(Struct));

        private static string Text(IntPtr utf8)
        {
            int length = 0;
            while (Marshal.ReadByte(utf8, length) != 0)
            {
                ++length;
            }
            var bytes = new byte[length];
            Marshal.Copy(utf8, bytes, 0, length);
            return Encoding.UTF8.GetString(bytes);
        }
    }

    /// <summary>Texts in UTF-8 for the length of a call.</summary>
    internal sealed class Memory : IDisposable
    {
        private static readonly Encoding strict = new UTF8Encoding(false, true); // refuses a lone surrogate
        private readonly List<IntPtr> blocks = new List<IntPtr>();

        public IntPtr Text(string text)
        {
            if (text.IndexOf('\0') >= 0)
            {
                throw new ArgumentException("A text has a zero in it.");
            }
            byte[] bytes = strict.GetBytes(text + '\0');
            IntPtr block = Marshal.AllocHGlobal(bytes.Length);
            blocks.Add(block);
            Marshal.Copy(bytes, 0, block, bytes.Length);
            return block;
        }

        public void Dispose() => blocks.ForEach(Marshal.FreeHGlobal);
    }

    internal sealed class Result : SafeHandleZeroOrMinusOneIsInvalid
    {
        private Result() : base(true) { }

        protected override bool ReleaseHandle()
        {
            Native.vantry_result_free(handle);
            return true;
        }
    }

    internal static class Native
    {
        private const string Library = "vantry";

        [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
        public delegate void CertificateCallback(IntPtr user, IntPtr host, IntPtr der, UIntPtr size, ref int trust);

        [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
        public delegate void LogCallback(IntPtr user, int level, IntPtr text);

        [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
        public delegate void ProgressCallback(
            IntPtr user, ulong sent, ulong toSend, ulong received, ulong toReceive, ref int giveUp);

        [StructLayout(LayoutKind.Sequential)]
        public struct NewTicket
        {
            public UIntPtr Size;
            public IntPtr EntityId;
            public int EntityType;
            public IntPtr Subject;
            public IntPtr Detail;
        }

        [StructLayout(LayoutKind.Sequential)]
        public struct TechNote
        {
            public UIntPtr Size;
            public IntPtr TicketId;
            public IntPtr Text;
            public uint WorkTime;
            public int IsVisible;
        }

        [StructLayout(LayoutKind.Sequential)]
        public struct Attachment
        {
            public UIntPtr Size;
            public IntPtr NoteId;
            public IntPtr FileName;
            public IntPtr Data;
            public UIntPtr DataSize;
        }

        [StructLayout(LayoutKind.Sequential)]
        public struct Ticket
        {
            public UIntPtr Size;
            public IntPtr Id;
            public IntPtr Name;
            public IntPtr Detail;
            public IntPtr ClientName;
        }

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern IntPtr vantry_status_message(int status);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int vantry_set_endpoint(IntPtr endpoint);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int vantry_set_credentials(IntPtr userName, IntPtr password);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int vantry_set_certificate_callback(CertificateCallback callback, IntPtr user);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int vantry_set_log_callback(LogCallback callback, IntPtr user, int level);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int vantry_set_log_file(IntPtr path, int level);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int vantry_set_progress_callback(ProgressCallback callback, IntPtr user);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern Result vantry_create_session();

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern Result vantry_close_session();

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern Result vantry_create_ticket(ref NewTicket ticket);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern Result vantry_save_tech_note(ref TechNote note);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern Result vantry_save_attachment(ref Attachment attachment);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern Result vantry_request_ticket_list(IntPtr entityId, int entityType);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int vantry_result_status(Result result);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int vantry_result_succeeded(Result result);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern IntPtr vantry_result_message(Result result);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern IntPtr vantry_result_ticket_id(Result result);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern IntPtr vantry_result_note_id(Result result);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int vantry_result_ticket(Result result, UIntPtr index, ref Ticket ticket);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void vantry_result_free(IntPtr result);
    }
}
