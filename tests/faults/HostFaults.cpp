// Wrong texts and settings of the host, a log that fails, a window that dies.
#include "faults/Scripts.h"

#include <stdexcept>

namespace
{
using Names = std::vector<std::wstring>;

const Names sendCredentials{L"SaveTechNote", L"CreateSession", L"RequestTicketList", L"CreateTicket"};

Fault endPoint(std::string name, std::string what, std::wstring text)
{
    return Fault(std::move(name), std::move(what)).at(Stage::Preparation).gives(600)
        .by([text = std::move(text)](const auto&) { SetEndPoint(text); });
}

Fault credentials(std::string name, std::string what, std::wstring user, std::wstring password)
{
    return Fault(std::move(name), std::move(what)).text()
        .by([user = std::move(user), password = std::move(password)](const auto&) { SetCredentials(user, password); });
}

Fault call(std::string name, std::string what, const std::wstring& operation, std::function<void()> start)
{
    return Fault(std::move(name), std::move(what)).at(Stage::Preparation).call(operation, std::move(start)).text();
}

Fault fileName(std::string name, std::string what, const std::wstring& text)
{
    return call(std::move(name), std::move(what), L"SaveAttachment", [text] { SaveAttachment({"x", text}); });
}

Fault identifier(std::string name, const std::string& what, const std::wstring& text)
{
    return call(std::move(name), "a list's identifier holds " + what, L"RequestTicketList",
                [text] { RequestTicketList(text, Client); })
        .lets(Leaves::UriException);
}

/// A half of a surrogate pair, or a value that is no code point.
const std::wstring lone{L'a', static_cast<wchar_t>(0xD800)};
const std::wstring second{static_cast<wchar_t>(0xDC00), L'a'};
const std::wstring noncharacter = L"tea\uFFFF";
const std::wstring lineBreakInFileName = L"The file name holds a line break or a zero character.";
const std::wstring lineBreakInUserName = L"The user name holds a line break or a zero character.";
const std::wstring generalText = L"Error while sending a request to the Vantry server.";
} // namespace

Section hostFaults()
{
    const auto throwing = [](const Surroundings& around) {
        around.onEveryLine([] { throw std::runtime_error("the disk is full"); });
    };
    return {
        "The host's own",
        {
            endPoint("EmptyEndpoint", "the endpoint is empty", L""),
            endPoint("EndpointWithoutScheme", "the endpoint has no scheme", L"localhost/helpdesk/rest"),
            endPoint("EndpointWithoutHost", "the endpoint has no host", L"http:///helpdesk/rest"),
            endPoint("EndpointWithABlank", "the endpoint holds a blank", L"http://local host/rest"),
            endPoint("EndpointWithALineBreak", "the endpoint holds a line break", L"http://localhost\r\nX: y/rest"),
            endPoint("EndpointOfAnotherScheme", "the endpoint's scheme is ftp", L"ftp://localhost/rest"),
            endPoint("EndpointPortIsTooLarge", "the endpoint's port is 99999", L"http://localhost:99999/rest"),
            endPoint("EndpointPortIsHuge", "the endpoint's port has twenty digits", L"http://localhost:99999999999999999999/rest"),
            endPoint("EndpointPortIsNoNumber", "the endpoint's port is no number", L"http://localhost:http/rest"),
            endPoint("EndpointIsNoText", "the endpoint holds half of a surrogate pair", L"http://localhost/" + lone).text(),
            endPoint("EndpointEndsInANoncharacter", "the endpoint ends in U+FFFF", L"http://localhost/" + noncharacter).text(),
            credentials("EmptyCredentials", "user name and password are empty", L"", L"")
                .gives(401).butFor(L"CloseSession", asUsual),
            credentials("UserNameIsNoText", "the user name holds half of a surrogate pair", lone, L"word")
                .at(Stage::Preparation).gives(600).butFor(L"CloseSession", asUsual),
            credentials("PasswordIsNoText", "the password holds half of a surrogate pair", L"user", second)
                .at(Stage::Preparation).gives(600).butFor(L"CloseSession", asUsual).butFor(L"SaveAttachment", 401),
            credentials("UserNameEndsInANoncharacter", "the user name ends in U+FFFF", noncharacter, L"word")
                .gives(401).butFor(L"CloseSession", asUsual),
            credentials("PasswordWithALineBreak", "the password holds a line break", L"technician", L"a\r\nX: y")
                .of(sendCredentials).gives(401),
            credentials("UserNameWithALineBreak", "the user name of an upload holds a line break", L"a\r\nX: y", L"word")
                .of({L"SaveAttachment"}).at(Stage::Preparation).gives(600, lineBreakInUserName),
            credentials("UserNameWithAZero", "the user name of an upload holds a zero character", {L'a', 0, L'b'}, L"word")
                .of({L"SaveAttachment"}).at(Stage::Preparation).gives(600, lineBreakInUserName),
            fileName("FileNameWithALineBreak", "the file name holds a line break", L"a\r\nX: y").gives(600, lineBreakInFileName),
            fileName("FileNameWithALineFeed", "the file name holds a line feed", L"a\nb").gives(600, lineBreakInFileName),
            fileName("FileNameWithAZero", "the file name holds a zero character", {L'a', 0, L'b'}).gives(600, lineBreakInFileName),
            fileName("FileNameIsNoText", "the file name holds half of a surrogate pair", lone).gives(600, generalText),
            fileName("FileNameEndsInANoncharacter", "the file name ends in U+FFFF", noncharacter),
            fileName("FileNameIsEmpty", "the file name is empty", L""),
            call("NoteTextIsNoText", "a note's text holds half of a surrogate pair", L"SaveTechNote",
                 [] { SaveTechNote({L"1001", lone, 1, true}); }).gives(600),
            call("NoteTicketIsNoText", "a note's ticket holds half of a surrogate pair", L"SaveTechNote",
                 [] { SaveTechNote({second, L"x", 1, true}); }).gives(600),
            call("NoteTextEndsInANoncharacter", "a note's text ends in U+FFFF", L"SaveTechNote",
                 [] { SaveTechNote({L"1001", noncharacter, 1, true}); }),
            call("NoteTextWithAZero", "a note's text holds a zero character", L"SaveTechNote",
                 [] { SaveTechNote({L"1001", {L'a', 0, L'b'}, 1, true}); }),
            call("NoteWithoutTicket", "a note names a ticket that is none", L"SaveTechNote",
                 [] { SaveTechNote({L"\r\n", L"x", 1, true}); }).at(Stage::Exchange).gives(404),
            call("TicketEntityIsNoText", "a ticket's client holds half of a surrogate pair", L"CreateTicket",
                 [] { CreateTicket({lone, Client, L"x", L"x"}); }).gives(600),
            call("TicketSubjectIsNoText", "a ticket's subject holds half of a surrogate pair", L"CreateTicket",
                 [] { CreateTicket({L"1", Asset, lone, L"x"}); }).gives(600),
            call("TicketDetailIsNoText", "a ticket's detail holds half of a surrogate pair", L"CreateTicket",
                 [] { CreateTicket({L"1", Client, L"x", second}); }).gives(600),
            call("TicketEntityEndsInANoncharacter", "a ticket's client ends in U+FFFF", L"CreateTicket",
                 [] { CreateTicket({noncharacter, Client, L"x", L"x"}); }),
            call("IdentifierIsNoText", "a list's identifier holds half of a surrogate pair", L"RequestTicketList",
                 [] { RequestTicketList(lone, Client); }).gives(600),
            identifier("IdentifierWithABlank", "a blank", L"a b"),
            identifier("IdentifierWithALineBreak", "a line break", L"1\r\nX: y"),
            identifier("IdentifierWithAZero", "a zero character", {L'1', 0, L'2'}),
            identifier("IdentifierBeyondAscii", "a letter beyond ASCII", L"\u00E9"),
            identifier("IdentifierIsANoncharacter", "U+FFFF", L"\uFFFF"),
            Fault("LogThrows", "every line of the log throws").over(Endpoint::Both).by(throwing),
            Fault("LogThrowsANumber", "every line of the log throws what is no exception").by([](const auto& around) {
                around.onEveryLine([] { throw 7; });
            }),
            Fault("LogThrowsInSetters", "every line of the log throws, in the settings, too")
                .by([throwing](const auto& around) {
                    throwing(around);
                    SetEndPoint(around.plainEndPoint);
                    SetValidateCertificateCallback(nullptr);
                }),
            Fault("LogThrowsOfAFailure", "every line of the log throws, the server sends an HTML page")
                .by(throwing).answers(raw(head("Content-Type: text/html\r\nContent-Length: 6") + "<html>")).gives(600),
            Fault("WindowDies", "the window goes away during the operation")
                .answers({{{wholeAnswer(), 300}}}).noMessage(),
        }};
}
