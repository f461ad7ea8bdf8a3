#include "Addresses.h"
#include "CompletionSignal.h"
#include "Dispatch.h"
#include "GuardedCall.h"
#include "ModuleObjects.h"
#include "Operation.h"
#include "PieceStream.h"
#include "RequestContent.h"
#include "ResponseHandling.h"
#include "RestText.h"

#include <ctime>
#include <string>

using Platform::toAnsi;
using Platform::toRestText;
using web::http::methods;
using web::http::status_codes;

namespace
{
/// What stands around the file's content in the multipart body.
struct Multipart
{
    Multipart(const std::wstring& boundary, const std::wstring& fileName)
    {
        const auto delimiter = "\r\n--===" + toAnsi(boundary) + "===";
        head = delimiter + "\r\nContent-Disposition: form-data; name=\"file\"; filename=\"" +
               toAnsi(fileName) +
               "\"\r\n"
               "Content-Type: null\r\n"
               "Content-Transfer-Encoding: binary\r\n"
               "\r\n";
        tail = delimiter + "--\r\n";
    }

    std::string head;
    std::string tail;
};
} // namespace

namespace VantryIntegrationApi
{
void CVantryApi::wrpSaveAttachment(const Attachment& attachment)
{
    const LumoLogBlock block(m_logger, "VantryIntegrationApi::CVantryApi::wrpSaveAttachment");
    dispatch("SaveAttachment", &CVantryApi::saveAttachment, attachment);
}

void CVantryApi::saveAttachment(const Attachment& attachment)
{
    const SignalAsyncRequestFinishedWrapper signal(m_hwnd);
    const LumoFunction log(m_logger, "VantryIntegrationApi::CVantryApi::saveAttachment");
    const auto requestUri = prepared(log, [&] {
        Utils::requireOneLine(attachment.fileName, "file name");
        Utils::requireOneLine(m_userName, "user name");
        auto address =
            web::uri_builder()
                .set_path(U("/attachment/upload"))
                .append_query(U("type=TechNote"), false)
                .append_query(U("entityId=") + Utils::minimallyEncoded(m_lastSavedTechNoteId), false)
                .to_uri();
        LogUsedUrl(address, log.name());
        return address;
    });
    if (!requestUri || !mayBeSent(log)) {
        return;
    }
    m_lastResponse = Utils::safe_CallMethod([&] {
                         return unsafe_sendRequest_UploadAttachment(*requestUri, attachment);
                     }).status;
    if (m_lastResponse.httpStatusCode != status_codes::Created) {
        LUMO_ERROR(log, g_requestErrorText);
    }
}

ServerAnswer CVantryApi::unsafe_sendRequest_UploadAttachment(const web::uri& requestUri,
                                                             const Attachment& attachment)
{
    const LumoFunction log(m_logger, "VantryIntegrationApi::CVantryApi::unsafe_sendRequest_UploadAttachment");
    web::http::http_request request(methods::POST);
    request.set_request_uri(requestUri);

    const auto cookie = m_session.m_sessionCookie + L"; wosid=" + m_session.m_sessionKey +
                        L"; vantryuser_helpdesk=" + m_userName;
    LUMO_DEBUG(log, L"Used Cookie: " << cookie);
    auto& headers = request.headers();
    headers[U("Cookie")] = toRestText(cookie);
    headers.set_cache_control(U("no-cache"));
    headers[U("Pragma")] = U("no-cache");

    const auto boundary = std::to_wstring(std::time(nullptr));
    headers.set_content_type(U("multipart/form-data; boundary====") + toRestText(boundary) + U("==="));
    const Multipart around(boundary, attachment.fileName);
    const auto length = around.head.size() + attachment.data.size() + around.tail.size();
    LUMO_INFO(log, L"Content Length is: " << length);
    // Sent from where it lies: a file may be large. Keeps the content type set above.
    const PieceStream body({around.head, attachment.data, around.tail});
    request.set_body(body.stream(), length, U("text/plain; charset=utf-8"));

    const auto base = Utils::baseAddress(Utils::serverAddress(m_endPoint)) + L"/helpdesk";
    LUMO_INFO(log, L"Setting the end point for uploading attachment: " << base);

    auto answer = exchange(log, web::uri(toRestText(base)), request, &Utils::handleResponse);
    logAnswer(log, answer.body);
    if (const auto& reason = Utils::member(answer.body, U("reason")); !reason.is_null()) {
        LUMO_INFO(log, L"Trying to set an error to the response status");
        auto& status = answer.status;
        status.errorMessage = Utils::jsonText(reason);
        LUMO_ERROR(log, status.errorMessage);
        if (status.httpStatusCode == status_codes::OK) {
            status.httpStatusCode = status_codes::ExpectationFailed;
        }
    }
    return answer;
}
} // namespace VantryIntegrationApi
