#include "RestService.h"

#include "Multipart.h"
#include "Target.h"

#include <boost/beast/http/field.hpp>
#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <algorithm>
#include <charconv>

namespace sandbox
{
namespace
{
namespace http = boost::beast::http;

constexpr std::size_t shortTextLength = 60;

void require(bool holds, unsigned status, const char* otherwise)
{
    if (!holds) {
        throw HttpError(status, otherwise);
    }
}

std::string text(const Json& object, const char* member)
{
    return object.at(member).get<std::string>();
}

Json readTicket(const Json& body)
{
    const Json& entity = body.contains("assets") ? body["assets"].at(0) : body.at("clientReporter");
    Json ticket = {{"entityType", text(entity, "type")},
                   {"entityId", text(entity, "id")},
                   {"subject", text(body, "subject")},
                   {"detail", text(body, "detail")}};
    require(ticket["entityType"] == (body.contains("assets") ? "Asset" : "Client"), 400, "a wrong type");
    require(!text(body, "subject").empty(), 400, "the subject is empty");
    return ticket;
}

/// The first characters of a UTF-8 text.
std::string shortened(const std::string& text)
{
    std::size_t characters = 0;
    const auto end = std::find_if(text.begin(), text.end(), [&characters](char byte) {
        const bool startsCharacter = (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
        return startsCharacter && ++characters > shortTextLength;
    });
    return {text.begin(), end};
}

Json toListEntry(const Json& ticket)
{
    const bool isClients = ticket["entityType"] == "Client";
    return {{"id", ticket["id"]},
            {"type", "JobTicket"},
            {"shortSubject", shortened(text(ticket, "subject"))},
            {"shortDetail", shortened(text(ticket, "detail"))},
            {"displayClient", isClients ? Json("Client " + text(ticket, "entityId")) : Json()}};
}

/// Type and identifier of the entity whose tickets are wanted.
std::pair<std::string, std::string> readQualifier(const std::string& qualifier)
{
    if (!qualifier.empty() && qualifier.back() == ')') {
        for (const auto& [entityType, start] :
             {std::pair("Client", std::string("(clientId=")), {"Asset", "(assets.assetId="}}) {
            if (qualifier.compare(0, start.size(), start) == 0) {
                return {entityType, qualifier.substr(start.size(), qualifier.size() - start.size() - 1)};
            }
        }
    }
    throw HttpError(400, "the qualifier must be (clientId=ID) or (assets.assetId=ID)");
}

Json readTechNote(const Json& body, const Json& ticket)
{
    const std::string workTime = text(body, "workTime");
    require(!workTime.empty() && workTime.find_first_not_of("0123456789") == std::string::npos, 400,
            "the work time must be a string of digits");
    return {{"ticketId", ticket["id"]},
            {"noteText", text(body, "noteText")},
            {"workTime", workTime},
            {"isHidden", body.at("isHidden").get<bool>()}};
}

std::string parameter(const Request& request, std::string_view name)
{
    return parameterOf(view(request.target()), name).value_or("");
}

std::string cookie(const Request& request, std::string_view name)
{
    const std::string parameters = ';' + std::string(view(request[http::field::cookie]));
    return std::string(headerParameter(parameters, name).value_or(""));
}

std::string uniqueText()
{
    return to_string(boost::uuids::random_generator()());
}

Json::iterator findSession(Json& sessions, const std::string& key)
{
    return std::find_if(sessions.begin(), sessions.end(),
                        [&key](const Json& session) { return session["key"] == key; });
}

bool sendsCookieOf(const Json& session, const Request& request)
{
    return session["cookie"] == "JSESSIONID=" + cookie(request, "JSESSIONID");
}

const Json& recordNamed(const Json& records, std::uint64_t firstId, const std::string& id)
{
    return records[positionOf(id, firstId, records.size())];
}

/// Adds a record; its identifier comes first.
std::uint64_t add(Json& records, std::uint64_t firstId, const Json& members)
{
    Json record = {{"id", firstId + records.size()}};
    record.update(members);
    records.push_back(std::move(record));
    return records.back()["id"];
}

Answer created(std::uint64_t id, const char* type)
{
    return jsonAnswer(201, {{"id", id}, {"type", type}});
}

Answer welcome(const Request& /*request*/)
{
    return textAnswer("text/html", "<!DOCTYPE html><html><head><title>Vantry Sandbox</title></head>"
                                   "<body><h1>Vantry Sandbox</h1></body></html>\n");
}

Reply plannedReply(const PlannedAnswer& planned, const Request& request)
{
    Reply reply = planned.script ? *planned.script : replyTo(request, planned.answer);
    if (planned.closeAfter) {
        std::string& bytes = reply.steps.front().bytes;
        bytes.resize(std::min<std::uint64_t>(bytes.size(), *planned.closeAfter));
        reply.afterwards = Afterwards::Drop;
    }
    if (planned.delay.count() > 0) {
        reply.steps.insert(reply.steps.begin(), Step{{}, planned.delay});
    }
    return reply;
}
} // namespace

std::size_t positionOf(std::string_view id, std::uint64_t firstId, std::size_t count)
{
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(id.data(), id.data() + id.size(), number);
    require(error == std::errc() && end == id.data() + id.size() && number >= firstId &&
                number - firstId < count,
            404, "there is no such record");
    return number - firstId;
}

RestService::RestService(SharedState& state, std::string user, std::string password)
    : m_state(state), m_user(std::move(user)), m_password(std::move(password))
{
    const auto member = [this](auto handle) {
        return [this, handle](const Request& request) { return (this->*handle)(request); };
    };
    const std::string base = restBase;
    m_routes = {
        {http::verb::get, "/", welcome},
        {http::verb::get, base + "/Session", member(&RestService::openSession)},
        {http::verb::delete_, base + "/Session", member(&RestService::closeSession)},
        {http::verb::post, base + "/Tickets", member(&RestService::createTicket)},
        {http::verb::get, base + "/Tickets", member(&RestService::listTickets)},
        {http::verb::post, base + "/TechNotes", member(&RestService::createTechNote)},
        {http::verb::post, "/helpdesk/attachment/upload", member(&RestService::uploadAttachment), "reason"},
    };
}

std::optional<PlannedConnection> RestService::accepted(bool secure)
{
    return m_state.plannedConnections.take(
        [secure](const PlannedConnection& planned) { return planned.secure.value_or(secure) == secure; });
}

void RestService::received(const std::shared_ptr<const ReceivedRequest>& request)
{
    m_state.requests.push_back(request);
}

Reply RestService::reply(const Request& request)
{
    const auto planned = m_state.plannedAnswers.take([&request](const PlannedAnswer& answer) {
        return (!answer.method || *answer.method == view(request.method_string())) &&
               (!answer.path || *answer.path == pathOf(view(request.target())));
    });
    return planned ? plannedReply(*planned, request) : Service::reply(request);
}

void RestService::checkCredentials(const Request& request) const
{
    require(parameter(request, "username") == m_user && parameter(request, "password") == m_password, 401,
            "the user name or the password is wrong");
}

Answer RestService::openSession(const Request& request)
{
    checkCredentials(request);
    const std::string key = uniqueText();
    const std::string cookie = "JSESSIONID=" + uniqueText();
    m_state.helpDesk["sessions"].push_back({{"key", key}, {"cookie", cookie}, {"user", m_user}});
    Answer answer = jsonAnswer(200, {{"type", "Session"}, {"sessionKey", key}});
    answer.headers.emplace_back("Set-Cookie", cookie + "; Path=/; HttpOnly");
    return answer;
}

Answer RestService::closeSession(const Request& request)
{
    Json& sessions = m_state.helpDesk["sessions"];
    const auto session = findSession(sessions, parameter(request, "sessionKey"));
    require(session != sessions.end(), 404, "there is no such session");
    require(sendsCookieOf(*session, request), 401, "the cookie is not the session's");
    sessions.erase(session);
    return jsonAnswer(200, {{"type", "Session"}, {"closed", true}});
}

Answer RestService::createTicket(const Request& request)
{
    checkCredentials(request);
    const Json ticket = readTicket(Json::parse(request.body()));
    return created(add(m_state.helpDesk["tickets"], firstTicketId, ticket), "JobTicket");
}

Answer RestService::listTickets(const Request& request) const
{
    checkCredentials(request);
    const auto [entityType, entityId] = readQualifier(parameter(request, "qualifier"));
    Json list = Json::array();
    for (const Json& ticket : m_state.helpDesk["tickets"]) {
        if (ticket["entityType"] == entityType && ticket["entityId"] == entityId) {
            list.push_back(toListEntry(ticket));
        }
    }
    return jsonAnswer(200, list);
}

Answer RestService::createTechNote(const Request& request)
{
    checkCredentials(request);
    const Json body = Json::parse(request.body());
    const Json& reference = body.at("jobticket");
    require(text(reference, "type") == "JobTicket", 400, "a wrong type");
    const Json& ticket = recordNamed(m_state.helpDesk["tickets"], firstTicketId, text(reference, "id"));
    return created(add(m_state.helpDesk["techNotes"], firstTechNoteId, readTechNote(body, ticket)),
                   "TechNote");
}

Answer RestService::uploadAttachment(const Request& request)
{
    Json& sessions = m_state.helpDesk["sessions"];
    const auto session = findSession(sessions, cookie(request, "wosid"));
    require(session != sessions.end() && sendsCookieOf(*session, request) &&
                (*session)["user"] == cookie(request, "vantryuser_helpdesk"),
            401, "the cookies name no open session");
    require(parameter(request, "type") == "TechNote", 400, "only a TechNote takes attachments");
    const Json& note =
        recordNamed(m_state.helpDesk["techNotes"], firstTechNoteId, parameter(request, "entityId"));
    const UploadedFile file = readUpload(view(request[http::field::content_type]), request.body());
    m_state.attachments.push_back({m_state.requests.back(), file.content}); // the last request is this one
    return created(
        add(m_state.helpDesk["attachments"], firstAttachmentId,
            {{"techNoteId", note["id"]}, {"fileName", file.fileName}, {"size", file.content.size()}}),
        "Attachment");
}
} // namespace sandbox
