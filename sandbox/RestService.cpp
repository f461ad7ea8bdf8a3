#include "RestService.h"

#include "Multipart.h"
#include "Target.h"

#include <boost/algorithm/string/trim.hpp>
#include <boost/beast/http/field.hpp>

#include <algorithm>
#include <initializer_list>
#include <optional>

namespace sandbox
{

namespace
{

namespace http = boost::beast::http;

constexpr std::size_t shortTextLength = 60;

bool hasExactly(const Json& value, std::initializer_list<const char*> members)
{
    return value.is_object() && value.size() == members.size() &&
           std::all_of(members.begin(), members.end(),
                       [&value](const char* member) { return value.contains(member); });
}

std::string text(const Json& value)
{
    if (!value.is_string()) {
        throw HttpError(400, "a string is expected instead of " + value.dump());
    }
    return value.get<std::string>();
}

// The identifier in {"type": TYPE, "id": "..."}.
std::string referenceTo(const std::string& type, const Json& value)
{
    if (!hasExactly(value, {"type", "id"}) || value["type"] != type) {
        throw HttpError(400, "a reference of type " + type + " is expected instead of " + value.dump());
    }
    return text(value["id"]);
}

Ticket readTicket(const Json& body)
{
    Ticket ticket{};
    if (hasExactly(body, {"subject", "detail", "clientReporter"})) {
        ticket.entityType = "Client";
        ticket.entityId = referenceTo("Client", body["clientReporter"]);
    } else if (hasExactly(body, {"subject", "detail", "assets"}) && body["assets"].is_array() &&
               body["assets"].size() == 1) {
        ticket.entityType = "Asset";
        ticket.entityId = referenceTo("Asset", body["assets"][0]);
    } else {
        throw HttpError(400, "a ticket has subject, detail and either clientReporter or one of assets");
    }
    ticket.subject = text(body["subject"]);
    ticket.detail = text(body["detail"]);
    if (ticket.subject.empty()) {
        throw HttpError(400, "the subject is empty");
    }
    return ticket;
}

// The first characters of a UTF-8 text.
std::string shortened(const std::string& text)
{
    std::size_t characters = 0;
    const auto end = std::find_if(text.begin(), text.end(), [&characters](char byte) {
        const bool startsCharacter = (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
        return startsCharacter && ++characters > shortTextLength;
    });
    return {text.begin(), end};
}

Json toListEntry(const Ticket& ticket)
{
    return {{"id", ticket.id},
            {"type", "JobTicket"},
            {"shortSubject", shortened(ticket.subject)},
            {"shortDetail", shortened(ticket.detail)},
            {"displayClient", ticket.entityType == "Client" ? Json("Client " + ticket.entityId) : Json()}};
}

struct Qualifier
{
    std::string entityType;
    std::string entityId;
};

Qualifier readQualifier(const std::optional<std::string>& qualifier)
{
    if (qualifier && qualifier->back() == ')') {
        for (const auto& [entityType, start] :
             {std::pair("Client", std::string("(clientId=")), {"Asset", "(assets.assetId="}}) {
            if (qualifier->compare(0, start.size(), start) == 0) {
                return {entityType, qualifier->substr(start.size(), qualifier->size() - start.size() - 1)};
            }
        }
    }
    throw HttpError(400, "the qualifier must be (clientId=ID) or (assets.assetId=ID)");
}

TechNote readTechNote(const Json& body)
{
    if (!hasExactly(body, {"noteText", "jobticket", "workTime", "isHidden"}) ||
        !body["isHidden"].is_boolean()) {
        throw HttpError(400, "a tech note has noteText, jobticket, workTime and isHidden");
    }
    const std::string workTime = text(body["workTime"]);
    if (workTime.empty() || workTime.find_first_not_of("0123456789") != std::string::npos) {
        throw HttpError(400, "the work time must be a string of digits");
    }
    return {0, 0, text(body["noteText"]), workTime, body["isHidden"].get<bool>()};
}

std::string cookieNamed(const Request& request, std::string_view name)
{
    std::string_view rest = view(request[http::field::cookie]);
    while (!rest.empty()) {
        const std::string_view pair = rest.substr(0, rest.find(';'));
        rest.remove_prefix(std::min(rest.size(), pair.size() + 1));
        const std::string cookie = boost::trim_copy(std::string(pair));
        if (cookie.size() > name.size() && cookie[name.size()] == '=' &&
            cookie.compare(0, name.size(), name) == 0) {
            return cookie.substr(name.size() + 1);
        }
    }
    return {};
}

bool sendsCookieOf(const Session& session, const Request& request)
{
    return "JSESSIONID=" + cookieNamed(request, "JSESSIONID") == session.cookie;
}

void checkUploadCookies(const HelpDesk& helpDesk, const Request& request)
{
    const Session* session = helpDesk.findSession(cookieNamed(request, "wosid"));
    if (session == nullptr || !sendsCookieOf(*session, request) ||
        cookieNamed(request, "vantryuser_helpdesk") != session->user) {
        throw HttpError(401, "the cookies name no open session");
    }
}

Answer welcome()
{
    return textAnswer("text/html", "<!DOCTYPE html><html><head><title>Vantry Sandbox</title></head>"
                                   "<body><h1>Vantry Sandbox</h1></body></html>\n");
}

Reply plannedReply(const PlannedAnswer& planned, const Request& request)
{
    Reply reply = planned.script ? *planned.script : replyWith(planned.answer, request);
    if (planned.closeAfter) {
        std::string& bytes = reply.steps.front().bytes;
        bytes.resize(std::min(bytes.size(), *planned.closeAfter));
        reply.afterwards = Afterwards::Drop;
    }
    reply.steps.insert(reply.steps.begin(), Step{{}, planned.delay});
    return reply;
}

} // namespace

RestService::RestService(SharedState& state, Account account, const std::string& base)
    : m_state(state),
      m_account(std::move(account)), m_routes{
                                         {http::verb::get, "/", [](const Request&) { return welcome(); }},
                                         {http::verb::get, base + "/Session",
                                          [this](const Request& request) { return openSession(request); }},
                                         {http::verb::delete_, base + "/Session",
                                          [this](const Request& request) { return closeSession(request); }},
                                         {http::verb::post, base + "/Tickets",
                                          [this](const Request& request) { return createTicket(request); }},
                                         {http::verb::get, base + "/Tickets",
                                          [this](const Request& request) { return listTickets(request); }},
                                         {http::verb::post, base + "/TechNotes",
                                          [this](const Request& request) { return createTechNote(request); }},
                                         {http::verb::post, "/helpdesk/attachment/upload",
                                          [this](const Request& request) {
                                              return uploadAttachment(request);
                                          },
                                          "reason"},
                                     }
{}

std::optional<PlannedConnection> RestService::accepted(bool secure)
{
    return m_state.plannedConnections.take(secure);
}

void RestService::received(ReceivedRequest request)
{
    m_state.requests.add(std::move(request));
}

Reply RestService::reply(const Request& request)
{
    if (const std::optional<PlannedAnswer> planned = m_state.plannedAnswers.take(request)) {
        return plannedReply(*planned, request);
    }
    return replyWith(answerByRoute(m_routes, request), request);
}

void RestService::checkCredentials(const Request& request) const
{
    const std::string_view target = view(request.target());
    if (parameterOf(target, "username") != m_account.user ||
        parameterOf(target, "password") != m_account.password) {
        throw HttpError(401, "the user name or the password is wrong");
    }
}

Answer RestService::openSession(const Request& request)
{
    checkCredentials(request);
    const Session& session = m_state.helpDesk.openSession(m_account.user);
    Answer answer = jsonAnswer(200, {{"type", "Session"}, {"sessionKey", session.key}});
    answer.headers.emplace_back("Set-Cookie", session.cookie + "; Path=/; HttpOnly");
    return answer;
}

Answer RestService::closeSession(const Request& request)
{
    const std::string key = parameterOf(view(request.target()), "sessionKey").value_or("");
    const Session* session = m_state.helpDesk.findSession(key);
    if (session == nullptr) {
        throw HttpError(404, "there is no such session");
    }
    if (!sendsCookieOf(*session, request)) {
        throw HttpError(401, "the cookie is not the session's");
    }
    m_state.helpDesk.closeSession(key);
    return jsonAnswer(200, {{"type", "Session"}, {"closed", true}});
}

Answer RestService::createTicket(const Request& request)
{
    checkCredentials(request);
    const Id id = m_state.helpDesk.add(readTicket(parseJson(request.body())));
    return jsonAnswer(201, {{"id", id}, {"type", "JobTicket"}});
}

Answer RestService::listTickets(const Request& request) const
{
    checkCredentials(request);
    const Qualifier wanted = readQualifier(parameterOf(view(request.target()), "qualifier"));
    Json list = Json::array();
    for (const Ticket& ticket : m_state.helpDesk.tickets()) {
        if (ticket.entityType == wanted.entityType && ticket.entityId == wanted.entityId) {
            list.push_back(toListEntry(ticket));
        }
    }
    return jsonAnswer(200, list);
}

Answer RestService::createTechNote(const Request& request)
{
    checkCredentials(request);
    const Json body = parseJson(request.body());
    TechNote note = readTechNote(body);
    const Ticket* ticket = m_state.helpDesk.findTicket(referenceTo("JobTicket", body["jobticket"]));
    if (ticket == nullptr) {
        throw HttpError(404, "there is no such ticket");
    }
    note.ticketId = ticket->id;
    const Id id = m_state.helpDesk.add(std::move(note));
    return jsonAnswer(201, {{"id", id}, {"type", "TechNote"}});
}

Answer RestService::uploadAttachment(const Request& request)
{
    checkUploadCookies(m_state.helpDesk, request);
    const std::string_view target = view(request.target());
    if (parameterOf(target, "type") != "TechNote") {
        throw HttpError(400, "attachments can be fixed to the type TechNote alone");
    }
    const TechNote* note = m_state.helpDesk.findTechNote(parameterOf(target, "entityId").value_or(""));
    if (note == nullptr) {
        throw HttpError(404, "there is no such tech note");
    }
    UploadedFile file = readUpload(view(request[http::field::content_type]), request.body());
    const Id id =
        m_state.helpDesk.add(Attachment{0, note->id, std::move(file.fileName), std::move(file.content)});
    return jsonAnswer(201, {{"id", id}, {"type", "Attachment"}});
}

} // namespace sandbox
