#include "GuardedCall.h"

#include "StringTable.h"
#include "Utils.h"
#include "VantryApi.h"

using Platform::fromAnsi;

namespace VantryIntegrationApi::Utils
{
ResponseStatus safe_CallMethod(const std::function<ResponseStatus()>& method)
{
    LUMO_FUNCTION(CVantryApi::m_logger, "VantryIntegrationApi::Utils::safe_CallMethod");
    ResponseStatus status;
    try {
        status = method();
    } catch (const web::http::http_exception& e) {
        LUMO_FATAL(L"http_exception happened: " << fromAnsi(e.what()));
        const auto message = fromAnsi(e.error_code().message());
        LUMO_FATAL(L"Error Code: " << e.error_code().value() << L"; Message: " << message);
        status = {requestFailedStatus, message};
    } catch (const web::uri_exception& e) {
        LUMO_FATAL(L"uri_exception happened: " << fromAnsi(e.what()));
        status = {requestFailedStatus, fromAnsi(e.what())};
    } catch (const web::json::json_exception& e) {
        LUMO_FATAL(L"json_exception happened: " << fromAnsi(e.what()));
        status = {requestFailedStatus, fromAnsi(e.what())};
    } catch (const std::exception& e) {
        LUMO_FATAL(L"std::exception happened: " << fromAnsi(e.what()));
        status = {requestFailedStatus, LoadStringW(IDS_REQUEST_FAILED)};
    } catch (...) {
        LUMO_FATAL(L"Unexpected exception happened");
        status = {requestFailedStatus, LoadStringW(IDS_REQUEST_FAILED)};
    }
    LUMO_INFO(L"Returnting ResponseStatus information with such values. HttpStatusCode: "
              << status.httpStatusCode << L" Error Message: " << status.errorMessage);
    return status;
}
} // namespace VantryIntegrationApi::Utils
