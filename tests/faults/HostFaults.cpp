#include "faults/HostFaults.h"

#include "platform/Shortages.h"

#include "TAVIKVANTRYAPI.h"

#include <map>
#include <memory>
#include <stdexcept>

namespace
{
[[noreturn]] void diskIsFull()
{
    throw std::runtime_error("the disk is full");
}

[[noreturn]] bool noScreen(const CERT_CONTEXT& /*certificate*/)
{
    throw std::runtime_error("no screen");
}

bool readsAll(const CERT_CONTEXT& /*certificate*/)
{
    return GetLastResponse().httpStatusCode == 200 && GetTicketList().size() < 1000 &&
           GetCreatedTicketID().size() < 1000;
}

bool runsAnOperation(const CERT_CONTEXT& /*certificate*/)
{
    SetValidateCertificateCallback(nullptr);
    RequestTicketList(L"42", Client);
    return GetLastResponse().httpStatusCode == 200;
}

using Begin = std::function<void(const Surroundings&)>;

Begin callback(ValidateCertificateCallback asked)
{
    return
        [asked = std::move(asked)](const Surroundings& /*around*/) { SetValidateCertificateCallback(asked); };
}

const std::map<std::string, Begin>& hostFaults()
{
    static const std::map<std::string, Begin> all{
        {"callbackRefuses", callback([](const CERT_CONTEXT&) { return false; })},
        {"callbackThrows", callback(noScreen)},
        {"callbackThrowsANumber", callback([](const CERT_CONTEXT&) -> bool { throw 7; })},
        {"noCallback", callback(nullptr)},
        {"callbackReads", callback(readsAll)},
        {"callbackRunsAnOperation", callback(runsAnOperation)},
        {"callbackTakesItselfBack",
         [](const auto&) {
             SetValidateCertificateCallback([own = std::make_shared<int>(7)](const CERT_CONTEXT&) {
                 SetValidateCertificateCallback(nullptr);
                 return *own == 7;
             });
         }},
        {"callbackSetsTheEndpoint",
         [](const auto& around) {
             SetValidateCertificateCallback([endPoint = around.endPoint](const CERT_CONTEXT&) {
                 SetEndPoint(endPoint);
                 return true;
             });
         }},
        {"logThrows", [](const auto& around) { around.onEveryLine(diskIsFull); }},
        {"logThrowsANumber", [](const auto& around) { around.onEveryLine([] { throw 7; }); }},
        {"logThrowsInSetters", [](const auto& around) {
             around.onEveryLine(diskIsFull);
             SetEndPoint(around.endPoint);
             SetValidateCertificateCallback(nullptr);
         }}};
    return all;
}
} // namespace

void beginHostFault(const std::string& name, const Surroundings& around)
{
    if (const auto shortage = shortages().find(name); shortage != shortages().end()) {
        shortage->second.begin();
    } else {
        hostFaults().at(name)(around);
    }
}

void endHostFault(const std::string& name)
{
    if (const auto shortage = shortages().find(name); shortage != shortages().end()) {
        shortage->second.end();
    }
}
