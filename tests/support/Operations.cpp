#include "support/Operations.h"

#include "support/Text.h"

#include "TAVIKVANTRYAPI.h"

#include <algorithm>

const std::vector<Operation>& operations()
{
    static const std::wstring credentials = L"username=***************&password=***************";
    static const std::vector<Operation> all{
        {L"SaveTechNote", L"saveTechNote", 201, L"/TechNotes?" + credentials,
         [] {
             SaveTechNote({L"1001", L"A note", 15, true});
         }},
        {L"SaveAttachment", L"saveAttachment", 201, L"/attachment/upload?type=TechNote&entityId=",
         [] {
             SaveAttachment({"content", L"file.txt"});
         }},
        {L"CreateSession", L"createSession", 200, L"/Session?" + credentials, [] { CreateSession(); }},
        {L"CloseSession", L"closeSession", 200, L"/Session?sessionKey=", [] { CloseSession(); }},
        {L"RequestTicketList", L"requestTicketList", 200, L"/Tickets?qualifier=(clientId=42)&" + credentials,
         [] { RequestTicketList(L"42", Client); }},
        {L"CreateTicket", L"createTicket", 201, L"/Tickets?" + credentials, [] {
             CreateTicket({L"42", Client, L"A subject", L"A detail"});
         }}};
    return all;
}

const Operation& operation(const std::wstring& exportName)
{
    return *std::find_if(operations().begin(), operations().end(),
                         [&](const auto& entry) { return entry.exportName == exportName; });
}

std::ostream& operator<<(std::ostream& out, const Operation& operation)
{
    return out << narrow(operation.exportName);
}
