/// @file
/// A host that knows a library by its file name alone and unloads it right after use.
#include "platform/PlatformSupport.h"
#include "platform/TestWindow.h"
#include "support/Sandbox.h"
#include "support/Text.h"
#include "support/Wait.h"

#include "vantry.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <chrono>
#include <functional>
#include <iostream>
#include <optional>

namespace
{
using namespace std::chrono_literals;

constexpr const wchar_t* cppInterface = L"TAVIKVANTRYAPI.dll";
constexpr const wchar_t* cInterface = L"vantry.dll";

/// A library, loaded by name and called through the names of its exports.
class LoadedLibrary
{
public:
    explicit LoadedLibrary(const wchar_t* fileName) : m_module(LoadLibraryW(fileName))
    {
        EXPECT_NE(m_module, nullptr) << GetLastError();
    }
    ~LoadedLibrary() { FreeLibrary(m_module); }
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;

    template <typename Function>
    Function* find(const char* name) const
    {
        auto* const address = GetProcAddress(m_module, name);
        EXPECT_NE(address, nullptr) << name;
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(address));
    }

private:
    HMODULE m_module;
};

/// The declaration gives the type alone: a use of the function would import it and keep the library loaded.
#define CALL(library, name) (library).find<decltype(name)>(#name)

/// The library gives itself back a little later than the host does.
bool waitUntilModuleIsGone(const wchar_t* fileName)
{
    return becomesTrue(10s, [fileName] { return GetModuleHandleW(fileName) == nullptr; });
}

class Unload : public testing::Test
{
protected:
    Unload() { trustAuthority(sandbox.authorityFile, sandbox.get("/ca.der")); }

    void configure(const LoadedLibrary& library)
    {
        CALL(library, SetEndPoint)(sandbox.https);
        CALL(library, SetCredentials)(sandbox.user, sandbox.password);
        CALL(library, SetValidateCertificateCallback)
        ([this](const CERT_CONTEXT&) {
            ++asked;
            return true;
        });
    }

    /// Two hundred lives of the library leave nothing behind.
    void live(const wchar_t* fileName, const std::function<void()>& loadUseAndUnload)
    {
        constexpr int warmUp = 20;
        constexpr int rounds = 200;
        std::size_t threads = 0;
        std::size_t handles = 0;
        for (int round = 0; round < warmUp + rounds; ++round) {
            if (round == warmUp) {
                threads = countThreads();
                handles = countHandles();
            }
            ASSERT_NO_FATAL_FAILURE(loadUseAndUnload()) << "round " << round;
            ASSERT_TRUE(waitUntilModuleIsGone(fileName)) << "round " << round;
        }
        EXPECT_EQ(asked, warmUp + rounds);
        EXPECT_GT(handles, 0U);
        // The system's pool comes and goes by a few; a leak of one in five lives is far beyond.
        EXPECT_LE(countThreads(), threads + 10);
        EXPECT_LE(countHandles(), handles + 40);
        std::cout << rounds << " rounds; threads " << threads << " -> " << countThreads() << ", handles "
                  << handles << " -> " << countHandles() << '\n';
    }

    /// One life of the library: load, configure, open a session, unload at once.
    void loadUseAndUnload(bool withWindow)
    {
        const LoadedLibrary library(cppInterface);
        EXPECT_EQ(CALL(library, GetLastResponse)().httpStatusCode, 0) << "not a fresh client";
        configure(library);
        if (withWindow) {
            CALL(library, SetHWND)(window.handle());
        }
        CALL(library, CreateSession)();
        if (withWindow) {
            const auto message = window.next(30s);
            ASSERT_TRUE(message);
            EXPECT_EQ(message->message, WM_ASYNC_REQUEST_FINISHED);
        }
        EXPECT_EQ(CALL(library, GetLastResponse)().httpStatusCode, 200);
    }

    Sandbox sandbox;
    TestWindow window;
    int asked = 0;
};

TEST_F(Unload, TwoHundredLivesOfTheLibraryLeaveNothingBehind)
{
    live(cppInterface, [this] { loadUseAndUnload(false); });
}

TEST_F(Unload, TwoHundredLivesOfTheLibraryWithAWindowLeaveNothingBehind)
{
    live(cppInterface, [this] { loadUseAndUnload(true); });
}

TEST_F(Unload, AnOperationInFlightKeepsTheModuleUntilItHasPostedItsMessage)
{
    for (int round = 0; round < 5; ++round) {
        sandbox.plan(Answer(200, R"({"sessionKey":"k"})").to("/helpdesk/rest/Session").after(300));
        {
            const LoadedLibrary library(cppInterface);
            configure(library);
            CALL(library, SetHWND)(window.handle());
            CALL(library, CreateSession)();
        }
        EXPECT_NE(GetModuleHandleW(cppInterface), nullptr);
        EXPECT_TRUE(window.next(30s));
        ASSERT_TRUE(waitUntilModuleIsGone(cppInterface));
    }
}

TEST_F(Unload, TwoHundredLivesOfTheCInterfaceLeaveNothingBehind)
{
    const auto trust = [](void* user, const char* /*host*/, const std::uint8_t* /*der*/, std::size_t /*size*/,
                          std::int32_t* answer) {
        ++*static_cast<int*>(user);
        *answer = 1;
    };
    const auto ignore = [](void* /*user*/, std::int32_t /*level*/, const char* /*text*/) {};
    live(cInterface, [&] {
        const LoadedLibrary library(cInterface);
        CALL(library, vantry_set_endpoint)(narrow(sandbox.https).c_str());
        CALL(library, vantry_set_credentials)(narrow(sandbox.user).c_str(), narrow(sandbox.password).c_str());
        CALL(library, vantry_set_certificate_callback)(trust, &asked);
        CALL(library, vantry_set_log_callback)(ignore, nullptr, VANTRY_LOG_TRACE);
        auto* const result = CALL(library, vantry_create_session)();
        EXPECT_EQ(CALL(library, vantry_result_status)(result), 200);
        CALL(library, vantry_result_free)(result);
    });
}
} // namespace
