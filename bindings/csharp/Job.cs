// A whole help-desk job: Job ENDPOINT USER CLIENT, with VANTRY_PASSWORD set and VANTRY_TRUST=yes or no.
using System;
using System.IO;
using System.Text;
using System.Threading.Tasks;
using Vantry;

internal static class Job
{
    // A program with a window shows the certificate here and asks.
    private static bool IsTrusted(string host, byte[] der)
    {
        Console.WriteLine($"Certificate of {host}: {der.Length} bytes, the last one {der[der.Length - 1]}");
        string answer = Environment.GetEnvironmentVariable("VANTRY_TRUST");
        return (answer ?? throw new InvalidOperationException("Nobody has decided about the certificate.")) == "yes";
    }

    private static async Task DoJob(Client client, string person)
    {
        await client.CreateSessionAsync();
        try
        {
            string ticket = await client.CreateTicketAsync(
                person, EntityType.Client, "Größter Drucker € 🖨", "It does not print.");
            string note = await client.SaveTechNoteAsync(ticket, "Refilled.", 15, true);
            await client.SaveAttachmentAsync(note, "counter.txt", Encoding.UTF8.GetBytes("Pages: 4711"));
            Console.WriteLine($"Created ticket {ticket} with note {note}");
            foreach (Ticket entry in await client.RequestTicketListAsync(person, EntityType.Client))
            {
                Console.WriteLine($"{entry.Id} {entry.Name}");
            }
        }
        finally
        {
            await client.CloseSessionAsync();
        }
    }

    private static int Main(string[] args)
    {
        Console.SetOut(new StreamWriter(Console.OpenStandardOutput()) { AutoFlush = true }); // in UTF-8
        string password = Environment.GetEnvironmentVariable("VANTRY_PASSWORD");
        if (args.Length != 3 || password == null)
        {
            Console.Error.WriteLine("usage: Job ENDPOINT USER CLIENT, with VANTRY_PASSWORD set");
            return 1;
        }
        try
        {
            using (var client = new Client(args[0], args[1], password))
            {
                client.OnCertificate(IsTrusted);
                DoJob(client, args[2]).GetAwaiter().GetResult();
            }
            return 0;
        }
        catch (VantryException exception)
        {
            Console.WriteLine($"Failed: {exception.Status} {exception.Message}");
        }
        catch (Exception exception)
        {
            Console.WriteLine($"Ended by: {exception.Message}");
        }
        return 1;
    }
}
