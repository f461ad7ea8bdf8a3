// Who is asked whether to trust the server, with what, on which thread, and what the answer does.
#include "platform/TestWindow.h"
#include "support/VantryTest.h"

#include <algorithm>
#include <stdexcept>

#if __has_include(<wincrypt.h>)
#include <windows.h>

#include <wincrypt.h>
#endif

using namespace LogText;

static_assert(sizeof(CERT_CONTEXT::cbCertEncoded) == 4);

namespace
{
class Certificate : public VantryTest
{
protected:
    Certificate() { useHttps(); }

    /// Registers a callback that answers `trusted` and counts.
    void answerWith(bool trusted)
    {
        SetValidateCertificateCallback([this, trusted](const CERT_CONTEXT& certificate) {
            ++asked;
            askedOn = std::this_thread::get_id();
            seen.assign(certificate.pbCertEncoded, certificate.pbCertEncoded + certificate.cbCertEncoded);
            EXPECT_NE(certificate.dwCertEncodingType & X509_ASN_ENCODING, 0U);
            sentWhenAsked = sandbox.requests().size();
            return trusted;
        });
        log.clear();
    }

    int asked = 0;
    std::thread::id askedOn;
    std::string seen;
    std::size_t sentWhenAsked = 99;
};

class EveryCertificate : public Certificate, public testing::WithParamInterface<Operation>
{};
} // namespace

TEST_F(Certificate, TheHostSeesTheServersOwnCertificateBeforeAnythingIsSent)
{
    answerWith(true);
    CreateSession();
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(askedOn, std::this_thread::get_id());
    EXPECT_EQ(sentWhenAsked, 0U);
    EXPECT_TRUE(seen == sandbox.get("/leaf.der"));
    EXPECT_TRUE(sandbox.onlyRequest().secure);
    expectStatus(200, L"OK");
}

TEST_P(EveryCertificate, ARefusalLeavesItsLog)
{
    answerWith(false);
    GetParam().start();
    expectLog("certificate-refused-" + narrow(GetParam().exportName));
    EXPECT_EQ(asked, 1);
}

TEST_P(EveryCertificate, EveryCallProbesAndAsksAboutTheCertificateOfItsOwnProbe)
{
    answerWith(true);
    GetParam().start();
    const auto first = seen;
    sandbox.planConnection({{"certificate", "other"}});
    sandbox.planConnection({{"certificate", "other"}}); // the request's
    GetParam().start();
    EXPECT_EQ(asked, 2);
    EXPECT_FALSE(seen == first);
    EXPECT_EQ(sandbox.probes(), 2U);
    EXPECT_EQ(sandbox.requests().size(), 2U);
}

INSTANTIATE_TEST_SUITE_P(Call, EveryCertificate, testing::ValuesIn(operations()),
                         testing::PrintToStringParamName());

TEST_F(Certificate, OfAnUnknownAuthorityFailsBeforeTheHostIsAsked)
{
    sandbox.planConnection({{"certificate", "unknownCa"}});
    answerWith(true);
    CreateSession();
    const auto texts = log.texts(CapturedLog::Threads::caller);
    const auto& status = GetLastResponse();
    EXPECT_EQ(status.httpStatusCode, 600);
    EXPECT_NE(status.errorMessage.find(L"certificate is not trusted"), std::wstring::npos);
    EXPECT_EQ(asked, 0);
    EXPECT_EQ(sandbox.probes(), 0U);
    EXPECT_TRUE(sandbox.requests().empty());
    expectLog("unknown-authority", texts, {{status.errorMessage, L"{message}"}});
}

TEST_F(Certificate, AServerThatTheSystemRefusesIsSentNothingInTheWordsOfTheProbe)
{
    const auto refusalOf = [this](const char* certificate, int skipped) {
        sandbox.planConnection({{"certificate", certificate}, {"skip", skipped}});
        CreateSession();
        EXPECT_EQ(GetLastResponse().httpStatusCode, 600);
        EXPECT_TRUE(sandbox.requests().empty());
        return GetLastResponse().errorMessage;
    };
    for (const auto* const certificate : {"unknownCa", "expired", "notYetValid", "otherHost"}) {
        SCOPED_TRACE(certificate);
        EXPECT_EQ(refusalOf(certificate, 1), refusalOf(certificate, 0));
    }
}

TEST_F(Certificate, WhatAnEarlierCallAcceptedBindsNoCallWithoutACallback)
{
    answerWith(true);
    CreateSession();
    SetValidateCertificateCallback(nullptr);
    sandbox.planConnection({{"certificate", "other"}}); // the probe's
    sandbox.planConnection({{"certificate", "other"}}); // the request's
    CreateSession();
    expectStatus(200, L"OK");
}

TEST_F(Certificate, APlainCallFromWithinTheCallbackLeavesTheNextConnectionUnderValidation)
{
    SetValidateCertificateCallback([this](const CERT_CONTEXT&) {
        SetEndPoint(sandbox.http);
        CloseSession();
        SetEndPoint(sandbox.https);
        return true;
    });
    sandbox.planConnection({{"certificate", "unknownCa"}, {"skip", 1}});
    CreateSession();
    EXPECT_EQ(GetLastResponse().httpStatusCode, 600);
    EXPECT_FALSE(sandbox.onlyRequest().secure);
}

/// The first probe's connection goes on with another certificate while the second probe awaits its answer.
TEST_F(Certificate, AnEarlierProbesConnectionChangesNothingThatIsShown)
{
    const std::string begun = "HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n<html>";
    answerWith(true);
    sandbox.planConnection({{"tls", "1.2"}});
    sandbox.plan(Answer::script({{begun}, {"", 10, 100, "other"}}, "stay").to("/"));
    CreateSession();
    sandbox.plan(Answer(200).to("/").after(500));
    CreateSession();
    EXPECT_EQ(asked, 2);
    EXPECT_TRUE(seen == sandbox.get("/leaf.der"));
    expectStatus(200, L"OK");
}

TEST_F(Certificate, AnExceptionOfTheCallbackCountsAsARefusal)
{
    SetValidateCertificateCallback(
        [](const CERT_CONTEXT&) -> bool { throw std::runtime_error("no screen"); });
    log.clear();
    CreateSession();
    expectLog("callback-throws", log.texts(CapturedLog::Threads::caller));
}

TEST_F(Certificate, WhatTheProbeAnswersDoesNotDecide)
{
    for (const bool trusted : {true, false}) {
        ResponseStatus whenAsked;
        SetValidateCertificateCallback([&](const CERT_CONTEXT&) {
            CapturedLog::setLevel(log4cxx::Level::getOff());
            whenAsked = GetLastResponse();
            return trusted;
        });
        sandbox.plan(Answer(404, "", "").to("/"));
        CreateSession();
        EXPECT_EQ(whenAsked.httpStatusCode, 404);
        EXPECT_EQ(whenAsked.errorMessage, L"Not Found");
        expectStatus(trusted ? 200 : 601, trusted ? L"OK" : certificateRefusedText);
    }
}

/// The scheme counts letter by letter.
TEST_F(Certificate, APlainConnectionIsNeitherProbedNorAskedAbout)
{
    answerWith(false);
    sandbox.planConnection({{"certificate", "unknownCa"}}); // nor looked at
    for (const auto& endPoint : {sandbox.http, L"HTTPS" + sandbox.https.substr(5)}) {
        SetEndPoint(endPoint);
        CreateSession();
        expectStatus(200, L"OK");
    }
    EXPECT_EQ(asked, 0);
    EXPECT_EQ(sandbox.probes(), 0U);
    EXPECT_EQ(log.containing(L"Connection is not secured. Skipping certificate validation.").size(), 2U);
    EXPECT_TRUE(sandbox.requests().back().secure);
}

TEST_F(Certificate, WithAWindowTheHostIsAskedOnTheWorkersThread)
{
    TestWindow window;
    answerWith(true);
    SetHWND(window.handle());
    CreateSession();
    ASSERT_TRUE(window.next(std::chrono::seconds(20)));
    ASSERT_TRUE(log.waitFor(L"~SignalAsyncRequestFinishedWrapper exiting."));
    SetHWND(nullptr);
    expectStatus(200, L"OK");
    EXPECT_NE(askedOn, std::this_thread::get_id());
    const auto lines = log.lines();
    EXPECT_TRUE(std::any_of(lines.begin(), lines.end(), [this](const auto& line) {
        return line.thread == askedOn && line.text == L"TRACE CVantryApi " + api + L"createSession entering.";
    }));
}
