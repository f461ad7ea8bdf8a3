// Bodies without an end, in broken chunks, of every wrong type, charset and encoding.
#include "faults/Scripts.h"

namespace
{
const std::size_t block = 65'536;

Script endless(const std::string& headers, const std::string& bytes)
{
    return {{{head(headers)}, {bytes, 0, endlessly}}};
}

const std::wstring tooLong = L"The answer of the server is longer than 256 MiB.";
} // namespace

Section bodyFaults()
{
    const std::string zeros(block, '0');
    const std::string chunkOfZeros = "10000\r\n" + zeros + "\r\n";
    const std::string page = "<html><body>Sorry</body></html>";
    return {
        "Bodies",
        {
            Fault("BodyWithoutEnd", "the JSON body has no end")
                .answers(endless("Content-Type: application/json", zeros)).cost().gives(600, tooLong),
            Fault("ChunksWithoutEnd", "the chunks of a JSON body have no end")
                .answers(endless("Content-Type: application/json\r\nTransfer-Encoding: chunked", chunkOfZeros))
                .cost().gives(600, tooLong),
            Fault("TextWithoutEnd", "the text body has no end")
                .of({L"CreateSession", L"SaveAttachment"})
                .answers(endless("Content-Type: text/plain", zeros)).cost().gives(600, tooLong),
            Fault("UnreadBodyWithoutEnd", "a body of a type that is not read has no end")
                .over(Endpoint::Both).answers(endless("Content-Type: application/octet-stream", zeros)).watched(),
            Fault("UnreadChunksWithoutEnd", "the chunks of a body without a type have no end")
                .answers(endless("Transfer-Encoding: chunked", chunkOfZeros)).watched(),
            Fault("ProbeBodyWithoutEnd", "the body of the certificate probe's answer has no end")
                .answersProbe(endless("Content-Type: text/html", zeros)).watched(),
            Fault("ChunkSizeIsNoNumber", "a chunk's size is no number").answers(chunked("zz\r\n{}\r\n0\r\n\r\n")).gives(600),
            Fault("ChunkSizeIsNegative", "a chunk's size is negative").answers(chunked("-2\r\n{}\r\n0\r\n\r\n")).gives(600),
            Fault("ChunkSizeIsHuge", "a chunk's size has sixteen digits, the connection ends in it")
                .answers(chunked("7fffffffffffffff\r\n{}")).gives(600),
            Fault("ChunkSizeIsMissing", "a chunk has no size").answers(chunked("\r\n{}\r\n0\r\n\r\n")).gives(600),
            Fault("ChunkIsLongerThanItSays", "a chunk is longer than it says").answers(chunked("1\r\n{}\r\n0\r\n\r\n")).gives(600),
            Fault("ChunkWithExtension", "a chunk has an extension").answers(chunked("2;a=b\r\n{}\r\n0\r\n\r\n")),
            Fault("ChunksWithTrailer", "the chunks have a trailer").answers(chunked("2\r\n{}\r\n0\r\nX-After: 1\r\n\r\n")),
            Fault("ChunksOfOneByte", "the body is 5,000 chunks of one byte")
                .answers(chunked(repeated("1\r\n \r\n", 5000) + "2\r\n{}\r\n0\r\n\r\n")),
            Fault("BytesAfterTheBody", "bytes follow the body").answers(raw(jsonHead(2) + "{}garbage{}")),
            Fault("EmptyJson", "the type is JSON, the body empty").answers(json("")),
            Fault("EmptyText", "the type is text, the body empty").answers(typed("text/plain", "")).gives(600),
            Fault("NoTypeNoBody", "there is neither type nor body").answers(raw(head("Content-Length: 0"))),
            Fault("NoType", "the body has no type").answers(raw(head("Content-Length: 2") + "{}")).lists(0),
            Fault("HtmlPage", "the body is an HTML page").answers(typed("text/html", page)).gives(600).text(),
            Fault("HtmlPageAsJson", "the body is an HTML page that calls itself JSON")
                .answers(typed("application/json", page)).gives(600).text(),
            Fault("EchoedPassword", "the body repeats the request's query")
                .answers(typed("text/plain", "Cannot GET /?{password}")).gives(600).text(),
            Fault("EchoedPasswordInJson", "the JSON body repeats the request's query")
                .answers(json(R"({"id":"?{password}","sessionKey":"?{password}","reason":"?{password}"})"))
                .of({L"SaveTechNote", L"CreateSession", L"CreateTicket", L"RequestTicketList", L"CloseSession"}).text(),
            Fault("EchoedPasswordInAnUnreadBody", "a body of a type that is not read repeats the request's query")
                .answers(typed("application/octet-stream", "?{password}")),
            Fault("TypeInCapitals", "the type is `Application/JSON`: not read").answers(typed("Application/JSON", "{broken")),
            Fault("TypeOfLetters", "the type is `x`: not read").answers(typed("x", "{broken")),
            Fault("TypeIsSemicolons", "the type is `;;;`: not read").answers(typed(";;;", "{broken")),
            Fault("TypeIsHuge", "the type has 50,000 letters: not read").answers(typed(std::string(50'000, 'x'), "{broken")),
            Fault("TypeLikeText", "the type is `application/x-text`, which is no text to the REST SDK")
                .answers(typed("application/x-text", "{}")).gives(600),
            Fault("TypeLikeJson", "the type is `application/jsonx`, which is no JSON to the REST SDK")
                .answers(typed("application/jsonx", "{}")).gives(600),
            Fault("TwoTypes", "there are two Content-Types")
                .answers(raw(head("Content-Type: text/html\r\nContent-Type: application/json\r\nContent-Length: 2") + "{}")),
            Fault("CharsetIsUnknown", "the charset of JSON is one that nobody knows")
                .answers(typed("application/json; charset=utf-99", "{}")).gives(600),
            Fault("CharsetIsEmpty", "the charset of JSON is empty").answers(typed("application/json; charset=", "{}")).gives(600),
            Fault("CharsetIsLatin1", "the charset of text is Latin-1")
                .answers(typed("text/plain; charset=iso-8859-1", "{\"id\":\"\xe9\"}")).creates(L"\"\u00E9\"").text(),
            Fault("CharsetIsUtf16", "the charset of JSON is UTF-16, and its bytes are")
                .answers(typed("application/json; charset=utf-16le", std::string("{\0}\0", 4))),
            Fault("CharsetIsUtf16OfOddLength", "the charset of JSON is UTF-16, the body one byte")
                .answers(typed("application/json; charset=utf-16", "{")).gives(600),
            Fault("EncodingIsGzip", "Content-Encoding is gzip, unasked")
                .answers(raw(head("Content-Type: application/json\r\nContent-Encoding: gzip\r\nContent-Length: 2") + "{}")),
            Fault("EncodingIsUnknown", "Content-Encoding is one that nobody knows")
                .answers(raw(head("Content-Type: application/json\r\nContent-Encoding: rot13\r\nContent-Length: 2") + "{}")),
        }};
}
