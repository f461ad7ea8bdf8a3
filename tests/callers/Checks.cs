// What the job does not use of the binding: Checks ENDPOINT USER CLIENT LOG-FILE
using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Threading.Tasks;
using Vantry;

internal static class Checks
{
    // Prints what the operation has thrown, or of a VantryException its status.
    private static void Failing(string what, Action operation)
    {
        try
        {
            operation();
            Console.WriteLine($"{what}: nothing was thrown");
        }
        catch (VantryException exception)
        {
            Console.WriteLine($"{what}: {exception.Status}");
        }
        catch (InvalidOperationException exception)
        {
            Console.WriteLine($"{what}: {exception.Message}");
        }
    }

    private static void CheckLog(Client client, string password)
    {
        var lines = new List<string>();
        client.OnLog(LogLevel.Trace,
            (level, line) => lines.Add(Enum.IsDefined(typeof(LogLevel), level) ? line : password));
        client.CreateSession();
        Console.WriteLine("log: {0}, {1} with the password", lines.Count > 0 ? "lines" : "no lines",
            lines.Any(line => line.Contains(password)) ? "some" : "none");
        client.OnLog(LogLevel.Trace, (level, line) => throw new InvalidOperationException("Enough of the log."));
        Failing("a log callback that fails", () => client.CloseSession());
        client.OnLog(LogLevel.Fatal, null);
    }

    private static void CheckProgress(Client client)
    {
        var file = new byte[3000000];
        bool isAllSent = false;
        client.CreateSession();
        string note = client.SaveTechNote(client.CreateTicket("42", EntityType.Client, "S", "D"), "N", 1, true);
        client.OnProgress(progress =>
        {
            isAllSent = isAllSent || progress.Sent == progress.ToSend && progress.Sent > (ulong)file.Length;
            return true;
        });
        client.SaveAttachment(note, "file", file);
        Console.WriteLine($"progress: {(isAllSent ? "" : "not ")}all was sent");
        client.OnProgress(progress => false);
        Failing("given up", () => client.SaveAttachment(note, "file", file));
        int calls = 0;
        client.OnProgress(progress =>
        {
            ++calls;
            throw new InvalidOperationException("Enough of the progress.");
        });
        Failing("a progress callback that fails", () => client.SaveAttachment(note, "file", file));
        Console.WriteLine($"heard: {(calls < 10 ? "at once" : "late")}");
        client.OnProgress(null);
        client.CloseSession();
    }

    private static void CheckTexts(Client client)
    {
        foreach (string text in new[] { "a\0b", "\ud83d" })
        {
            string what = text.Length > 1 ? "a zero in a text" : "half a surrogate pair";
            try
            {
                client.CreateTicket("42", EntityType.Client, text, "D");
                Console.WriteLine($"{what}: accepted");
            }
            catch (ArgumentException)
            {
                Console.WriteLine($"{what}: refused");
            }
        }
        try
        {
            client.SaveTechNote("9999", "N", 1, true);
        }
        catch (VantryException exception)
        {
            Console.WriteLine($"the server's failure: {exception.Status} {exception.Message}");
        }
    }

    private static async Task CheckBackground(Client client)
    {
        await client.CreateTicketAsync("42", EntityType.Client, "S", "D");
        List<Ticket> tickets = await client.RequestTicketListAsync("42", EntityType.Client);
        Console.WriteLine($"in the background: {tickets.Count} tickets of {tickets[0].ClientName}");
    }

    private static void Main(string[] args)
    {
        Console.SetOut(new StreamWriter(Console.OpenStandardOutput()) { AutoFlush = true });
        string password = Environment.GetEnvironmentVariable("VANTRY_PASSWORD");
        using (var client = new Client(args[0], args[1], password))
        {
            client.LogTo(args[3], LogLevel.Trace);
            client.OnCertificate((host, der) =>
            {
                Console.WriteLine($"certificate of {host}: {BitConverter.ToString(der).Replace("-", "").ToLower()}");
                return true;
            });
            client.CreateSession();
            client.OnCertificate((host, der) => true);
            client.CloseSession();
            GC.Collect(); // what the library calls has to stay
            CheckLog(client, password);
            CheckProgress(client);
            client.OnCertificate((host, der) =>
            {
                Failing("from within a callback", () => client.CreateSession());
                return true;
            });
            client.CreateSession();
            client.OnCertificate(null);
            client.CloseSession();
            CheckTexts(client);
            CheckBackground(client).Wait();
            client.OnCertificate((host, der) => false);
        }
        using (var client = new Client(args[0], args[1], password))
        {
            client.CreateSession();
            client.CloseSession();
            Console.WriteLine("without callbacks: done");
        }
    }
}
