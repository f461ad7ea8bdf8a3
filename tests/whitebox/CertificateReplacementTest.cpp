// Needs contexts of its own per handshake; WinHTTP may show one context twice.
#include "VantryApi.h"
#include "WindowsCalls.h"

#include "platform/PlatformSupport.h"
#include "support/CapturedLog.h"
#include "support/Sandbox.h"

#include <gtest/gtest.h>

#include <memory>

TEST(CertificateReplacement, EveryCallShowsTheCertificateOfItsOwnProbe)
{
    const Sandbox sandbox;
    const CapturedLog log;
    trustAuthority(sandbox.authorityFile, sandbox.get("/ca.der"));
    static VantryIntegrationApi::CVantryApi client; // leaves its certificate to the end of the process
    client.setEndPoint(sandbox.https);
    using Held = std::unique_ptr<const CERT_CONTEXT, BOOL (*)(PCCERT_CONTEXT)>;
    std::vector<Held> shown; // held, so that no later one can have the address of an earlier one
    client.setValidateCertificateCallback([&](const CERT_CONTEXT& certificate) {
        shown.emplace_back(CertDuplicateCertificateContext(&certificate), &CertFreeCertificateContext);
        return false;
    });
    client.wrpCreateSession();
    client.wrpCreateSession();
    client.setValidateCertificateCallback({});
    ASSERT_EQ(shown.size(), 2U);
    EXPECT_NE(shown[0], shown[1]);
}
