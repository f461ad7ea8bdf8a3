"""A whole help-desk job: job.py ENDPOINT USER CLIENT, with VANTRY_PASSWORD set and VANTRY_TRUST=yes or no."""
import os
import sys

import vantry


def is_trusted(host, der):
    """A program with a window shows the certificate here and asks."""
    print(f"Certificate of {host}: {len(der)} bytes, the last one {der[-1]}")
    if "VANTRY_TRUST" not in os.environ:
        raise RuntimeError("Nobody has decided about the certificate.")
    return os.environ["VANTRY_TRUST"] == "yes"


def do_job(client, person):
    with client.session():
        ticket = client.create_ticket(person, vantry.CLIENT, "Größter Drucker € 🖨", "It does not print.")
        note = client.save_tech_note(ticket, "Refilled.", work_time=15, is_visible=True)
        client.save_attachment(note, "counter.txt", b"Pages: 4711")
        print(f"Created ticket {ticket} with note {note}")
        for entry in client.request_ticket_list(person, vantry.CLIENT):
            print(entry.id, entry.name)


def main():
    if len(sys.argv) != 4 or "VANTRY_PASSWORD" not in os.environ:
        sys.exit("usage: job.py ENDPOINT USER CLIENT, with VANTRY_PASSWORD set")
    sys.stdout.reconfigure(encoding="utf-8")
    endpoint, user, person = sys.argv[1:]
    try:
        with vantry.Client(endpoint, user, os.environ["VANTRY_PASSWORD"], on_certificate=is_trusted) as client:
            do_job(client, person)
    except vantry.Error as error:
        sys.exit(f"Failed: {error}")
    except RuntimeError as error:
        sys.exit(f"Ended by: {error}")


main()
