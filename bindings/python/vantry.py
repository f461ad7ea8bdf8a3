"""The Vantry help-desk client, over vantry.dll or libvantry.so, for 64-bit Python 3.8 and later.

    with vantry.Client("https://helpdesk.example.com/helpdesk/rest", "technician", "secret",
                       on_certificate=lambda host, der: ask(host, der)) as client:
        with client.session():
            ticket = client.create_ticket("42", vantry.CLIENT, "Printer", "It is on fire.")

A failure is an exception: vantry.Error, or what a callback has raised. In the background: `await
asyncio.to_thread(client.create_ticket, ...)` or the like; other threads run meanwhile, and callbacks run on the thread
that called.

The library is looked for beside this file, then where the system looks.
"""
import contextlib
import ctypes
import os
import sys
import threading
from ctypes import POINTER, c_char_p, c_int32, c_size_t, c_uint8, c_uint32, c_uint64, c_void_p
from typing import NamedTuple

ASSET, CLIENT = 0, 1  # kinds of entity that a ticket belongs to
TRACE, DEBUG, INFO, WARN, ERROR, FATAL = range(6)  # levels of log lines


class Error(Exception):
    """An operation or a setting that failed: the server's HTTP code or a vantry_status, and a text to show."""

    def __init__(self, status, message):
        super().__init__(status, message)
        self.status = status
        self.message = message

    def __str__(self):
        return f"{self.status} {self.message}"


class Ticket(NamedTuple):
    """One ticket of a list; the server's short forms of its texts."""

    id: str
    name: str
    detail: str
    client_name: str


class _Struct(ctypes.Structure):
    def __init__(self, *members):
        super().__init__(ctypes.sizeof(self), *members)


class _NewTicket(_Struct):
    _fields_ = [("size", c_size_t), ("entity_id", c_char_p), ("entity_type", c_int32), ("subject", c_char_p),
                ("detail", c_char_p)]


class _TechNote(_Struct):
    _fields_ = [("size", c_size_t), ("ticket_id", c_char_p), ("text", c_char_p), ("work_time", c_uint32),
                ("is_visible", c_int32)]


class _Attachment(_Struct):
    _fields_ = [("size", c_size_t), ("note_id", c_char_p), ("file_name", c_char_p), ("data", c_char_p),
                ("data_size", c_size_t)]


class _Ticket(_Struct):
    _fields_ = [("size", c_size_t), ("id", c_char_p), ("name", c_char_p), ("detail", c_char_p),
                ("client_name", c_char_p)]


_CertificateCallback = ctypes.CFUNCTYPE(None, c_void_p, c_char_p, POINTER(c_uint8), c_size_t, POINTER(c_int32))
_LogCallback = ctypes.CFUNCTYPE(None, c_void_p, c_int32, c_char_p)
_ProgressCallback = ctypes.CFUNCTYPE(None, c_void_p, c_uint64, c_uint64, c_uint64, c_uint64, POINTER(c_int32))


def _load():
    name = "vantry.dll" if sys.platform == "win32" else "libvantry.so"
    beside = os.path.join(os.path.dirname(os.path.abspath(__file__)), name)
    library = ctypes.CDLL(beside if os.path.exists(beside) else name)
    for function, result, arguments in [
            ("status_message", c_char_p, [c_int32]),
            ("set_endpoint", c_int32, [c_char_p]),
            ("set_credentials", c_int32, [c_char_p, c_char_p]),
            ("set_certificate_callback", c_int32, [_CertificateCallback, c_void_p]),
            ("set_log_callback", c_int32, [_LogCallback, c_void_p, c_int32]),
            ("set_log_file", c_int32, [c_char_p, c_int32]),
            ("set_progress_callback", c_int32, [_ProgressCallback, c_void_p]),
            ("create_session", c_void_p, []),
            ("close_session", c_void_p, []),
            ("create_ticket", c_void_p, [POINTER(_NewTicket)]),
            ("save_tech_note", c_void_p, [POINTER(_TechNote)]),
            ("save_attachment", c_void_p, [POINTER(_Attachment)]),
            ("request_ticket_list", c_void_p, [c_char_p, c_int32]),
            ("result_status", c_int32, [c_void_p]),
            ("result_succeeded", c_int32, [c_void_p]),
            ("result_message", c_char_p, [c_void_p]),
            ("result_ticket_id", c_char_p, [c_void_p]),
            ("result_note_id", c_char_p, [c_void_p]),
            ("result_ticket", c_int32, [c_void_p, c_size_t, POINTER(_Ticket)]),
            ("result_free", None, [c_void_p])]:
        declared = getattr(library, "vantry_" + function)
        declared.restype = result
        declared.argtypes = arguments
    return library


_library = _load()
_installed = {}  # the callbacks that the library knows, which holds no reference to them
_raised = threading.local()  # what a callback has raised during the call that a thread is in


def _text(value):
    encoded = value.encode("utf-8", "surrogatepass")  # a lone surrogate is the library's to refuse
    if b"\0" in encoded:
        raise Error(603, "a text has a zero in it")
    return encoded


def _raise_on():
    error, _raised.error = getattr(_raised, "error", None), None
    if error is not None:
        raise error


def _check(status):
    _raise_on()
    if status != 0:
        raise Error(status, _library.vantry_status_message(status).decode())


def _install(name, kind, function, *level):
    callback = kind(function) if function else kind()
    status = getattr(_library, f"vantry_set_{name}_callback")(callback, None, *level)
    if status == 0:
        _installed[name] = callback  # no call can run the one before it any more
    _check(status)


@contextlib.contextmanager
def _result(operation, *arguments):
    result = operation(*arguments)
    try:
        _raise_on()
        if not _library.vantry_result_succeeded(result):
            raise Error(_library.vantry_result_status(result), _library.vantry_result_message(result).decode())
        yield result
    finally:
        _library.vantry_result_free(result)


@contextlib.contextmanager
def _guarded():
    """No exception leaves a callback: ctypes would print it, and go on."""
    try:
        yield
    except BaseException as error:  # pylint: disable=broad-except
        if getattr(_raised, "error", None) is None:
            _raised.error = error


class Client:
    """The process's one client: there is one object at a time. Operations may be called on any thread; one waits until
    the one before it is through. From within a callback they fail with status 604.

    on_certificate(host, der) tells whether that certificate is trusted; without it every server is whose certificate
    passes the system's own validation. on_progress(sent, to_send, received, to_receive), in bytes, is called every some
    20 ms while an operation waits; if it returns False the operation is given up. on_log(level, line) takes the lines
    of log_level and above; log_file is a file to which they are appended.
    """

    def __init__(self, endpoint, user_name, password, *, on_certificate=None, on_progress=None, on_log=None,
                 log_file=None, log_level=INFO):
        try:
            _install("log", _LogCallback, on_log and self._hand_over(on_log), log_level)
            _check(_library.vantry_set_log_file(None if log_file is None else _text(os.fspath(log_file)), log_level))
            _check(_library.vantry_set_endpoint(_text(endpoint)))
            _check(_library.vantry_set_credentials(_text(user_name), _text(password)))
            _install("certificate", _CertificateCallback, on_certificate and self._ask(on_certificate))
            _install("progress", _ProgressCallback, on_progress and self._tell(on_progress))
        except BaseException:
            self.close()
            raise

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        """Has the library forget the callbacks and close the log file."""
        _install("certificate", _CertificateCallback, None)
        _install("progress", _ProgressCallback, None)
        _install("log", _LogCallback, None, FATAL)
        _check(_library.vantry_set_log_file(None, FATAL))

    @contextlib.contextmanager
    def session(self):
        """A session for as long as the with statement runs."""
        self.create_session()
        try:
            yield
        finally:
            self.close_session()

    def create_session(self):
        with _result(_library.vantry_create_session):
            pass

    def close_session(self):
        with _result(_library.vantry_close_session):
            pass

    def create_ticket(self, entity_id, entity_type, subject, detail):
        """Gives the id of the new ticket."""
        ticket = _NewTicket(_text(entity_id), entity_type, _text(subject), _text(detail))
        with _result(_library.vantry_create_ticket, ticket) as result:
            return _library.vantry_result_ticket_id(result).decode()

    def save_tech_note(self, ticket_id, text, work_time=0, is_visible=False):
        """Gives the id of the new note; work_time is in the server's unit."""
        note = _TechNote(_text(ticket_id), _text(text), work_time, is_visible)
        with _result(_library.vantry_save_tech_note, note) as result:
            return _library.vantry_result_note_id(result).decode()

    def save_attachment(self, note_id, file_name, data):
        """Attaches a file with these bytes to the note that was saved last."""
        with _result(_library.vantry_save_attachment, _Attachment(_text(note_id), _text(file_name), data, len(data))):
            pass

    def request_ticket_list(self, entity_id, entity_type):
        """Gives a list of Ticket."""
        tickets, entry = [], _Ticket()
        with _result(_library.vantry_request_ticket_list, _text(entity_id), entity_type) as result:
            while _library.vantry_result_ticket(result, len(tickets), entry) == 0:
                texts = entry.id, entry.name, entry.detail, entry.client_name
                tickets.append(Ticket(*(text.decode() for text in texts)))
        return tickets

    @staticmethod
    def _ask(callback):
        def ask(_user, host, der, size, trust):
            with _guarded():
                trust[0] = bool(callback(host.decode(), ctypes.string_at(der, size)))
        return ask

    @staticmethod
    def _tell(callback):
        def tell(_user, sent, to_send, received, to_receive, give_up):
            give_up[0] = 1  # also for a callback that raises
            with _guarded():
                give_up[0] = callback(sent, to_send, received, to_receive) is False
        return tell

    @staticmethod
    def _hand_over(callback):
        def hand_over(_user, level, line):
            with _guarded():
                callback(level, line.decode())
        return hand_over
