#include "Failure.h"

namespace
{
/// Any other program's page of text is no JSON, which ends an operation with 600, too.
std::wstring meaningWithoutAnswer(const ResponseStatus& response, bool hasSession)
{
    if (response.errorMessage.find(L"Syntax error") != std::wstring::npos) {
        return L"What answered is not the help desk; it may be a proxy's page or another website. Check the "
               L"endpoint, or ask your network's administrator.";
    }
    std::wstring text =
        L"No usable answer came: the server may be off or out of reach, the endpoint wrong, or its "
        L"certificate one that Windows does not trust. Check the endpoint and the network; the log (Ctrl+L) "
        L"tells more.";
    if (hasSession) {
        text += L" The server may have done it all the same: look (F5) before you do it again.";
    }
    return text;
}

std::wstring meaning(const ResponseStatus& response, bool hasSession)
{
    const std::int32_t status = response.httpStatusCode;
    switch (status) {
    case notStarted:
        return L"Nothing was sent to the server. Correct what is named below, then try again.";
    case 400:
        return L"The server cannot make sense of this. Check what you have entered.";
    case 401:
        return hasSession
                   ? L"The session has run out. Close it and open a new one."
                   : L"The server does not accept the user name and password. Check both, then open the "
                     L"session again.";
    case 403:
        return L"The server does not allow this to the user. Ask its administrator.";
    case 404:
        return hasSession ? L"The server does not know this any more. Show the tickets again (F5)."
                          : L"There is no help desk at this address. Check the endpoint.";
    case 413:
        return L"The file is too large for the server. Attach a smaller one.";
    case 417:
        return L"The server has refused the file. Ask its administrator which files it takes.";
    case 600:
        return meaningWithoutAnswer(response, hasSession);
    case 601:
        return L"You have not trusted the server's certificate, so nothing was sent. Ask the server's "
               L"administrator for the certificate's fingerprint, then try again.";
    default:
        return status >= 500 && status < 600
                   ? L"The server has a problem of its own. Try again later, or tell its administrator."
                   : L"The answer was not expected. Check the endpoint, or ask the server's administrator.";
    }
}
} // namespace

std::wstring explain(const ResponseStatus& response, bool hasSession)
{
    std::wstring text = meaning(response, hasSession) + L"\n\n";
    text += response.httpStatusCode == notStarted ? L"Not started"
                                                  : L"Status " + std::to_wstring(response.httpStatusCode);
    return response.errorMessage.empty() ? text : text + L": " + response.errorMessage;
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
