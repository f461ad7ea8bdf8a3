/// @file
/// The fixture of every test that talks to the library.
#pragma once

#include "platform/PlatformSupport.h"
#include "support/CapturedLog.h"
#include "support/Golden.h"
#include "support/Operations.h"
#include "support/Sandbox.h"
#include "support/Text.h"

#include "TAVIKVANTRYAPI.h"

#include <gtest/gtest.h>

#include <string>

/// Parts of the log's lines.
namespace LogText
{
const std::wstring api = L"VantryIntegrationApi::CVantryApi::";
const std::wstring mask = L"***************";
} // namespace LogText

/// Each test has a process of its own: library, sandbox and certificates are new.
class VantryTest : public testing::Test
{
protected:
    VantryTest()
    {
        SetEndPoint(sandbox.http);
        SetCredentials(sandbox.user, sandbox.password);
        log.clear();
    }

    void useHttps()
    {
        trustAuthority(sandbox.authorityFile, sandbox.get("/ca.der"));
        SetEndPoint(sandbox.https);
        log.clear();
    }

    /// Scheme, host and port of the endpoint.
    static std::wstring baseOf(const std::wstring& endPoint)
    {
        return endPoint.substr(0, endPoint.find(L'/', endPoint.find(L"://") + 3));
    }

    /// Compares lines, as `log.texts()` gives them, with tests/golden/NAME.log.
    void expectLog(const std::string& name, const std::vector<std::wstring>& lines, Marks marks = {})
    {
        marks.insert(marks.end(), {{baseOf(sandbox.http), L"{http}"}, {baseOf(sandbox.https), L"{https}"}});
        expectGolden(name, lines, marks);
    }

    void expectLog(const std::string& name) { expectLog(name, log.texts()); }

    void expectStatus(int code, const std::wstring& message)
    {
        EXPECT_EQ(GetLastResponse().httpStatusCode, code);
        EXPECT_EQ(GetLastResponse().errorMessage, message);
    }

    Sandbox sandbox;
    CapturedLog log;
};

/// A test of each of the six operations.
class EveryOperation : public VantryTest, public testing::WithParamInterface<Operation>
{};

constexpr const wchar_t* certificateRefusedText = L"Could not verify the Vantry certificate.";
