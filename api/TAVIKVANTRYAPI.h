/// @file
/// Client library of the Vantry help-desk server. This is the one header that a host includes.
///
/// @code
/// SetEndPoint(L"https://helpdesk.example.com/helpdesk/rest");
/// SetCredentials(L"technician", L"secret");
/// CreateTicket({L"42", Client, L"Printer", L"It is on fire."});
/// if (GetLastResponse().httpStatusCode == 201) {
///     SaveTechNote({GetCreatedTicketID(), L"Put out.", 15, true});
/// }
/// if (GetLastResponse().httpStatusCode != 201) {
///     show(GetLastResponse()); // the ticket or its note has failed
/// }
/// @endcode
///
/// Every status has to be checked. An operation does not know that the one before it failed: an upload whose
/// note was never sent goes to the note before that.
///
/// Text. All text is wide text in the platform's own form (UTF-16 on Windows, UTF-32 on Linux), except
/// `Attachment::data`, which is raw bytes. Text that is malformed (a lone surrogate, a value that is no code
/// point) makes the operation that uses it fail with a status; it is never dropped or replaced in silence.
///
/// Compiler. Records cross the boundary as objects of the C++ standard library: host and library must be
/// built with the same compiler, the same standard library and the same runtime settings.
///
/// Threads. The library holds one client for the process and no lock. Call the functions from one thread and
/// start one operation at a time: the next one when the export has returned (no window set) or when
/// `WM_ASYNC_REQUEST_FINISHED` has arrived (window set). Setters must not be called while an operation runs.
///
/// Errors. Operations report through `GetLastResponse`. An exception leaves an operation only where its
/// documentation says so, or if the certificate callback throws something that is no `std::exception`. With a
/// window set, an exception of the operation itself leaves its worker thread and ends the process. Where
/// memory runs out for the copies of a call with a window, `std::bad_alloc` leaves; otherwise it is status
/// 600.
///
/// Bounds. Redirections are not followed. Each wait for the server may take 30 s, the body of an answer 10
/// minutes and 256 MiB; beyond that the status is 600, and so it is when no body has moved for some 3
/// minutes. An operation cannot be cancelled.
///
/// Lifetime. Loading the library creates the client; unloading destroys it. References returned by the
/// getters are valid while the library is loaded; what they refer to is replaced by the next operation that
/// writes it.
#pragma once

#include "VantryHostTypes.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// Version of this header: major * 10000 + minor * 100 + patch. The DLL's own version is in its version
/// resource.
#define TAVIKVANTRYAPI_VERSION 10000

/// Posted to the window of `SetHWND` once at the end of every asynchronous operation, after its results have
/// been written; `wParam` and `lParam` are 0.
constexpr unsigned int WM_ASYNC_REQUEST_FINISHED = 0x8100;

/// Outcome of one operation.
struct ResponseStatus
{
    /// The server's HTTP code; 600: the request failed, or a text came that is no JSON; 601: the server's
    /// certificate was not accepted; 417: the server named a reason against an upload in an answer of 200;
    /// -1: a record that nothing has been written to.
    std::int32_t httpStatusCode = -1;
    /// Text for the host to show: the server's reason phrase or reason, or the library's; may be empty.
    std::wstring errorMessage = L"Internal Error: Object wasn't initialized.";
};

/// A note to add to a ticket.
struct TechNote
{
    std::wstring jobTicketId; ///< id of the ticket that the note belongs to, as `GetCreatedTicketID` gives it
    std::wstring noteText;    ///< the note's text
    std::uint32_t workTime = 0; ///< booked work time, in the server's unit
    bool isVisible = false;     ///< whether the note is visible
};

/// A file to attach to the tech note that was saved last.
struct Attachment
{
    std::string data; ///< the content: any bytes, sent unchanged
    /// The name, without folders. Sent in the thread's ANSI code page (UTF-8 on Linux); a character beyond it
    /// becomes its default character. A double quote is not escaped; a line break or zero is refused (600).
    std::wstring fileName;
};

/// Kind of entity that a ticket belongs to.
enum VantryType : std::int32_t
{
    Asset = 0, ///< what the server calls an asset
    Client = 1 ///< a person who reports
};

/// Data of a new ticket.
struct TicketCreationInformation
{
    std::wstring entityId; ///< id of the client or asset
    VantryType entityType =
        VantryType::Asset; ///< `Client` creates for a client, every other value for an asset
    std::wstring subject;  ///< its title
    std::wstring detail;   ///< its text
};

/// One ticket of the list.
struct TicketListEntry
{
    std::wstring id;   ///< JSON text of the server's id: digits of a number, a string with its double quotes
    std::wstring name; ///< the server's `shortSubject`; empty if it gave none
    std::wstring detail;     ///< the server's `shortDetail`; empty if it gave none
    std::wstring clientName; ///< the server's `displayClient`; empty if it gave none
};

/// Decides whether the server's certificate is trusted. Runs on the operation's thread: with a window set
/// that is a worker thread, never the host's own. The certificate is valid during the call only; duplicate it
/// with `CertDuplicateCertificateContext` to keep it. False refuses the server (status 601), and so does a
/// thrown `std::exception`; anything else that is thrown leaves the operation.
using ValidateCertificateCallback = std::function<bool(const CERT_CONTEXT&)>;

extern "C" {
/// Sets the REST endpoint: scheme, host, optional port and base path, without a slash at the end. Stored as
/// it is; a malformed one, or one whose port is greater than 65535, fails in the next operation (status 600).
/// The scheme is `http` or `https` in small letters: `HTTPS` is sent over TLS without validation, and the
/// callback is not asked.
/// @code
/// SetEndPoint(L"https://helpdesk.example.com:8443/helpdesk/rest");
/// @endcode
/// @param endPoint copied
/// @throws std::bad_alloc
VANTRY_API void SetEndPoint(const std::wstring& endPoint);

/// Sets the user name and password of the following operations. They go into the addresses of requests,
/// encoded. The log masks the password, and the one set before it, where they stand as they are sent.
/// @param userName copied; a line break or zero in it makes uploads fail (status 600)
/// @param password copied
/// @throws std::bad_alloc
VANTRY_API void SetCredentials(const std::wstring& userName, const std::wstring& password);

/// Sets the callback that is asked, in every operation on an https endpoint, whether to trust the server.
/// The library keeps a copy until the next call or its unloading. An empty one trusts every server whose
/// certificate passes the system's own validation. A certificate that does not pass it is never shown: the
/// operation ends with status 600. The request is sent only to a server that shows the very certificate that
/// the callback accepted; another one is 601.
/// @code
/// SetValidateCertificateCallback([](const CERT_CONTEXT& certificate) {
///     return certificate.cbCertEncoded == known.size() &&
///            std::equal(known.begin(), known.end(), certificate.pbCertEncoded);
/// });
/// @endcode
/// @param callback copied; the old one is destroyed first
/// @throws std::bad_alloc, or what copying `callback` throws; the old one or none is set then
VANTRY_API void SetValidateCertificateCallback(ValidateCertificateCallback callback);

/// Sets the window that is told of the end of every following operation, which then runs on a thread of its
/// own; null returns to synchronous operations.
/// @code
/// SetHWND(window);
/// CreateSession(); // returns at once; the window gets WM_ASYNC_REQUEST_FINISHED
/// @endcode
/// @param window stays the host's and must outlive the operations; one that has gone is not told
VANTRY_API void SetHWND(HWND window);

/// Outcome of the last operation. As long as there has been none it is 0 and an empty text. While one runs it
/// is no outcome: it may be the last one's, the status of the certificate's probe, 200 or -1.
/// @return valid while the library is loaded; the next operation writes a new outcome into it
VANTRY_API const ResponseStatus& GetLastResponse();

/// Id of the ticket created last: JSON text of the server's id; empty if the last creation failed or its
/// answer was no JSON or `null`.
/// @return `1001` for an id that is a number, `"A-1"` with its quotes for one that is a string, `null` if the
///         server's answer has none; valid while the library is loaded, replaced by the next `CreateTicket`
VANTRY_API const std::wstring& GetCreatedTicketID();

/// Tickets of the last `RequestTicketList`; empty if it failed, except where that says otherwise, or if its
/// answer was no list.
/// @return valid while the library is loaded, replaced by the next `RequestTicketList`
VANTRY_API const std::vector<TicketListEntry>& GetTicketList();

/// Saves a note on a ticket (success: 201). The note is the one that `SaveAttachment` attaches to. After any
/// other answer there is none; if nothing was sent (malformed text, the certificate), the one before it
/// stays.
/// @code
/// SaveTechNote({L"1001", L"Put out.", 15, true});
/// @endcode
/// @param techNote copied before the call returns, if a window is set
/// @throws std::system_error if the operation's thread cannot be started
VANTRY_API void SaveTechNote(const TechNote& techNote);

/// Uploads a file to the tech note saved last, within the session opened last (success: 201; 417: the server
/// named a reason against it in an answer of 200). The content is sent from where it lies.
/// @param attachment copied before the call returns, if a window is set
/// @throws std::system_error if the operation's thread cannot be started
VANTRY_API void SaveAttachment(const Attachment& attachment);

/// Opens a session with the credentials (success: 200). Only `SaveAttachment` and `CloseSession` use it; the
/// other operations send the credentials themselves.
/// @throws std::system_error if the operation's thread cannot be started
VANTRY_API void CreateSession();

/// Closes the session opened last (success: 200). Its key and cookie are kept: closing twice asks the server
/// twice.
/// @throws std::system_error if the operation's thread cannot be started
VANTRY_API void CloseSession();

/// Fetches the tickets of a client or an asset (success: 200; result: `GetTicketList`).
/// @code
/// RequestTicketList(L"42", Client);
/// for (const TicketListEntry& ticket : GetTicketList()) {
///     show(ticket.id, ticket.name); // L"1001", L"Printer"
/// }
/// @endcode
/// @param entityId goes into the address as it is, unencoded; copied before the call returns, if a window is
///                 set
/// @param type `Asset` asks for an asset, every other value for a client
/// @throws web::uri_exception if `entityId` holds a character that an address cannot carry (a blank, say)
/// @throws web::json::json_exception if the server sends a text member that is no string; the tickets before
///         it stay in the list. Both derive from `std::exception`.
/// @throws std::system_error if the operation's thread cannot be started
VANTRY_API void RequestTicketList(const std::wstring& entityId, VantryType type);

/// Creates a ticket (success: 201; id: `GetCreatedTicketID`).
/// @code
/// CreateTicket({L"42", Client, L"Printer", L"It is on fire."});
/// if (GetLastResponse().httpStatusCode == 201) {
///     show(GetCreatedTicketID()); // L"1001"
/// }
/// @endcode
/// @param ticket copied before the call returns, if a window is set
/// @throws std::system_error if the operation's thread cannot be started
VANTRY_API void CreateTicket(const TicketCreationInformation& ticket);
}
