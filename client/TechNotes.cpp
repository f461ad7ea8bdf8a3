#include "CompletionSignal.h"
#include "Dispatch.h"
#include "ModuleObjects.h"
#include "Operation.h"
#include "RequestContent.h"
#include "ResponseHandling.h"
#include "RestText.h"

#include <string>

using Platform::fromRestText;
using Platform::toRestText;
using web::http::methods;
using web::http::status_codes;

namespace json = web::json;

namespace Utils = VantryIntegrationApi::Utils;

namespace
{
json::value noteBody(const TechNote& techNote)
{
    auto body = json::value::object();
    body[U("noteText")] = json::value::string(toRestText(techNote.noteText));
    body[U("jobticket")] = Utils::entity(U("JobTicket"), techNote.jobTicketId);
    body[U("workTime")] = json::value::string(toRestText(std::to_wstring(techNote.workTime)));
    body[U("isHidden")] = json::value::boolean(!techNote.isVisible);
    return body;
}
} // namespace

namespace VantryIntegrationApi
{
void CVantryApi::wrpSaveTechNote(const TechNote& techNote)
{
    const LumoLogBlock block(m_logger, "VantryIntegrationApi::CVantryApi::wrpSaveTechNote");
    dispatch("SaveTechNote", &CVantryApi::saveTechNote, techNote);
}

void CVantryApi::saveTechNote(const TechNote& techNote)
{
    const SignalAsyncRequestFinishedWrapper signal(m_hwnd);
    const LumoFunction log(m_logger, "VantryIntegrationApi::CVantryApi::saveTechNote");
    json::value body;
    const auto requestUri = prepared(log, [&] {
        auto address = addressWithCredentials(U("/TechNotes"));
        LUMO_DEBUG(log, L"Going to prepare json object from input data.");
        body = noteBody(techNote);
        LogUsedUrl(address, log.name());
        return address;
    });
    if (!requestUri || !mayBeSent(log)) {
        return;
    }
    const auto answer = sendRequest_ProvideServerResponse(*requestUri, fromRestText(methods::POST), body);
    m_lastResponse = answer.status;
    m_lastSavedTechNoteId.clear();
    if (m_lastResponse.httpStatusCode != status_codes::Created) {
        LUMO_ERROR(log, g_requestErrorText << L" Setting to LastSavedTechNoteId empty string");
        return;
    }
    readAnswer(log, [&] {
        m_lastSavedTechNoteId = Utils::jsonText(Utils::member(answer.body, U("id")));
        LUMO_INFO(log, L"LastSavedTechNoteID is: " << m_lastSavedTechNoteId);
    });
}
} // namespace VantryIntegrationApi
