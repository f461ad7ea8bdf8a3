#include "CompletionSignal.h"
#include "Dispatch.h"
#include "RestText.h"
#include "Utils.h"
#include "VantryApi.h"

#include <string>

using Platform::toRestText;
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
    LUMO_FUNCTION(m_logger, "VantryIntegrationApi::CVantryApi::saveTechNote");
    json::value body;
    const auto prepareRequest = [&] {
        auto requestUri = addressWithCredentials(U("/TechNotes"));
        LUMO_DEBUG(L"Going to prepare json object from input data.");
        body = noteBody(techNote);
        logUsedUrl(requestUri, lumoName);
        return requestUri;
    };
    Utils::JsonAnswer answer;
    if (!performPost(lumoName, prepareRequest, body, answer)) {
        return;
    }
    if (m_lastResponse.httpStatusCode != status_codes::Created) {
        m_lastSavedTechNoteId.clear();
        LUMO_ERROR(g_requestErrorText << L" Setting to LastSavedTechNoteId empty string");
        return;
    }
    m_lastSavedTechNoteId = Utils::jsonText(Utils::member(*answer, U("id")));
    LUMO_INFO(L"LastSavedTechNoteID is: " << m_lastSavedTechNoteId);
}
} // namespace VantryIntegrationApi
