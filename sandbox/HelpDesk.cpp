#include "HelpDesk.h"

#include "Encoding.h"

#include <algorithm>

namespace sandbox
{

namespace
{

constexpr Id firstTicketId = 1001;
constexpr Id firstTechNoteId = 2001;
constexpr Id firstAttachmentId = 3001;

template <typename Record>
Id append(std::vector<Record>& records, Record record, Id firstId)
{
    record.id = firstId + records.size();
    records.push_back(std::move(record));
    return records.back().id;
}

template <typename Record>
const Record* find(const std::vector<Record>& records, std::string_view id)
{
    const auto found = std::find_if(records.begin(), records.end(),
                                    [id](const Record& record) { return std::to_string(record.id) == id; });
    return found == records.end() ? nullptr : &*found;
}

Json toJson(const Session& session)
{
    return {{"key", session.key}, {"cookie", session.cookie}, {"user", session.user}};
}

Json toJson(const Ticket& ticket)
{
    return {{"id", ticket.id},
            {"entityType", ticket.entityType},
            {"entityId", ticket.entityId},
            {"subject", ticket.subject},
            {"detail", ticket.detail}};
}

Json toJson(const TechNote& note)
{
    return {{"id", note.id},
            {"ticketId", note.ticketId},
            {"noteText", note.noteText},
            {"workTime", note.workTime},
            {"isHidden", note.isHidden}};
}

Json toJson(const Attachment& attachment)
{
    return {{"id", attachment.id},
            {"techNoteId", attachment.techNoteId},
            {"fileName", attachment.fileName},
            {"size", attachment.content.size()}};
}

template <typename Record>
Json listOf(const std::vector<Record>& records)
{
    Json list = Json::array();
    for (const Record& record : records) {
        list.push_back(toJson(record));
    }
    return list;
}

} // namespace

const Session& HelpDesk::openSession(const std::string& user)
{
    return m_sessions.emplace_back(Session{randomToken(), "JSESSIONID=" + randomToken(), user});
}

const Session* HelpDesk::findSession(std::string_view key) const
{
    const auto found = std::find_if(m_sessions.begin(), m_sessions.end(),
                                    [key](const Session& session) { return session.key == key; });
    return found == m_sessions.end() ? nullptr : &*found;
}

void HelpDesk::closeSession(std::string_view key)
{
    m_sessions.erase(std::remove_if(m_sessions.begin(), m_sessions.end(),
                                    [key](const Session& session) { return session.key == key; }),
                     m_sessions.end());
}

Id HelpDesk::add(Ticket ticket)
{
    return append(m_tickets, std::move(ticket), firstTicketId);
}

Id HelpDesk::add(TechNote note)
{
    return append(m_techNotes, std::move(note), firstTechNoteId);
}

Id HelpDesk::add(Attachment attachment)
{
    return append(m_attachments, std::move(attachment), firstAttachmentId);
}

const Ticket* HelpDesk::findTicket(std::string_view id) const
{
    return find(m_tickets, id);
}

const TechNote* HelpDesk::findTechNote(std::string_view id) const
{
    return find(m_techNotes, id);
}

const Attachment* HelpDesk::findAttachment(std::string_view id) const
{
    return find(m_attachments, id);
}

Json HelpDesk::toJson() const
{
    return {{"sessions", listOf(m_sessions)},
            {"tickets", listOf(m_tickets)},
            {"techNotes", listOf(m_techNotes)},
            {"attachments", listOf(m_attachments)}};
}

} // namespace sandbox
