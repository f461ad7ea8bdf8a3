#include "ControlService.h"

#include "Target.h"

namespace sandbox
{

namespace
{

namespace http = boost::beast::http;

const std::string attachments = "/attachments/";

Answer done()
{
    return {204, std::nullopt, {}, {}};
}

Answer contentOf(const HelpDesk& helpDesk, const Request& request)
{
    const std::string_view id = pathOf(view(request.target())).substr(attachments.size());
    const Attachment* attachment = helpDesk.findAttachment(id);
    if (attachment == nullptr) {
        throw HttpError(404, "there is no such attachment");
    }
    return textAnswer("application/octet-stream", attachment->content);
}

Route file(const std::string& path, const std::string& contentType, std::string content)
{
    return {http::verb::get, path, [contentType, content = std::move(content)](const Request&) {
                return textAnswer(contentType, content);
            }};
}

} // namespace

ControlService::ControlService(SharedState& state, const CertificateAuthority& authority,
                               const std::string& leafDer)
    : m_state(state), m_routes{
                          {http::verb::get, "/requests",
                           [this](const Request&) { return jsonAnswer(200, m_state.requests.toJson()); }},
                          {http::verb::delete_, "/requests",
                           [this](const Request&) {
                               m_state.requests.clear();
                               return done();
                           }},
                          {http::verb::post, "/answers",
                           [this](const Request& request) {
                               m_state.plannedAnswers.add(readPlannedAnswer(parseJson(request.body())));
                               return done();
                           }},
                          {http::verb::delete_, "/answers",
                           [this](const Request&) {
                               m_state.plannedAnswers.clear();
                               return done();
                           }},
                          {http::verb::post, "/connections",
                           [this](const Request& request) {
                               m_state.plannedConnections.add(
                                   readPlannedConnection(parseJson(request.body())));
                               return done();
                           }},
                          {http::verb::delete_, "/connections",
                           [this](const Request&) {
                               m_state.plannedConnections.clear();
                               return done();
                           }},
                          {http::verb::post, "/reset",
                           [this](const Request&) {
                               m_state = SharedState();
                               return done();
                           }},
                          {http::verb::get, "/state",
                           [this](const Request&) { return jsonAnswer(200, m_state.helpDesk.toJson()); }},
                          {http::verb::get, attachments + '*',
                           [this](const Request& request) { return contentOf(m_state.helpDesk, request); }},
                          file("/ca.pem", "application/x-pem-file", authority.pem()),
                          file("/ca.der", "application/pkix-cert", authority.der()),
                          file("/leaf.der", "application/pkix-cert", leafDer),
                          file("/crl.der", "application/pkix-crl", authority.revocationListDer()),
                      }
{}

std::optional<PlannedConnection> ControlService::accepted(bool /*secure*/)
{
    return std::nullopt;
}

void ControlService::received(ReceivedRequest /*request*/)
{
    // The log shows what the help desk received, not who asked for the log.
}

Reply ControlService::reply(const Request& request)
{
    return replyWith(answerByRoute(m_routes, request), request);
}

} // namespace sandbox
