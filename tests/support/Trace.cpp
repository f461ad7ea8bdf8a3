#include "support/Trace.h"

#include "support/Text.h"

#include <algorithm>

namespace
{
const std::wstring guard =
    L"VantryIntegrationApi::SignalAsyncRequestFinishedWrapper::~SignalAsyncRequestFinishedWrapper";

bool matches(const std::wstring& expected, const std::wstring& actual)
{
    const auto gap = expected.find(L'\u2026');
    if (gap == std::wstring::npos) {
        return expected == actual;
    }
    const auto tail = expected.size() - gap - 1;
    return actual.size() > gap + tail && actual.compare(0, gap, expected, 0, gap) == 0 &&
           actual.compare(actual.size() - tail, tail, expected, gap + 1, tail) == 0;
}
} // namespace

namespace Trace
{
Lines operator+(Lines first, const Lines& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

std::wstring trace(const std::wstring& text)
{
    return L"TRACE CVantryApi " + text;
}

std::wstring debug(const std::wstring& text)
{
    return L"DEBUG CVantryApi " + text;
}

std::wstring info(const std::wstring& text)
{
    return L"INFO CVantryApi " + text;
}

std::wstring error(const std::wstring& text)
{
    return L"ERROR CVantryApi " + text;
}

std::wstring fatal(const std::wstring& text)
{
    return L"FATAL CVantryApi " + text;
}

Lines scope(const std::wstring& name, const Lines& inner)
{
    return Lines{trace(name + L" entering.")} + inner + Lines{trace(name + L" exiting.")};
}

Lines synchronous(const Operation& operation, const Lines& body)
{
    return Lines{L"INFO TAVIKVANTRYAPI " + operation.hostLine} +
           scope(api + L"wrp" + operation.exportName, Lines{trace(L"Sync. " + operation.exportName + L"()")} +
                                                          scope(api + operation.member, body) + scope(guard));
}

Lines asynchronousHost(const Operation& operation)
{
    return Lines{L"INFO TAVIKVANTRYAPI " + operation.hostLine} +
           scope(api + L"wrp" + operation.exportName, {trace(L"Async. " + operation.exportName + L"()")});
}

Lines worker(const Operation& operation, const Lines& body)
{
    return scope(api + operation.member, body) +
           scope(guard, {info(guard + L"; Sending signal async request finished.")});
}

Lines prepared(const Operation& operation, const std::wstring& maskedUrl)
{
    const auto name = api + operation.member;
    Lines url{info(L"Function: " + name + L" used url: " + maskedUrl)};
    if (operation.exportName == L"SaveTechNote") {
        return Lines{debug(name + L"; Going to prepare json object from input data.")} + url;
    }
    if (operation.exportName == L"CreateTicket") {
        return url + Lines{info(name + L"; Preparing json based on input information")};
    }
    return url;
}

Lines validated(const Operation& operation, const Lines& validation)
{
    const auto name = api + operation.member + L"; ";
    return Lines{debug(name + L"Going to validate certificate")} + validation +
           Lines{debug(name + L"Going to send request to server")};
}

Lines refused(const Operation& operation, const Lines& validation)
{
    const auto name = api + operation.member + L"; ";
    return Lines{debug(name + L"Going to validate certificate")} + validation +
           Lines{error(name + L"Validation of certificate has failed. User request is stopped.")};
}

Lines notSecured()
{
    const auto name = api + L"validateCertificateRequest";
    return scope(name, {info(name + L"; Connection is not secured. Skipping certificate validation.")});
}

Lines probe(const std::wstring& base, const Lines& verdict)
{
    const auto name = api + L"validateCertificateRequest";
    const auto config = api + L"getClientConfig";
    const auto save = api + L"SaveCertificateLocally";
    return scope(
        name,
        scope(utils + L"getSchemeIpAsUrl") +
            scope(config,
                  {debug(config + L"; This is secure connection. Setting validation of certificates.")}) +
            Lines{info(name + L"; Used url: " + base + L"/"),
                  debug(name + L"; Going to run task and get results.")} +
            scope(save, {info(save + L"; Storing certificate locally for further validation")}) +
            Lines{info(name +
                       L"; Certificate validation request, ended successfully. Will show dialog for user "
                       L"with certificate info.")} +
            verdict);
}

Lines jsonAnswer(const std::wstring& status, std::size_t length)
{
    const auto name = utils + L"handleResponse";
    return scope(name, {info(name + L"; HTTP Status code: " + status),
                        debug(name + L"; Server returned content-type: application/json Content-Length: " +
                              std::to_wstring(length)),
                        info(name + L"; Trying to extract json")});
}

Lines uploadPrepared(const std::wstring& cookie, const std::wstring& length, const std::wstring& base)
{
    const auto name = api + L"unsafe_sendRequest_UploadAttachment; ";
    return {debug(name + L"Used Cookie: " + cookie), info(name + L"Content Length is: " + length),
            info(name + L"Setting the end point for uploading attachment: " + base + L"/helpdesk")};
}

Lines sent(const Operation& operation, const Exchange& exchange, const std::wstring& code,
           const std::wstring& message)
{
    const auto name = api + operation.exchange;
    const auto config = api + L"getClientConfig";
    const auto caller = utils + L"safe_CallMethod";
    const bool isJson = !operation.method.empty();
    Lines before = exchange.before;
    if (isJson) {
        before.push_back(info(name + L"; We are sending request with method: " + operation.method));
    }
    if (!operation.data.empty()) {
        before.push_back(info(name + L"; We are sending request with data: " + operation.data));
    }
    const auto answer =
        isJson && !exchange.answer.empty() ? scope(L"Running request", exchange.answer) : exchange.answer;
    const auto guarded = scope(
        caller,
        scope(name, before + scope(config, {debug(config + L"; Validation of certificates is skipped.")}) +
                        Lines{debug(name + L"; Going to run tasks and get results.")} + answer +
                        exchange.after) +
            exchange.caught +
            Lines{info(caller +
                       L"; Returnting ResponseStatus information with such values. HttpStatusCode: " + code +
                       L" Error Message: " + message)});
    return isJson ? scope(api + L"sendRequest_ProvideServerResponse", guarded) : guarded;
}

std::vector<std::wstring> excerpt(const std::vector<std::wstring>& texts, const std::wstring& part,
                                  std::size_t count)
{
    const auto first = std::find_if(texts.begin(), texts.end(),
                                    [&](const auto& text) { return text.find(part) != std::wstring::npos; });
    const auto length = std::min(count, static_cast<std::size_t>(texts.end() - first));
    return {first, first + static_cast<std::ptrdiff_t>(length)};
}

testing::AssertionResult same(const Lines& expected, const std::vector<std::wstring>& actual)
{
    const auto size = std::max(expected.size(), actual.size());
    for (std::size_t i = 0; i < size; ++i) {
        const auto wanted = i < expected.size() ? expected[i] : L"(nothing)";
        const auto got = i < actual.size() ? actual[i] : L"(nothing)";
        if (!matches(wanted, got)) {
            return testing::AssertionFailure()
                   << "line " << i << " of the log\n  expected: " << narrow(wanted)
                   << "\n    actual: " << narrow(got);
        }
    }
    return testing::AssertionSuccess();
}
} // namespace Trace
