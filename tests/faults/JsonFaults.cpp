// JSON of every wrong kind.
#include "faults/Scripts.h"

namespace
{
/// `value` as the id of an object, which is what a created ticket or note answers.
Script id(const std::string& value)
{
    return json("{\"id\":" + value + "}");
}

Script list(const std::string& ticket)
{
    return json("[{\"id\":1}," + ticket + ",{\"id\":3}]");
}
} // namespace

Section jsonFaults()
{
    const std::vector<std::wstring> creation{L"CreateTicket"};
    const std::vector<std::wstring> listing{L"RequestTicketList"};
    const std::vector<std::wstring> session{L"CreateSession"};
    const auto surrogate = L"\"\uFFFD\"";
    return {
        "JSON",
        {
            Fault("JsonNull", "the JSON value is null").answers(json("null")).creates(L""),
            Fault("JsonTrue", "the JSON value is true").answers(json("true")).creates(L"null"),
            Fault("JsonNumber", "the JSON value is a number").answers(json("7")).creates(L"null"),
            Fault("JsonString", "the JSON value is a string").answers(json("\"text\"")).creates(L"null"),
            Fault("JsonArrayOfNumbers", "the JSON value is an array of numbers")
                .answers(json("[1,2,3]")).creates(L"null").lists(3),
            Fault("JsonArrayOfNulls", "the JSON value is an array of nulls").answers(json("[null]")).creates(L"null").lists(1),
            Fault("JsonEmptyObject", "the JSON value is an empty object").answers(json("{}")).creates(L"null").lists(0),
            Fault("IdIsAnObject", "the id is an object").answers(id("{\"a\":[1]}")).creates(L"{\"a\":[1]}"),
            Fault("IdIsHuge", "the id is a number of 400 digits").answers(id(std::string(400, '9'))).gives(600).text(),
            Fault("IdIsNegative", "the id is negative").answers(id("-1")).creates(L"-1"),
            Fault("IdTwice", "there are two ids").answers(json(R"({"id":1,"id":2})")).gives(600),
            Fault("IdIsALoneSurrogate", "the id is an escaped half of a surrogate pair")
                .answers(id(R"("\udc00")")).creates(surrogate).text(),
            Fault("IdIsACutPair", "the id ends in the first half of a surrogate pair")
                .answers(id(R"("\ud83d")")).creates(surrogate).text(),
            Fault("IdIsNoUtf8", "the id's bytes are no UTF-8").answers(id("\"\xff\"")).creates(surrogate).text(),
            Fault("IdIsACutCharacter", "the id ends in the middle of a UTF-8 character")
                .answers(id("\"\xf0\x9f\x98\"")).creates(surrogate).text(),
            Fault("IdEndsInANoncharacter", "the id ends in U+FFFF")
                .answers(id("\"1\xef\xbf\xbf\"")).creates(L"\"1\uFFFF\"").text(),
            Fault("TextIsNoUtf8", "a JSON text's bytes are no UTF-8, its type text/plain; charset=utf-8")
                .answers(typed("text/plain; charset=utf-8", "{\"id\":\"\xed\xb0\x80\"}")).text(),
            Fault("ReasonEndsInANoncharacter", "the reason against an upload ends in U+FFFF")
                .of({L"SaveAttachment"}).answers(json("{\"reason\":\"no\xef\xbf\xbf\"}")).gives(201, L"\"no\uFFFF\"").text(),
            Fault("ReasonIsALoneSurrogate", "the reason against an upload is half of a surrogate pair")
                .of({L"SaveAttachment"}).answers(json(R"({"reason":"\udc00"})")).gives(201, surrogate).text(),
            Fault("SessionKeyIsALoneSurrogate", "the session's key is half of a surrogate pair")
                .of(session).answers(json(R"({"sessionKey":"\udc00"})")).text(),
            Fault("SessionKeyEndsInANoncharacter", "the session's key ends in U+FFFF")
                .of(session).answers(json("{\"sessionKey\":\"1\xef\xbf\xbf\"}")).text(),
            Fault("TicketTextIsALoneSurrogate", "a listed ticket's text is half of a surrogate pair")
                .of(listing).answers(list(R"({"id":2,"shortSubject":"\ud83d"})")).lists(3).text(),
            Fault("TicketTextEndsInANoncharacter", "a listed ticket's text ends in U+FFFF")
                .of(listing).answers(list("{\"id\":2,\"displayClient\":\"x\xef\xbf\xbf\"}")).lists(3).text(),
            Fault("TicketTextIsANumber", "a listed ticket's text is a number: `web::json::json_exception`, "
                                         "the tickets before it stay in the list")
                .of(listing).answers(list(R"({"id":2,"shortSubject":3})")).lets(Leaves::JsonException).lists(1),
            Fault("JsonIsCut", "the JSON text ends in the middle").answers(json(R"([{"id":1},{"id")")).gives(600),
            Fault("JsonIsCutInAnEscape", "the JSON text ends in an escape").answers(json(R"({"id":"\ud83)")).gives(600),
            Fault("JsonWithRubbish", "rubbish follows the JSON value").answers(json("{} rubbish")).gives(600),
            Fault("JsonTwice", "there are two JSON values").answers(json("{}{}")).gives(600),
            Fault("JsonWithComment", "the JSON text has a comment").answers(json("{/* no */}")).gives(600),
            Fault("JsonInSingleQuotes", "the JSON text has single quotes").answers(json("{'id':1}")).gives(600),
            Fault("JsonWithNan", "a JSON number is NaN").answers(json(R"({"id":NaN})")).gives(600),
            Fault("JsonWithTrailingComma", "a JSON array ends in a comma").answers(json("[1,]")).gives(600),
            Fault("JsonWithAZero", "a zero byte follows the JSON value").answers(json(std::string("{}\0", 3))).gives(600),
            Fault("JsonTextWithAZero", "a JSON text holds an escaped zero")
                .answers(json(R"({"id":"a\u0000b"})")).creates(L"\"a\\u0000b\"").text(),
            Fault("JsonTextWithALineFeed", "a JSON text holds a bare line feed").answers(json("{\"id\":\"a\nb\"}")).gives(600),
            Fault("JsonWithBadEscape", "a JSON text holds an escape that JSON does not know")
                .answers(json(R"({"id":"\x41"})")).gives(600),
            Fault("JsonWithByteOrderMark", "the JSON text begins with a byte order mark")
                .answers(json("\xef\xbb\xbf{}")).gives(600),
            Fault("JsonIsDeep", "100,000 arrays lie in each other")
                .answers(json(std::string(100'000, '[') + std::string(100'000, ']'))).gives(600),
            Fault("JsonIsDeepAndCut", "100,000 objects begin in each other")
                .answers(json(repeated("{\"a\":", 100'000))).gives(600),
            Fault("JsonIsHuge", "a JSON text has 16 million letters")
                .answers(json("[\"" + std::string(16'000'000, 'x') + "\"]")).cost().lists(1).unlessSanitized(),
            Fault("ListIsHuge", "the list has 100,000 tickets")
                .of(listing).answers(json("[" + repeated(R"({"id":1,"shortSubject":"x"},)", 99'999) + "{}]"))
                .cost().lists(100'000).unlessSanitized(),
        }};
}

Section redirections()
{
    Section section{"Redirections (none is followed: the answer itself is the outcome)", {}};
    for (const int code : {301, 302, 303, 307, 308}) {
        const auto number = std::to_string(code);
        const auto headers = "HTTP/1.1 " + number + " Elsewhere\r\nLocation: {elsewhere}\r\nContent-Length: 0\r\n\r\n";
        section.faults.push_back(Fault("Redirected" + number, "a " + number + " to another server answers the request")
                                     .over(Endpoint::Both).answers(raw(headers)).gives(code, L"Elsewhere"));
        section.faults.push_back(
            Fault("Probe" + number, "a " + number + " to another server answers the certificate probe")
                .answersProbe(raw(headers)));
    }
    section.faults.push_back(
        Fault("RedirectedWithinTheServer", "a 302 to the server's own welcome page answers the request")
            .over(Endpoint::Both)
            .answers(raw("HTTP/1.1 302 Elsewhere\r\nLocation: /helpdesk/rest/Session\r\nContent-Length: 0\r\n\r\n")).gives(302));
    section.faults.push_back(Fault("RedirectedToNothing", "a 302 names no address")
                                 .answers(raw("HTTP/1.1 302 Elsewhere\r\nContent-Length: 0\r\n\r\n")).gives(302));
    section.faults.push_back(
        Fault("RedirectedWithThePassword", "a 302's address repeats the request's query")
            .answers(raw("HTTP/1.1 302 Elsewhere\r\nLocation: /?{password}\r\nContent-Length: 0\r\n\r\n"))
            .gives(302));
    return section;
}
