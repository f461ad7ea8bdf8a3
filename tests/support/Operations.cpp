#include "support/Operations.h"

#include "support/Text.h"

#include "TAVIKVANTRYAPI.h"

#include <algorithm>

const std::vector<Operation>& operations()
{
    static const std::wstring credentials = L"username=***************&password=***************";
    static const std::vector<Operation> all{
        {L"SaveTechNote", L"saveTechNote", L"Saving tech note.", 201, L"/TechNotes?" + credentials,
         L"unsafe_sendRequest", L"POST",
         LR"({"isHidden":false,"jobticket":{"id":"1001","type":"JobTicket"},"noteText":"A note","workTime":"15"})",
         [] {
             SaveTechNote({L"1001", L"A note", 15, true});
         }},
        {L"SaveAttachment", L"saveAttachment", L"Saving attachment.", 201,
         L"/attachment/upload?type=TechNote&entityId=", L"unsafe_sendRequest_UploadAttachment", L"", L"",
         [] {
             SaveAttachment({"content", L"file.txt"});
         }},
        {L"CreateSession", L"createSession", L"Creating session.", 200, L"/Session?" + credentials,
         L"unsafe_sendRequest_CreateSession", L"", L"", [] { CreateSession(); }},
        {L"CloseSession", L"closeSession", L"Closing session.", 200, L"/Session?sessionKey=",
         L"unsafe_sendRequest_CloseSession", L"", L"", [] { CloseSession(); }},
        {L"RequestTicketList", L"requestTicketList", L"Requesting ticket list", 200,
         L"/Tickets?qualifier=(clientId=42)&" + credentials, L"unsafe_sendRequest", L"GET", L"",
         [] { RequestTicketList(L"42", Client); }},
        {L"CreateTicket", L"createTicket", L"Creating ticket.", 201, L"/Tickets?" + credentials,
         L"unsafe_sendRequest", L"POST",
         LR"({"clientReporter":{"id":"42","type":"Client"},"detail":"A detail","subject":"A subject"})", [] {
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
