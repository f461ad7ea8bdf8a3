// TLS of every wrong kind, before the host is asked, between its answer and the request, and in its callback.
#include "faults/Fault.h"

#include <memory>
#include <stdexcept>

namespace
{
const std::wstring refusedText = L"Could not verify the Vantry certificate.";

Fault probe(std::string name, std::string what, Fate fate)
{
    return Fault(std::move(name), std::move(what))
        .over(Endpoint::Https).at(Stage::Probe).connection(std::move(fate)).gives(600);
}

/// The fate of the connection after the probe's: the certificate of the request's own is not validated.
Fault changed(std::string name, std::string what, std::string certificate)
{
    return Fault(std::move(name), std::move(what)).over(Endpoint::Https)
        .connection({"certificate", std::move(certificate), 1});
}

Fault callback(std::string name, std::string what, ValidateCertificateCallback asked)
{
    return Fault(std::move(name), std::move(what)).over(Endpoint::Https)
        .by([asked = std::move(asked)](const Surroundings&) { SetValidateCertificateCallback(asked); });
}
} // namespace

Section certificateFaults()
{
    return {
        "Certificates and callbacks",
        {
            probe("ExpiredCertificate", "the certificate has expired", {"certificate", "expired"}),
            probe("CertificateOfTomorrow", "the certificate is not valid yet", {"certificate", "notYetValid"}),
            probe("CertificateOfAnotherHost", "the certificate names another host", {"certificate", "otherHost"}),
            probe("SelfSignedCertificate", "the certificate is signed by itself", {"certificate", "selfSigned"}),
            probe("UnknownAuthority", "the certificate's authority is unknown", {"certificate", "unknownCa"}),
            probe("PlainTextForTls", "the secure port answers in plain text", {"fault", "plain"}),
            probe("TlsAlert", "the server refuses the handshake with an alert", {"fault", "alert"}),
            probe("TlsGarbage", "the server answers the handshake with garbage", {"fault", "garbage"}),
            probe("ClosedInTheHandshake", "the connection ends in the handshake", {"fault", "closeInHandshake"}),
            probe("ClosedBeforeTheHandshake", "the connection ends before the handshake", {"fault", "close"}),
            probe("ResetBeforeTheHandshake", "the connection is reset before the handshake", {"fault", "reset"}),
            probe("SilentInTheHandshake", "the server never answers the handshake", {"fault", "silent"}).silence(),
            Fault("TlsOnThePlainPort", "an https endpoint names a port without TLS")
                .over(Endpoint::Https).at(Stage::Probe)
                .by([](const Surroundings& around) {
                    SetEndPoint(L"https" + around.plainEndPoint.substr(4));
                }).gives(600),
            Fault("PlainOnTheTlsPort", "an http endpoint names a port with TLS")
                .by([](const Surroundings& around) { SetEndPoint(L"http" + around.secureEndPoint.substr(5)); })
                .gives(600),
            changed("AnotherCertificateForTheRequest", "another certificate of the same authority after the probe", "other"),
            changed("ExpiredCertificateForTheRequest", "an expired certificate after the probe", "expired"),
            changed("StrangerForTheRequest", "a certificate of an unknown authority after the probe", "unknownCa"),
            Fault("HandshakeFailsForTheRequest", "the server refuses the handshake after the probe")
                .over(Endpoint::Https).connection({"fault", "alert", 1}).gives(600),
            Fault("ClosedAfterTheProbe", "the connection after the probe's is closed")
                .over(Endpoint::Https).connection({"fault", "close", 1}).gives(600),
            callback("CallbackRefuses", "your callback refuses", [](auto&) { return false; })
                .at(Stage::Probe).gives(601, refusedText),
            callback("CallbackThrows", "your callback throws a `std::exception`",
                     [](auto&) -> bool { throw std::runtime_error("no screen"); })
                .at(Stage::Probe).gives(601, refusedText),
            callback("CallbackThrowsANumber", "your callback throws something else: it leaves the operation",
                     [](auto&) -> bool { throw 7; })
                .at(Stage::Probe).lets(Leaves::Number),
            callback("CallbackReads", "your callback reads all results",
                     [](auto&) {
                         return GetLastResponse().httpStatusCode == 200 && GetTicketList().size() < 1000 &&
                                GetCreatedTicketID().size() < 1000;
                     }),
            callback("CallbackTakesItselfBack", "your callback takes itself back",
                     [data = std::make_shared<int>(7)](auto&) {
                         SetValidateCertificateCallback(nullptr);
                         return *data == 7;
                     }),
            Fault("CallbackSetsTheEndpoint", "your callback sets the same endpoint again")
                .over(Endpoint::Https)
                .by([](const Surroundings& around) {
                    SetValidateCertificateCallback([endPoint = around.secureEndPoint](auto&) {
                        SetEndPoint(endPoint);
                        return true;
                    });
                }),
            callback("CallbackRunsAnOperation", "your callback runs a whole operation, its own callback empty",
                     [](auto&) {
                         SetValidateCertificateCallback(nullptr);
                         RequestTicketList(L"42", Client);
                         return GetLastResponse().httpStatusCode == 200;
                     }).noWindow(),
        }};
}
