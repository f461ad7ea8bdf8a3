#include "Result.h"

#include "Module.h"
#include "StringTable.h"
#include "Text.h"

#include <algorithm>
#include <cassert>
#include <initializer_list>
#include <memory>
#include <utility>

namespace
{
/// Made when the library is loaded: there may be no memory when one is needed.
std::vector<vantry_result> makeShared()
{
    const std::initializer_list<std::pair<vantry_status, const char*>> ownStatuses{
        {VANTRY_OK, "OK"},
        {VANTRY_UPLOAD_REFUSED, "The server refused the upload."},
        {VANTRY_REQUEST_FAILED, IDS_REQUEST_FAILED_TEXT},
        {VANTRY_CERTIFICATE_REFUSED, IDS_CERTIFICATE_REFUSED_TEXT},
        {VANTRY_GIVEN_UP, "The host has given the operation up."},
        {VANTRY_INVALID_ARGUMENT,
         "An argument is null, malformed UTF-8, a struct of another size or an unknown value."},
        {VANTRY_CALLED_FROM_CALLBACK, "The function was called from within a callback."},
        {VANTRY_OUT_OF_MEMORY, "There is not enough memory."},
        {VANTRY_NOT_THE_LAST_NOTE, "The attachment's note is not the tech note that was saved last."},
        {VANTRY_NO_LOG_FILE, "The log file cannot be opened for writing."}};
    std::vector<vantry_result> results;
    for (const auto& [status, text] : ownStatuses) {
        results.emplace_back(ResponseStatus{status, {}}, -1);
        results.back().message = text;
        results.back().isShared = true;
    }
    return results;
}

Platform::ModuleObject<std::vector<vantry_result>> sharedResults(makeShared());

std::string messageOf(const ResponseStatus& outcome)
{
    return outcome.errorMessage.empty()
               ? "The server answered with the status " + std::to_string(outcome.httpStatusCode) + "."
               : CInterface::forHost(outcome.errorMessage);
}

const vantry_result& read(const vantry_result* result)
{
    const auto* const shown = result == nullptr ? vantry_result::shared(VANTRY_INVALID_ARGUMENT) : result;
    assert(shown != nullptr); // the shared ones are there from the start
    return *shown;
}
} // namespace

vantry_result::vantry_result(const ResponseStatus& outcome, int success)
    : status(outcome.httpStatusCode), succeeded(status == success), message(messageOf(outcome))
{}

vantry_result* vantry_result::shared(std::int32_t status) noexcept
{
    const auto found = std::find_if(sharedResults.object.begin(), sharedResults.object.end(),
                                    [status](const auto& one) { return one.status == status; });
    return found == sharedResults.object.end() ? nullptr : &*found;
}

void vantry_result::takeTickets(const std::vector<TicketListEntry>& list)
{
    const auto add = [this](const auto& appendTo, const std::wstring& text) {
        const auto start = ticketTexts.size();
        appendTo(ticketTexts, text);
        ticketTexts.push_back('\0');
        return start;
    };
    constexpr auto id = [](std::string& to, const std::wstring& json) { to += CInterface::plain(json); };
    constexpr auto text = &CInterface::appendForHost;
    std::size_t atLeast = 0;
    for (const auto& ticket : list) {
        atLeast +=
            ticket.id.size() + ticket.name.size() + ticket.detail.size() + ticket.clientName.size() + 4;
    }
    ticketTexts.reserve(atLeast);
    tickets.reserve(list.size());
    for (const auto& ticket : list) {
        tickets.push_back({add(id, ticket.id), add(text, ticket.name), add(text, ticket.detail),
                           add(text, ticket.clientName)});
    }
}

const char* vantry_status_message(int32_t status)
{
    const auto* const own = vantry_result::shared(status);
    return own == nullptr ? "" : own->message.c_str();
}

int32_t vantry_result_status(const vantry_result* result)
{
    return read(result).status;
}

int32_t vantry_result_succeeded(const vantry_result* result)
{
    return read(result).succeeded ? 1 : 0;
}

const char* vantry_result_message(const vantry_result* result)
{
    return read(result).message.c_str();
}

const char* vantry_result_ticket_id(const vantry_result* result)
{
    return read(result).ticketId.c_str();
}

const char* vantry_result_note_id(const vantry_result* result)
{
    return read(result).noteId.c_str();
}

size_t vantry_result_ticket_count(const vantry_result* result)
{
    return read(result).tickets.size();
}

int32_t vantry_result_ticket(const vantry_result* result, size_t index, vantry_ticket* ticket)
{
    const auto& list = read(result);
    if (ticket == nullptr || ticket->size != sizeof(vantry_ticket) || index >= list.tickets.size()) {
        return VANTRY_INVALID_ARGUMENT;
    }
    const auto* const texts = list.ticketTexts.data();
    const auto& [id, name, detail, clientName] = list.tickets[index];
    *ticket = {sizeof(vantry_ticket), texts + id, texts + name, texts + detail, texts + clientName};
    return VANTRY_OK;
}

void vantry_result_free(vantry_result* result)
{
    if (result != nullptr && !result->isShared) {
        const std::unique_ptr<vantry_result> last(result);
    }
}
