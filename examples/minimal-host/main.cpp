#include <TAVIKVANTRYAPI.h>

#include <fcntl.h>
#include <io.h>

#include <cstdlib>
#include <exception>
#include <iostream>

/// Runs an operation and tells whether it succeeded: without a window it returns when it has ended. A list of
/// an id that no address can carry throws instead.
template <typename Operation>
bool perform(const wchar_t* task, int successCode, Operation operation)
{
    try {
        operation();
    } catch (const std::exception& error) {
        std::wcout << task << L": " << error.what() << std::endl;
        return false;
    }
    const ResponseStatus& response = GetLastResponse();
    std::wcout << task << L": " << response.httpStatusCode << L' ' << response.errorMessage << std::endl;
    return response.httpStatusCode == successCode;
}

int wmain(int argc, wchar_t** argv)
{
    _setmode(_fileno(stdout), _O_U8TEXT);
    const wchar_t* const password = _wgetenv(L"VANTRY_PASSWORD");
    if (argc != 4 || password == nullptr) {
        std::wcout << L"usage: minimal-host ENDPOINT USER CLIENT, with VANTRY_PASSWORD set" << std::endl;
        return EXIT_FAILURE;
    }
    SetEndPoint(argv[1]);
    SetCredentials(argv[2], password);
    const auto ticket = [&] { CreateTicket({argv[3], Client, L"Printer", L"It does not print."}); };
    const auto note = [] { SaveTechNote({GetCreatedTicketID(), L"Refilled.", 15, true}); };
    const auto file = [] { SaveAttachment({"Pages: 4711", L"counter.txt"}); };
    const auto list = [&] { RequestTicketList(argv[3], Client); };
    if (!perform(L"Session", 200, CreateSession)) {
        return EXIT_FAILURE;
    }
    // Each step needs the one before: without it, the note would go to an earlier ticket, the file to an
    // earlier note.
    const bool isDone = perform(L"Ticket", 201, ticket) && perform(L"Note", 201, note) &&
                        perform(L"File", 201, file) && perform(L"List", 200, list);
    if (isDone) {
        for (const auto& entry : GetTicketList()) {
            std::wcout << entry.id << L' ' << entry.name << std::endl;
        }
    }
    return perform(L"End", 200, CloseSession) && isDone ? EXIT_SUCCESS : EXIT_FAILURE;
}
