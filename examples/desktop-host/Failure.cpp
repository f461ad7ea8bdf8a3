#include "Failure.h"

namespace
{
const wchar_t* meaning(std::int32_t status)
{
    switch (status) {
    case notStarted:
        return L"Nothing was sent to the server.";
    case 400:
        return L"The server cannot make sense of what was entered.";
    case 401:
        return L"The server does not accept the user name and password, or the session has run out.";
    case 403:
        return L"The server does not allow this to the user.";
    case 404:
        return L"The server does not know what was asked for. Check the endpoint and the ticket.";
    case 413:
        return L"The file is too large for the server.";
    case 417:
        return L"The server has refused the file.";
    case 600:
        return L"The server cannot be reached, or Windows does not accept its certificate. Check the "
               L"endpoint and the network; the log below tells more.";
    case 601:
        return L"The server's certificate was not trusted. Nothing was sent to the server.";
    default:
        return status >= 500
                   ? L"The server has a problem of its own. Try again later, or tell its administrator."
                   : L"The server gave an answer that was not expected.";
    }
}
} // namespace

std::wstring explain(const ResponseStatus& response)
{
    const std::wstring status = response.httpStatusCode == notStarted
                                    ? L"Not started"
                                    : L"Status " + std::to_wstring(response.httpStatusCode);
    return meaning(response.httpStatusCode) + (L"\n\n" + status) + L": " + response.errorMessage;
}

std::wstring describe(const std::exception& error)
{
    const std::string text = error.what();
    std::wstring wide(text.size(), L'\0');
    wide.resize(static_cast<std::size_t>(MultiByteToWideChar(
        CP_ACP, 0, text.data(), static_cast<int>(text.size()), wide.data(), static_cast<int>(wide.size()))));
    return wide;
}

void tellFailure(HWND owner, const std::wstring& text)
{
    MessageBoxW(owner, text.c_str(), L"Vantry help desk", MB_OK | MB_ICONWARNING);
}
