// The settings and operations of the C interface, over the client.
#include "Log.h"
#include "Result.h"
#include "Text.h"
#include "Turn.h"

#include "Addresses.h"
#include "AnsiText.h"
#include "Module.h"
#include "ModuleObjects.h"
#include "RestText.h"
#include "Utf8.h"

#include <exception>
#include <functional>
#include <memory>

using CInterface::callBack;
using CInterface::inTurn;
using CInterface::plain;
using CInterface::Refusal;
using CInterface::textOf;
using VantryIntegrationApi::g_client;

namespace
{
Platform::ModuleObject<std::wstring> endPoint; ///< the client's

struct Progress
{
    vantry_progress_callback callback = nullptr;
    void* user = nullptr;
};
Progress progress;

/// What the waiting thread does for the host.
bool watch(const VantryIntegrationApi::Transfer& transfer)
{
    CInterface::Log::deliver();
    std::int32_t giveUp = 0;
    if (progress.callback != nullptr) {
        callBack([&] {
            progress.callback(progress.user, transfer.sent, transfer.toSend, transfer.received,
                              transfer.toReceive, &giveUp);
        });
    }
    return giveUp == 0;
}

/// Without anything to do the client need not wake up while it waits.
void watchIfNeeded()
{
    const bool isNeeded = progress.callback != nullptr || CInterface::Log::hasCallback();
    g_client.setTransferWatcher(isNeeded ? &watch : VantryIntegrationApi::TransferWatcher());
}

bool isTrusted(vantry_certificate_callback callback, void* user, const CERT_CONTEXT& certificate)
{
    const auto host = VantryIntegrationApi::Utils::serverAddress(endPoint.object).host();
    const auto name = CInterface::forHost(Platform::fromRestText(host));
    std::int32_t trust = 0;
    callBack(
        [&] { callback(user, name.c_str(), certificate.pbCertEncoded, certificate.cbCertEncoded, &trust); });
    return trust == 1;
}

template <typename Struct>
const Struct& checked(const Struct* given)
{
    if (given == nullptr || given->size != sizeof(Struct)) {
        throw Refusal{VANTRY_INVALID_ARGUMENT};
    }
    return *given;
}

VantryType checkedType(std::int32_t type)
{
    if (type != VANTRY_ASSET && type != VANTRY_CLIENT) {
        throw Refusal{VANTRY_INVALID_ARGUMENT};
    }
    return static_cast<VantryType>(type);
}

/// Runs an operation of the client's.
ResponseStatus outcomeOf(const std::function<void()>& operation)
{
    try {
        operation();
        return g_client.GetLastResponse();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& e) {
        return {VANTRY_REQUEST_FAILED, Platform::fromAnsi(e.what())};
    }
}

/// The result of `operate`, which gives the outcome; `take` puts what a success has brought into it.
template <typename Operate, typename Take>
vantry_result* perform(int success, const Operate& operate, const Take& take)
{
    std::unique_ptr<vantry_result> result;
    const auto status = inTurn([&] {
        auto made = std::make_unique<vantry_result>(operate(), success);
        if (made->succeeded) {
            take(*made);
        }
        CInterface::Log::deliver();
        result = std::move(made);
    });
    return result == nullptr ? vantry_result::shared(status) : result.release();
}

void takeNothing(vantry_result& /*result*/) {}
} // namespace

int32_t vantry_version(void)
{
    return VANTRY_VERSION;
}

int32_t vantry_set_endpoint(const char* endpoint)
{
    return inTurn([&] {
        auto given = textOf(endpoint);
        g_client.setEndPoint(given);
        endPoint.object.swap(given);
    });
}

int32_t vantry_set_credentials(const char* user_name, const char* password)
{
    return inTurn([&] { g_client.setCredentials(textOf(user_name), textOf(password)); });
}

int32_t vantry_set_certificate_callback(vantry_certificate_callback callback, void* user)
{
    return inTurn([&] {
        if (callback == nullptr) {
            g_client.setValidateCertificateCallback(nullptr);
            return;
        }
        g_client.setValidateCertificateCallback([callback, user](const CERT_CONTEXT& certificate) {
            return isTrusted(callback, user, certificate);
        });
    });
}

int32_t vantry_set_log_callback(vantry_log_callback callback, void* user, int32_t level)
{
    return inTurn([&] {
        CInterface::Log::setCallback(callback, user, level);
        watchIfNeeded();
    });
}

int32_t vantry_set_log_file(const char* path, int32_t level)
{
    return inTurn([&] {
        if (path != nullptr) {
            textOf(path); // refuses what is malformed
        }
        CInterface::Log::setFile(path, level);
    });
}

int32_t vantry_set_progress_callback(vantry_progress_callback callback, void* user)
{
    return inTurn([&] {
        progress = {callback, user};
        watchIfNeeded();
    });
}

vantry_result* vantry_create_session(void)
{
    return perform(
        200, [] { return outcomeOf([] { g_client.wrpCreateSession(); }); }, &takeNothing);
}

vantry_result* vantry_close_session(void)
{
    return perform(
        200, [] { return outcomeOf([] { g_client.wrpCloseSession(); }); }, &takeNothing);
}

vantry_result* vantry_create_ticket(const vantry_new_ticket* ticket)
{
    const auto operate = [&] {
        const auto& given = checked(ticket);
        const TicketCreationInformation record{textOf(given.entity_id), checkedType(given.entity_type),
                                               textOf(given.subject), textOf(given.detail)};
        return outcomeOf([&] { g_client.wrpCreateTicket(record); });
    };
    return perform(201, operate,
                   [](vantry_result& result) { result.ticketId = plain(g_client.GetCreatedTicketID()); });
}

vantry_result* vantry_save_tech_note(const vantry_tech_note* note)
{
    const auto operate = [&] {
        const auto& given = checked(note);
        if (given.is_visible != 0 && given.is_visible != 1) {
            throw Refusal{VANTRY_INVALID_ARGUMENT};
        }
        const TechNote record{textOf(given.ticket_id), textOf(given.text), given.work_time,
                              given.is_visible == 1};
        return outcomeOf([&] { g_client.wrpSaveTechNote(record); });
    };
    return perform(201, operate,
                   [](vantry_result& result) { result.noteId = plain(g_client.GetLastSavedTechNoteID()); });
}

vantry_result* vantry_save_attachment(const vantry_attachment* attachment)
{
    const auto operate = [&] {
        const auto& given = checked(attachment);
        if (given.data == nullptr && given.data_size != 0) {
            throw Refusal{VANTRY_INVALID_ARGUMENT};
        }
        const auto note = CInterface::forHost(textOf(given.note_id));
        auto fileName = textOf(given.file_name);
        if (note.empty() || note != plain(g_client.GetLastSavedTechNoteID())) {
            throw Refusal{VANTRY_NOT_THE_LAST_NOTE};
        }
        const Attachment record{std::string(static_cast<const char*>(given.data), given.data_size),
                                std::move(fileName)};
        auto outcome = outcomeOf([&] { g_client.wrpSaveAttachment(record); });
        outcome.errorMessage = Platform::fromUtf8(plain(outcome.errorMessage)); // the reason is JSON text
        return outcome;
    };
    return perform(201, operate, &takeNothing);
}

vantry_result* vantry_request_ticket_list(const char* entity_id, int32_t entity_type)
{
    const auto operate = [&] {
        const auto id = textOf(entity_id);
        const auto type = checkedType(entity_type);
        return outcomeOf([&] { g_client.wrpRequestTicketList(id, type); });
    };
    return perform(200, operate, [](vantry_result& result) { result.takeTickets(g_client.GetTicketList()); });
}
