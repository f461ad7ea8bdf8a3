// Many operations in one process: nothing that they need may stay behind.
#include "platform/PlatformSupport.h"
#include "platform/TestWindow.h"
#include "support/Operations.h"
#include "support/Sandbox.h"
#include "support/Text.h"

#include "TAVIKVANTRYAPI.h"

#include <log4cxx/logger.h>

#include <chrono>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <stdexcept>
#include <thread>

#if __has_include(<wincrypt.h>)
#include <windows.h>

#include <wincrypt.h>
#endif

namespace
{
using Clock = std::chrono::steady_clock;

constexpr int untilReset = 300; ///< operations after which the server forgets all

// The first half of the operations lets pools and caches fill. The system's pool may still grow by some
// threads, each with its stack and handle, at any time. Threads or handles that one operation in a hundred
// leaves behind go beyond these.
constexpr std::size_t memoryLimit = 16UL * 1024 * 1024;
constexpr std::size_t threadLimit = 16;
constexpr std::size_t handleLimit = 24;

/// A whole job: each operation finds what it needs.
const std::vector<std::wstring> job{L"CreateSession",  L"CreateTicket",      L"SaveTechNote",
                                    L"SaveAttachment", L"RequestTicketList", L"CloseSession"};

struct Usage
{
    std::size_t memory = residentMemory();
    std::size_t threads = countThreads();
    std::size_t handles = countHandles();
};

class Soak
{
public:
    explicit Soak(int operations) : m_operations(operations)
    {
        trustAuthority(m_sandbox.authorityFile, m_sandbox.get("/ca.der"));
        SetCredentials(m_sandbox.user, m_sandbox.password);
        SetValidateCertificateCallback([leaf = m_sandbox.get("/leaf.der")](const CERT_CONTEXT& certificate) {
            return leaf == std::string(certificate.pbCertEncoded,
                                       certificate.pbCertEncoded + certificate.cbCertEncoded);
        });
    }

    /// Whether what the operations used was given back.
    bool run(bool secure, bool withWindow)
    {
        SetEndPoint(secure ? m_sandbox.https : m_sandbox.http);
        m_awaited = withWindow ? &m_window : nullptr;
        SetHWND(withWindow ? m_window.handle() : nullptr);
        const auto start = Clock::now();
        perform(m_operations / 2);
        const Usage before;
        perform(m_operations - m_operations / 2);
        const auto seconds = std::chrono::duration<double>(Clock::now() - start).count();
        // The threads of the last operations and their connections end a moment after the message.
        std::this_thread::sleep_for(std::chrono::seconds(1));
        const Usage after;
        const bool flat = after.memory <= before.memory + memoryLimit &&
                          after.threads <= before.threads + threadLimit &&
                          after.handles <= before.handles + handleLimit;
        std::cout << "| " << (secure ? "https" : "http ") << " | " << (withWindow ? "window" : "none  ")
                  << " | " << m_operations << " | " << std::fixed << std::setprecision(1) << seconds
                  << " s | " << change(before.memory / 1024, after.memory / 1024) << " KiB | "
                  << change(before.threads, after.threads) << " | " << change(before.handles, after.handles)
                  << " | " << (flat ? "flat" : "GROWS") << " |" << std::endl;
        return flat;
    }

private:
    static std::string change(std::size_t before, std::size_t after)
    {
        return std::to_string(before) + " -> " + std::to_string(after);
    }

    void perform(int operations)
    {
        for (int done = 0; done < operations; ++done) {
            if (done % untilReset == 0) {
                m_sandbox.reset();
            }
            perform(operation(job[static_cast<std::size_t>(done) % job.size()]));
        }
    }

    void perform(const Operation& operation)
    {
        operation.start();
        if (m_awaited != nullptr && !m_awaited->next(std::chrono::seconds(60))) {
            throw std::runtime_error(narrow(operation.exportName) + " sends no message");
        }
        const auto& status = GetLastResponse();
        if (status.httpStatusCode != operation.success) {
            throw std::runtime_error(narrow(operation.exportName) + " ends with " +
                                     std::to_string(status.httpStatusCode) + ": " +
                                     narrow(status.errorMessage));
        }
    }

    const int m_operations;
    const Sandbox m_sandbox;
    TestWindow m_window;
    TestWindow* m_awaited = nullptr;
};
} // namespace

int main(int argc, char** argv)
{
    const int operations = argc == 2 ? std::atoi(argv[1]) : 0;
    if (operations <= 0) {
        std::cerr << "usage: vantry-soak OPERATIONS\n";
        return 64;
    }
    try {
        log4cxx::Logger::getRootLogger()->setLevel(log4cxx::Level::getOff());
        std::cout
            << "| endpoint | window | operations | time | memory | threads | handles or descriptors | |\n"
               "|---|---|---|---|---|---|---|---|\n";
        Soak soak(operations);
        bool flat = true;
        for (const bool secure : {false, true}) {
            for (const bool withWindow : {false, true}) {
                flat = soak.run(secure, withWindow) && flat;
            }
        }
        return flat ? 0 : 1;
    } catch (const std::exception& e) {
        std::cerr << "vantry-soak: " << e.what() << '\n';
        return 1;
    }
}
