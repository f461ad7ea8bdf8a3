#include "faults/HostFaults.h"

#include "platform/PlatformSupport.h"

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

using Begin = std::function<void(CapturedLog& log, const std::wstring& endPoint)>;

Begin callback(ValidateCertificateCallback asked)
{
    return [asked = std::move(asked)](auto& /*log*/, const auto& /*endPoint*/) {
        SetValidateCertificateCallback(asked);
    };
}

const std::map<std::string, Begin>& hostFaults()
{
    static const std::map<std::string, Begin> all{
        {"callbackRefuses", callback([](const CERT_CONTEXT&) { return false; })},
        {"callbackThrows",
         callback([](const CERT_CONTEXT&) -> bool { throw std::runtime_error("no screen"); })},
        {"callbackThrowsANumber", callback([](const CERT_CONTEXT&) -> bool { throw 7; })},
        {"noCallback", callback(nullptr)},
        {"callbackReads", callback([](const CERT_CONTEXT&) {
             return GetLastResponse().httpStatusCode == 200 && GetTicketList().size() < 1000 &&
                    GetCreatedTicketID().size() < 1000;
         })},
        {"callbackRunsAnOperation", callback([](const CERT_CONTEXT&) {
             SetValidateCertificateCallback(nullptr);
             RequestTicketList(L"42", Client);
             return GetLastResponse().httpStatusCode == 200;
         })},
        {"callbackTakesItselfBack",
         [](auto& /*log*/, const auto& /*endPoint*/) {
             SetValidateCertificateCallback([own = std::make_shared<int>(7)](const CERT_CONTEXT&) {
                 SetValidateCertificateCallback(nullptr);
                 return *own == 7;
             });
         }},
        {"callbackSetsTheEndpoint",
         [](auto& /*log*/, const auto& endPoint) {
             SetValidateCertificateCallback([endPoint](const CERT_CONTEXT&) {
                 SetEndPoint(endPoint);
                 return true;
             });
         }},
        {"logThrows", [](auto& log, const auto& /*endPoint*/) { log.onLine(L"", diskIsFull); }},
        {"logThrowsANumber", [](auto& log, const auto& /*endPoint*/) { log.onLine(L"", [] { throw 7; }); }},
        {"logThrowsInSetters", [](auto& log, const auto& endPoint) {
             log.onLine(L"", diskIsFull);
             SetEndPoint(endPoint);
             SetValidateCertificateCallback(nullptr);
         }}};
    return all;
}
} // namespace

void beginHostFault(const std::string& name, CapturedLog& log, const std::wstring& endPoint)
{
    if (const auto shortage = shortages().find(name); shortage != shortages().end()) {
        shortage->second.begin();
    } else {
        hostFaults().at(name)(log, endPoint);
    }
}

void endHostFault(const std::string& name)
{
    if (const auto shortage = shortages().find(name); shortage != shortages().end()) {
        shortage->second.end();
    }
}
