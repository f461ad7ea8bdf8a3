/// @file
/// The client of the help-desk server.
#pragma once

#include "ExchangeLimits.h"
#include "LumoLogging.h"
#include "ServerAnswer.h"
#include "TAVIKVANTRYAPI.h"
#include "WindowsCalls.h"

#include <cpprest/http_client.h>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace VantryIntegrationApi
{
class ProbedCertificate;

/// The one client of the process. Operations write their outcome into the members that the getters return; no
/// lock guards them, see the threading note of the public header.
class CVantryApi
{
public:
    explicit CVantryApi(const ExchangeLimits& limits = {});
    /// Leaves the certificate to the system: the object lives until the module unloads.
    ~CVantryApi() = default;
    CVantryApi(const CVantryApi&) = delete;
    CVantryApi(CVantryApi&&) = delete;
    CVantryApi& operator=(const CVantryApi&) = delete;
    CVantryApi& operator=(CVantryApi&&) = delete;

    void setEndPoint(const std::wstring& endPoint);
    void setCredentials(const std::wstring& userName, const std::wstring& password);
    void setValidateCertificateCallback(ValidateCertificateCallback callback);

    /// Of the operations that follow; copied. It may be called on any thread that runs an operation.
    void setTransferWatcher(TransferWatcher watcher) { m_transferWatcher = std::move(watcher); }

    void setHWND(HWND hwnd)
    {
        const LumoLogBlock block(m_logger, "VantryIntegrationApi::CVantryApi::setHWND");
        m_hwnd = hwnd;
    }

    const ResponseStatus& GetLastResponse() const
    {
        const LumoLogBlock block(m_logger, "VantryIntegrationApi::CVantryApi::GetLastResponse");
        return m_lastResponse;
    }

    const std::wstring& GetCreatedTicketID() const
    {
        const LumoLogBlock block(m_logger, "VantryIntegrationApi::CVantryApi::GetCreatedTicketID");
        return m_createdTicketId;
    }

    const std::vector<TicketListEntry>& GetTicketList() const
    {
        const LumoLogBlock block(m_logger, "VantryIntegrationApi::CVantryApi::GetTicketList");
        return m_ticketList;
    }

    /// What uploads refer to: JSON text of the id of the note saved last; empty if there is none.
    const std::wstring& GetLastSavedTechNoteID() const { return m_lastSavedTechNoteId; }

    /// Each runs its operation here if no window is set, else on a thread of its own.
    /// @throws std::system_error if the system gives no thread
    void wrpSaveTechNote(const TechNote& techNote);
    void wrpSaveAttachment(const Attachment& attachment);
    void wrpCreateSession();
    void wrpCloseSession();
    void wrpRequestTicketList(const std::wstring& entityId, VantryType type);
    void wrpCreateTicket(const TicketCreationInformation& ticket);

    /// One JSON exchange with the endpoint; `body` is sent with POST and PUT only.
    /// @throws whatever the HTTP and JSON libraries throw
    ServerAnswer unsafe_sendRequest(const web::uri& requestUri, const std::wstring& method,
                                    const web::json::value& body);

    /// Logger of everything but the exports.
    static log4cxx::LoggerPtr& m_logger;

private:
    using BodyReader = std::function<web::json::value(web::http::http_response&)>;

    /// Both texts come from the server together and go back together. Named like the client's other members.
    struct SessionData
    {
        std::wstring m_sessionKey;
        std::wstring m_sessionCookie;
    };

    /// Runs `operation` as its export's documentation says; `name` is the export's, for the log. Defined in
    /// Dispatch.h.
    template <typename... Parameters>
    void dispatch(const char* name, void (CVantryApi::*operation)(Parameters...),
                  const std::decay_t<Parameters>&... arguments);

    void saveTechNote(const TechNote& techNote);
    void saveAttachment(const Attachment& attachment);
    void createSession();
    void closeSession();
    void requestTicketList(const std::wstring& entityId, VantryType type);
    void createTicket(const TicketCreationInformation& ticket);

    ServerAnswer unsafe_sendRequest_CreateSession(const web::uri& requestUri);
    ServerAnswer unsafe_sendRequest_CloseSession(const web::uri& requestUri);
    ServerAnswer unsafe_sendRequest_UploadAttachment(const web::uri& requestUri,
                                                     const Attachment& attachment);

    ServerAnswer sendRequest_ProvideServerResponse(const web::uri& requestUri, const std::wstring& method,
                                                   const web::json::value& body = {});

    /// Sends `request` to `base` through a client of its own and waits for the answer, of which
    /// `reader` makes the body.
    ServerAnswer exchange(const LumoFunction& log, const web::uri& base,
                          const web::http::http_request& request, const BodyReader& reader);

    /// The info line of an answer that is not null.
    static void logAnswer(const LumoFunction& log, const web::json::value& answer);

    /// Runs a step before the sending. None if it throws a standard exception, which ends the operation: it
    /// is logged and becomes the last response (600).
    template <typename Step>
    auto prepared(const LumoFunction& log, const Step& step) -> std::optional<decltype(step())>;

    /// Runs what reads an answer. Memory that runs out becomes the last response (600), and `m_ticketList` is
    /// emptied.
    template <typename Step>
    void readAnswer(const LumoFunction& log, const Step& step);

    /// Whether the server's certificate lets the operation send its request; says so in the log. If not, the
    /// last response says why.
    bool mayBeSent(const LumoFunction& log);

    /// `path`, and the credentials as its query.
    /// @throws std::range_error if a credential is malformed
    web::uri addressWithCredentials(const utility::char_t* path) const;

    /// Logs the address that `operation` is about to use, its credentials masked.
    void LogUsedUrl(const web::uri& address, const char* operation) const;

    web::http::client::http_client_config getClientConfig(bool validate);
    bool validateCertificateRequest();

    /// Sends the probe and waits for its status. What its connection shows is stored meanwhile, not later.
    ResponseStatus probe(const LumoFunction& log);
    void SaveCertificateLocally(const CERT_CONTEXT& certificate);
    bool ValidateCertificate();

    /// Has a request of `config` sent only to the server that the operation's probe met: its certificate has
    /// to pass the system's validation and, if the host has accepted one, be that one. What is returned
    /// becomes true, on a thread of the HTTP stack, where it is another.
    std::shared_ptr<const std::atomic<bool>>
    requireAcceptedServer(web::http::client::http_client_config& config) const;

    void appendTicket(const web::json::value& ticket);

    using Certificate = std::shared_ptr<const CERT_CONTEXT>;

    const ExchangeLimits m_limits;
    TransferWatcher m_transferWatcher;
    std::weak_ptr<ProbedCertificate> m_probe; ///< the one that a client configuration is made for
    bool m_probed = false;                    ///< whether the operation has sent a probe
    Certificate m_acceptedCertificate;        ///< the one that the host's callback has accepted in it, if any
    PCCERT_CONTEXT m_pVantryCertContext = nullptr;
    ValidateCertificateCallback m_certificateValidator;
    std::wstring m_endPoint;
    std::wstring m_userName;
    std::wstring m_password;
    HWND m_hwnd = nullptr;
    ResponseStatus m_lastResponse;
    std::wstring m_createdTicketId;
    std::wstring m_lastSavedTechNoteId;
    SessionData m_session;
    std::vector<TicketListEntry> m_ticketList;
};
} // namespace VantryIntegrationApi
