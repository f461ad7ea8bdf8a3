#pragma once

#include "Http.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sandbox
{

using Id = std::uint64_t;

struct Session
{
    std::string key;
    std::string cookie; // name and value, as a client sends it back
    std::string user;
};

struct Ticket
{
    Id id;
    std::string entityType;
    std::string entityId;
    std::string subject;
    std::string detail;
};

struct TechNote
{
    Id id;
    Id ticketId;
    std::string noteText;
    std::string workTime;
    bool isHidden;
};

struct Attachment
{
    Id id;
    Id techNoteId;
    std::string fileName;
    std::string content;
};

// What the help desk knows. Records get their identifier when they are added; a finder answers null for
// what is not there. Identifiers are looked up as text, the way requests name them.
class HelpDesk
{
public:
    const Session& openSession(const std::string& user);
    const Session* findSession(std::string_view key) const;
    void closeSession(std::string_view key);

    Id add(Ticket ticket);
    Id add(TechNote note);
    Id add(Attachment attachment);

    const std::vector<Ticket>& tickets() const { return m_tickets; }
    const Ticket* findTicket(std::string_view id) const;
    const TechNote* findTechNote(std::string_view id) const;
    const Attachment* findAttachment(std::string_view id) const;

    Json toJson() const;

private:
    std::vector<Session> m_sessions;
    std::vector<Ticket> m_tickets;
    std::vector<TechNote> m_techNotes;
    std::vector<Attachment> m_attachments;
};

} // namespace sandbox
