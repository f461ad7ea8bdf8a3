/// @file
/// The Vantry help-desk client for C++17, of any compiler: a header over `vantry.h`.
///
/// @code
/// vantry::Client client("https://helpdesk.example.com/helpdesk/rest", "technician", "secret");
/// client.onCertificate([](const std::string& host, const auto& der) { return ask(host, der); });
/// const std::string ticket = client.createTicket("42", vantry::EntityType::Client, "Printer", "It is on
/// fire.");
/// @endcode
///
/// Text is UTF-8. A failure is an exception: `vantry::Error`, or what a callback has thrown. A program with a
/// window has its work done by `Client::inBackground`; callbacks then run on that thread.
#pragma once

#include "vantry.h"

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <future>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace vantry
{
/// An operation or a setting that failed: `what` is a text to show.
class Error : public std::runtime_error
{
public:
    Error(std::int32_t status, const std::string& message) : std::runtime_error(message), m_status(status) {}

    /// The server's HTTP code or a `vantry_status`.
    std::int32_t status() const noexcept { return m_status; }

private:
    std::int32_t m_status;
};

enum class EntityType : std::int32_t
{
    Asset = VANTRY_ASSET,
    Client = VANTRY_CLIENT
};

/// One ticket of a list; the server's short forms of its texts.
struct Ticket
{
    std::string id;
    std::string name;
    std::string detail;
    std::string clientName;
};

/// How far an exchange is, in bytes; `toReceive` is 0 while that is not known.
struct Progress
{
    std::uint64_t sent;
    std::uint64_t toSend;
    std::uint64_t received;
    std::uint64_t toReceive;
};

/// The process's one client: there is one object at a time, and it outlives the work that it does in the
/// background. Operations may be called on any thread; one waits until the one before it is through.
/// Callbacks are set before.
///
/// Callbacks run on the thread that called. One that throws has answered "no", and the call throws it on.
/// From within a callback an operation fails with status 604.
class Client
{
public:
    /// Whether the certificate (DER) of the server `host` is trusted.
    using CertificateCallback =
        std::function<bool(const std::string& host, const std::vector<std::uint8_t>& der)>;
    /// Takes a line of the log; `level` is a `vantry_log_level`.
    using LogCallback = std::function<void(std::int32_t level, const std::string& line)>;
    /// Whether to go on; called every some 20 ms while an operation waits for the server.
    using ProgressCallback = std::function<bool(const Progress&)>;

    Client(const std::string& endpoint, const std::string& userName, const std::string& password)
    {
        check(vantry_set_endpoint(text(endpoint)));
        check(vantry_set_credentials(text(userName), text(password)));
    }

    ~Client()
    {
        vantry_set_certificate_callback(nullptr, nullptr);
        vantry_set_progress_callback(nullptr, nullptr);
        vantry_set_log_callback(nullptr, nullptr, VANTRY_LOG_FATAL);
        vantry_set_log_file(nullptr, VANTRY_LOG_FATAL);
        thrown() = nullptr; // by the last lines of the log
    }

    Client(const Client&) = delete;
    Client(Client&&) = delete;
    Client& operator=(const Client&) = delete;
    Client& operator=(Client&&) = delete;

    /// Without a callback every server is trusted whose certificate passes the system's own validation.
    void onCertificate(CertificateCallback callback)
    {
        install(m_certificate, std::move(callback), [](auto* set) {
            return vantry_set_certificate_callback(set != nullptr ? &Client::askAboutCertificate : nullptr,
                                                   set);
        });
    }

    /// Takes the lines of `level` (a `vantry_log_level`) and above.
    void onLog(std::int32_t level, LogCallback callback)
    {
        install(m_log, std::move(callback), [level](auto* set) {
            return vantry_set_log_callback(set != nullptr ? &Client::handLogOver : nullptr, set, level);
        });
    }

    void onProgress(ProgressCallback callback)
    {
        install(m_progress, std::move(callback), [](auto* set) {
            return vantry_set_progress_callback(set != nullptr ? &Client::tellProgress : nullptr, set);
        });
    }

    /// Appends the lines of `level` (a `vantry_log_level`) and above to a file.
    void logTo(const std::string& path, std::int32_t level) { check(vantry_set_log_file(text(path), level)); }

    void createSession()
    {
        run([] { return vantry_create_session(); });
    }

    void closeSession()
    {
        run([] { return vantry_close_session(); });
    }

    /// The id of the new ticket.
    std::string createTicket(const std::string& entityId, EntityType entityType, const std::string& subject,
                             const std::string& detail)
    {
        const vantry_new_ticket ticket{sizeof(ticket), text(entityId), static_cast<std::int32_t>(entityType),
                                       text(subject), text(detail)};
        return vantry_result_ticket_id(run([&] { return vantry_create_ticket(&ticket); }).get());
    }

    /// The id of the new note; `workTime` is in the server's unit.
    std::string saveTechNote(const std::string& ticketId, const std::string& noteText, std::uint32_t workTime,
                             bool isVisible)
    {
        const vantry_tech_note note{sizeof(note), text(ticketId), text(noteText), workTime,
                                    isVisible ? 1 : 0};
        return vantry_result_note_id(run([&] { return vantry_save_tech_note(&note); }).get());
    }

    /// Attaches a file, of any bytes, to the note that was saved last.
    void saveAttachment(const std::string& noteId, const std::string& fileName, const std::string& data)
    {
        const vantry_attachment file{sizeof(file), text(noteId), text(fileName), data.data(), data.size()};
        run([&] { return vantry_save_attachment(&file); });
    }

    std::vector<Ticket> requestTicketList(const std::string& entityId, EntityType entityType)
    {
        const auto result = run([&] {
            return vantry_request_ticket_list(text(entityId), static_cast<std::int32_t>(entityType));
        });
        std::vector<Ticket> tickets;
        vantry_ticket entry{sizeof(entry), nullptr, nullptr, nullptr, nullptr};
        tickets.reserve(vantry_result_ticket_count(result.get()));
        while (vantry_result_ticket(result.get(), tickets.size(), &entry) == VANTRY_OK) {
            tickets.push_back({entry.id, entry.name, entry.detail, entry.client_name});
        }
        return tickets;
    }

    /// Has `work(client)` done on a thread of its own. The future gives what it returns or throws, and waits
    /// for it when it is destroyed.
    template <typename Work>
    auto inBackground(Work work) -> std::future<decltype(work(std::declval<Client&>()))>
    {
        return std::async(std::launch::async,
                          [this, work = std::move(work)]() mutable { return work(*this); });
    }

private:
    using Result = std::unique_ptr<vantry_result, decltype(&vantry_result_free)>;

    /// What a callback has thrown during the call that this thread is in.
    static std::exception_ptr& thrown()
    {
        // Nothing here is destroyed with the thread, which mingw-w64 does when the memory has gone. No call
        // leaves anything that would have to be.
        thread_local std::aligned_storage_t<sizeof(std::exception_ptr), alignof(std::exception_ptr)> memory;
        thread_local auto* const exception = new (&memory) std::exception_ptr;
        return *exception;
    }

    static void throwOn()
    {
        if (const auto exception = std::exchange(thrown(), nullptr)) {
            std::rethrow_exception(exception);
        }
    }

    static void check(std::int32_t status)
    {
        throwOn();
        if (status != VANTRY_OK) {
            throw Error(status, vantry_status_message(status));
        }
    }

    template <typename Operation>
    static Result run(Operation operation)
    {
        Result result(operation(), &vantry_result_free);
        throwOn();
        if (vantry_result_succeeded(result.get()) == 0) {
            throw Error(vantry_result_status(result.get()), vantry_result_message(result.get()));
        }
        return result;
    }

    /// No exception may leave a callback.
    template <typename Body>
    static void guarded(Body body) noexcept
    {
        try {
            body();
        } catch (...) {
            if (!thrown()) {
                thrown() = std::current_exception();
            }
        }
    }

    static const char* text(const std::string& value)
    {
        if (value.find('\0') != std::string::npos) {
            check(VANTRY_INVALID_ARGUMENT); // the library would see its beginning alone
        }
        return value.c_str();
    }

    /// The callback that is replaced is destroyed when no call can run it any more.
    template <typename Callback, typename Set>
    static void install(std::unique_ptr<Callback>& installed, Callback callback, Set set)
    {
        auto next = callback ? std::make_unique<Callback>(std::move(callback)) : nullptr;
        const std::int32_t status = set(next.get());
        if (status == VANTRY_OK) {
            installed.swap(next);
        }
        check(status);
    }

    static void VANTRY_CALL askAboutCertificate(void* callback, const char* host, const std::uint8_t* der,
                                                std::size_t size, std::int32_t* trust)
    {
        guarded([&] {
            *trust = (*static_cast<CertificateCallback*>(callback))(host, {der, der + size}) ? 1 : 0;
        });
    }

    static void VANTRY_CALL handLogOver(void* callback, std::int32_t level, const char* line)
    {
        guarded([&] { (*static_cast<LogCallback*>(callback))(level, line); });
    }

    static void VANTRY_CALL tellProgress(void* callback, std::uint64_t sent, std::uint64_t toSend,
                                         std::uint64_t received, std::uint64_t toReceive,
                                         std::int32_t* giveUp)
    {
        *giveUp = 1; // also for a callback that throws
        guarded([&] {
            *giveUp =
                (*static_cast<ProgressCallback*>(callback))({sent, toSend, received, toReceive}) ? 0 : 1;
        });
    }

    std::unique_ptr<CertificateCallback> m_certificate;
    std::unique_ptr<LogCallback> m_log;
    std::unique_ptr<ProgressCallback> m_progress;
};

/// A session for as long as the object lives.
class Session
{
public:
    explicit Session(Client& client) : m_client(client) { client.createSession(); }

    /// Closes the session if `close` was not called; nobody hears of a failure.
    ~Session()
    {
        try {
            close();
        } catch (...) { // a destructor does not throw
        }
    }

    Session(const Session&) = delete;
    Session(Session&&) = delete;
    Session& operator=(const Session&) = delete;
    Session& operator=(Session&&) = delete;

    void close()
    {
        if (std::exchange(m_isOpen, false)) {
            m_client.closeSession();
        }
    }

private:
    Client& m_client;
    bool m_isOpen = true;
};
} // namespace vantry
