/// @file
/// Client library of the Vantry help-desk server. This is the one header that a host includes.
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
/// documentation says so.
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
    /// The server's HTTP code; 600: the request failed inside the library; 601: the server's certificate was
    /// not accepted; 417: the server named a reason against an upload in an answer of 200; -1: no outcome
    /// yet.
    std::int32_t httpStatusCode = -1;
    /// Text for the host to show.
    std::wstring errorMessage = L"Internal Error: Object wasn't initialized.";
};

/// A note to add to a ticket.
struct TechNote
{
    std::wstring jobTicketId;   ///< id of the ticket that the note belongs to
    std::wstring noteText;      ///< the note's text
    std::uint32_t workTime = 0; ///< booked work time, in the server's unit
    bool isVisible = false;     ///< whether the note is visible
};

/// A file to attach to the tech note that was saved last.
struct Attachment
{
    std::string data;      ///< the content: any bytes, sent unchanged
    std::wstring fileName; ///< the name; a double quote in it is not escaped
};

/// Kind of entity that a ticket belongs to.
enum VantryType : std::int32_t
{
    Asset = 0,
    Client = 1
};

/// Data of a new ticket.
struct TicketCreationInformation
{
    std::wstring entityId; ///< id of the client or asset
    VantryType entityType =
        VantryType::Asset; ///< `Client` creates for a client, every other value for an asset
    std::wstring subject;
    std::wstring detail;
};

/// One ticket of the list.
struct TicketListEntry
{
    std::wstring id; ///< JSON text of the server's id: digits of a number, a string with its double quotes
    std::wstring name;
    std::wstring detail;
    std::wstring clientName;
};

/// Decides whether the server's certificate is trusted. Runs on the operation's thread: with a window set
/// that is a worker thread, never the host's own. The certificate is valid during the call only; duplicate it
/// with `CertDuplicateCertificateContext` to keep it. A thrown `std::exception` counts as a refusal.
using ValidateCertificateCallback = std::function<bool(const CERT_CONTEXT&)>;

extern "C" {
/// Sets the REST endpoint: scheme, host, optional port and base path, without a slash at the end. Stored as
/// it is; a malformed one fails in the next operation (status 600).
/// @throws std::bad_alloc
VANTRY_API void SetEndPoint(const std::wstring& endPoint);

/// Sets the user name and password of the following operations. The password is never logged.
/// @throws std::bad_alloc
VANTRY_API void SetCredentials(const std::wstring& userName, const std::wstring& password);

/// Sets the callback that is asked, in every operation on an https endpoint, whether to trust the server.
/// The library keeps a copy until the next call or its unloading. An empty one trusts every server whose
/// certificate passes the system's own validation.
VANTRY_API void SetValidateCertificateCallback(ValidateCertificateCallback callback);

/// Sets the window that is told of the end of every following operation, which then runs on a thread of its
/// own; null returns to synchronous operations. The window stays the host's and must outlive them.
VANTRY_API void SetHWND(HWND window);

/// Outcome of the last operation: 0 and an empty text before the first one.
VANTRY_API const ResponseStatus& GetLastResponse();

/// Id of the ticket created last: JSON text of the server's id; empty if the last creation failed.
VANTRY_API const std::wstring& GetCreatedTicketID();

/// Tickets of the last `RequestTicketList`; empty if it failed.
VANTRY_API const std::vector<TicketListEntry>& GetTicketList();

/// Saves a note on a ticket (success: 201). With a window set, the record is copied before the call returns.
/// @throws std::system_error if the operation's thread cannot be started
VANTRY_API void SaveTechNote(const TechNote& techNote);

/// Uploads a file to the tech note saved last, within the session opened last (success: 201). The content is
/// held in memory several times over. With a window set, the record is copied before the call returns.
/// @throws std::system_error if the operation's thread cannot be started
VANTRY_API void SaveAttachment(const Attachment& attachment);

/// Opens a session with the credentials (success: 200).
/// @throws std::system_error if the operation's thread cannot be started
VANTRY_API void CreateSession();

/// Closes the session opened last (success: 200).
/// @throws std::system_error if the operation's thread cannot be started
VANTRY_API void CloseSession();

/// Fetches the tickets of a client (`type` not 0) or of an asset (0) (success: 200). `entityId` goes into the
/// address as it is, unencoded. With a window set, it is copied before the call returns.
/// @throws web::uri_exception if `entityId` holds a character that an address cannot carry (a blank, say);
///         web::json::json_exception if the server sends a text member that is no string. With a window set,
///         such an exception leaves the worker thread and ends the process.
/// @throws std::system_error if the operation's thread cannot be started
VANTRY_API void RequestTicketList(const std::wstring& entityId, VantryType type);

/// Creates a ticket (success: 201; id: `GetCreatedTicketID`). With a window set, the record is copied before
/// the call returns; until its outcome is written, `GetLastResponse` gives -1.
/// @throws std::system_error if the operation's thread cannot be started
VANTRY_API void CreateTicket(const TicketCreationInformation& ticket);
}
