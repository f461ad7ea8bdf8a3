"""What the job does not use of the binding: checks.py ENDPOINT USER CLIENT LOG-FILE"""
import asyncio
import os
import sys

import vantry


def failing(what, operation, *arguments):
    """Prints what the operation has raised, or of a vantry.Error its status."""
    try:
        operation(*arguments)
        print(f"{what}: nothing was raised")
    except vantry.Error as error:
        print(f"{what}: {error.status}")
    except RuntimeError as error:
        print(f"{what}: {error}")


def fail(text):
    raise RuntimeError(text)


def check_log(settings, password):
    lines = []
    with vantry.Client(*settings, on_log=lambda level, line: lines.append((level, line)),
                       log_level=vantry.TRACE) as client:
        client.create_session()
        client.close_session()
    known = lines and all(vantry.TRACE <= level <= vantry.FATAL for level, _ in lines)
    secret = any(password in line for _, line in lines)
    print(f"log: {'lines' if known else 'no lines'}, {'some' if secret else 'none'} with the password")
    calm = True
    with vantry.Client(*settings, on_log=lambda *_: calm or fail("Enough of the log.")) as client:
        calm = False
        failing("a log callback that fails", client.create_session)
        calm = True


def check_progress(settings):
    file, calls = b"x" * 3000000, []
    answers = [lambda: None, lambda: False, lambda: fail("Enough of the progress.")]
    answer = answers[0]

    def on_progress(*progress):
        calls.append(progress)
        return answer()

    with vantry.Client(*settings, on_progress=on_progress) as client, client.session():
        note = client.save_tech_note(client.create_ticket("42", vantry.CLIENT, "S", "D"), "N", 1, True)
        client.save_attachment(note, "file", file)
        sent_all = any(sent == to_send > len(file) for sent, to_send, _, _ in calls)
        print(f"progress: {'' if sent_all else 'not '}all was sent")
        answer = answers[1]
        failing("given up", client.save_attachment, note, "file", file)
        answer = answers[2]
        calls.clear()
        failing("a progress callback that fails", client.save_attachment, note, "file", file)
        print(f"heard: {'at once' if len(calls) < 10 else 'late'}")
        answer = answers[0]


def check_texts(client):
    for what, text in ("a zero in a text", "a\0b"), ("half a surrogate pair", "\ud83d"):
        try:
            client.create_ticket("42", vantry.CLIENT, text, "D")
            print(f"{what}: accepted")
        except vantry.Error as error:
            print(f"{what}: {'refused' if error.status == 603 else error}")
    try:
        client.save_tech_note("9999", "N")
    except vantry.Error as error:
        print(f"the server's failure: {error}")


async def check_background(client):
    await asyncio.to_thread(client.create_ticket, "42", vantry.CLIENT, "S", "D")
    tickets = await asyncio.to_thread(client.request_ticket_list, "42", vantry.CLIENT)
    print(f"in the background: {len(tickets)} tickets of {tickets[-1].client_name}")


def main():
    endpoint, user, _, log_file = sys.argv[1:]
    settings = endpoint, user, os.environ["VANTRY_PASSWORD"]
    shown = []
    with vantry.Client(*settings, on_certificate=lambda *certificate: shown.append(certificate) or True,
                       log_file=log_file, log_level=vantry.TRACE) as client:
        client.create_session()
        client.close_session()
    print(f"certificate of {shown[0][0]}: {shown[0][1].hex()}")
    check_log(settings, settings[2])
    check_progress(settings)

    def ask(_host, _der):
        failing("from within a callback", client.close_session)
        return True

    with vantry.Client(*settings, on_certificate=ask) as client:
        client.create_session()
    with vantry.Client(*settings, on_certificate=lambda host, der: True) as client:
        check_texts(client)
        asyncio.run(check_background(client))
    with vantry.Client(*settings, on_certificate=lambda host, der: False):
        pass
    with vantry.Client(*settings) as client, client.session():
        print("without callbacks: done")


main()
