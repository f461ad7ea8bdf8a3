#include "Parsing.h"
#include "Service.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/beast/http/field.hpp>
#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <algorithm>
#include <memory>
#include <utility>

namespace sandbox
{
namespace
{
namespace http = boost::beast::http;

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
    require(ticket["entityType"] == (body.contains("assets") ? "Asset" : "Client"), "a wrong type");
    require(!text(body, "subject").empty(), "the subject is empty");
    return ticket;
}

Json toListEntry(const Json& ticket)
{
    const bool isClients = ticket["entityType"] == "Client";
    return {{"id", ticket["id"]},
            {"type", "JobTicket"},
            {"shortSubject", ticket["subject"]},
            {"shortDetail", ticket["detail"]},
            {"displayClient", isClients ? Json("Client " + text(ticket, "entityId")) : Json()}};
}

std::string qualifierOf(const Json& ticket)
{
    const char* const member = ticket["entityType"] == "Client" ? "(clientId=" : "(assets.assetId=";
    return member + text(ticket, "entityId") + ')';
}

Json readTechNote(const Json& body, const Json& ticket)
{
    const std::string workTime = text(body, "workTime");
    require(!workTime.empty() && workTime.find_first_not_of("0123456789") == std::string::npos,
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

const Json& recordNamed(const Json& records, const std::string& id)
{
    const auto found = std::find_if(records.begin(), records.end(),
                                    [&id](const Json& record) { return record["id"].dump() == id; });
    require(found != records.end(), "there is no such record", 404);
    return *found;
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

class HelpDesk
{
public:
    HelpDesk(SharedState& state, std::string user, std::string password)
        : m_state(state), m_user(std::move(user)), m_password(std::move(password))
    {}

    Answer openSession(const Request& request)
    {
        checkCredentials(request);
        const std::string key = uniqueText();
        const std::string cookie = "JSESSIONID=" + uniqueText();
        m_state.helpDesk["sessions"].push_back({{"key", key}, {"cookie", cookie}, {"user", m_user}});
        Answer answer = jsonAnswer(200, {{"type", "Session"}, {"sessionKey", key}});
        answer.headers["Set-Cookie"] = cookie + "; Path=/; HttpOnly";
        return answer;
    }

    Answer closeSession(const Request& request)
    {
        Json& sessions = m_state.helpDesk["sessions"];
        const auto session = findSession(sessions, parameter(request, "sessionKey"));
        require(session != sessions.end(), "there is no such session", 404);
        require(sendsCookieOf(*session, request), "the cookie is not the session's", 401);
        sessions.erase(session);
        return jsonAnswer(200, {{"type", "Session"}, {"closed", true}});
    }

    Answer createTicket(const Request& request)
    {
        checkCredentials(request);
        const Json ticket = readTicket(Json::parse(request.body()));
        return created(add(m_state.helpDesk["tickets"], 1001, ticket), "JobTicket");
    }

    Answer listTickets(const Request& request) const
    {
        checkCredentials(request);
        const std::string qualifier = parameter(request, "qualifier");
        require(boost::starts_with(qualifier, "(clientId=") ||
                    boost::starts_with(qualifier, "(assets.assetId="),
                "the qualifier must be (clientId=ID) or (assets.assetId=ID)");
        Json list = Json::array();
        for (const Json& ticket : m_state.helpDesk["tickets"]) {
            if (qualifierOf(ticket) == qualifier) {
                list.push_back(toListEntry(ticket));
            }
        }
        return jsonAnswer(200, list);
    }

    Answer createTechNote(const Request& request)
    {
        checkCredentials(request);
        const Json body = Json::parse(request.body());
        const Json& reference = body.at("jobticket");
        require(text(reference, "type") == "JobTicket", "a wrong type");
        const Json& ticket = recordNamed(m_state.helpDesk["tickets"], text(reference, "id"));
        return created(add(m_state.helpDesk["techNotes"], 2001, readTechNote(body, ticket)), "TechNote");
    }

    Answer uploadAttachment(const Request& request)
    {
        Json& sessions = m_state.helpDesk["sessions"];
        const auto session = findSession(sessions, cookie(request, "wosid"));
        require(session != sessions.end() && sendsCookieOf(*session, request) &&
                    (*session)["user"] == cookie(request, "vantryuser_helpdesk"),
                "the cookies name no open session", 401);
        require(parameter(request, "type") == "TechNote", "only a TechNote takes attachments");
        const Json& note = recordNamed(m_state.helpDesk["techNotes"], parameter(request, "entityId"));
        const UploadedFile file = readUpload(view(request[http::field::content_type]), request.body());
        const auto id =
            add(m_state.helpDesk["attachments"], 3001,
                {{"techNoteId", note["id"]}, {"fileName", file.fileName}, {"size", file.content.size()}});
        m_state.attachments[std::to_string(id)] = file.content;
        return created(id, "Attachment");
    }

private:
    void checkCredentials(const Request& request) const
    {
        require(parameter(request, "username") == m_user && parameter(request, "password") == m_password,
                "the user name or the password is wrong", 401);
    }

    SharedState& m_state;
    std::string m_user;
    std::string m_password;
};
} // namespace

std::vector<Route> restRoutes(SharedState& state, const std::string& user, const std::string& password)
{
    const auto helpDesk = std::make_shared<HelpDesk>(state, user, password);
    const auto member = [helpDesk](auto handle) {
        return [helpDesk, handle](const Request& request) { return ((*helpDesk).*handle)(request); };
    };
    const std::string base = restBase;
    return {
        {http::verb::get, "/", welcome},
        {http::verb::get, base + "/Session", member(&HelpDesk::openSession)},
        {http::verb::delete_, base + "/Session", member(&HelpDesk::closeSession)},
        {http::verb::post, base + "/Tickets", member(&HelpDesk::createTicket)},
        {http::verb::get, base + "/Tickets", member(&HelpDesk::listTickets)},
        {http::verb::post, base + "/TechNotes", member(&HelpDesk::createTechNote)},
        {http::verb::post, "/helpdesk/attachment/upload", member(&HelpDesk::uploadAttachment), "reason"},
    };
}
} // namespace sandbox
