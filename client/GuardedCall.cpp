#include "GuardedCall.h"

#include "ErrorText.h"
#include "ModuleTexts.h"
#include "OwnOutcome.h"
#include "StringTable.h"
#include "VantryApi.h"

using Platform::fromAnsi;

namespace VantryIntegrationApi::Utils
{
ServerAnswer safe_CallMethod(const std::function<ServerAnswer()>& method)
{
    const LumoFunction log(CVantryApi::m_logger, "VantryIntegrationApi::Utils::safe_CallMethod");
    ServerAnswer answer;
    auto& status = answer.status;
    try {
        answer = method();
    } catch (const OwnOutcome& outcome) {
        status = outcome.status();
    } catch (const web::http::http_exception& e) {
        LUMO_FATAL(log, L"http_exception happened: " << fromAnsi(e.what()));
        const auto message = Platform::errorText(e.error_code());
        LUMO_FATAL(log, L"Error Code: " << e.error_code().value() << L"; Message: " << message);
        status = {requestFailedStatus, message};
    } catch (const web::uri_exception& e) {
        LUMO_FATAL(log, L"uri_exception happened: " << fromAnsi(e.what()));
        status = {requestFailedStatus, fromAnsi(e.what())};
    } catch (const web::json::json_exception& e) {
        LUMO_FATAL(log, L"json_exception happened: " << fromAnsi(e.what()));
        status = {requestFailedStatus, fromAnsi(e.what())};
    } catch (const std::exception& e) {
        LUMO_FATAL(log, L"std::exception happened: " << fromAnsi(e.what()));
        status = {requestFailedStatus, LoadStringW(IDS_REQUEST_FAILED)};
    } catch (...) {
        LUMO_FATAL(log, L"Unexpected exception happened");
        status = {requestFailedStatus, LoadStringW(IDS_REQUEST_FAILED)};
    }
    LUMO_INFO(log, L"Returnting ResponseStatus information with such values. HttpStatusCode: "
                       << status.httpStatusCode << L" Error Message: " << status.errorMessage);
    return answer;
}
} // namespace VantryIntegrationApi::Utils
