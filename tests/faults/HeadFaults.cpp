// Status lines and headers that are wrong, contradictory or endless.
#include "faults/Scripts.h"

namespace
{
/// Success with `headers` and a body of an empty object.
Script withHeaders(const std::string& headers)
{
    return raw(head("Content-Type: application/json\r\n" + headers) + "{}");
}

Script statusLine(const std::string& line)
{
    return raw(line + "\r\nContent-Type: application/json\r\nContent-Length: 2\r\n\r\n{}");
}

std::string manyHeaders(int count)
{
    std::string headers;
    for (int i = 0; i < count; ++i) {
        headers += "X-" + std::to_string(i) + ": " + std::to_string(i) + "\r\n";
    }
    return headers;
}
} // namespace

Section headFaults()
{
    const std::string goOn = "HTTP/1.1 100 Continue\r\n\r\n";
    return {
        "Status lines and headers",
        {
            Fault("NoHttp", "the answer is no HTTP").answers(raw("SSH-2.0-OpenSSH_9.2\r\n")).gives(600),
            Fault("Http09", "the answer is a page without a status line (HTTP/0.9)")
                .answers(raw("<html>Hello</html>\r\n\r\n")).gives(600),
            Fault("Http10", "the answer is HTTP/1.0, its body ends with the connection")
                .over(Endpoint::Both)
                .answers(raw("HTTP/1.0 {status}\r\nContent-Type: application/json\r\n\r\n{}")),
            Fault("Http2", "the answer is HTTP/2")
                .answers(raw(std::string("\0\0\x12\x04\0\0\0\0\0\0\x03\0\0\0\x64\0\x04\0\0\xff\xff\0\x06\0\0\x40\0", 27)))
                .gives(600),
            Fault("Http99", "the answer calls itself HTTP/9.9").answers(statusLine("HTTP/9.9 {status}")),
            Fault("EmptyLines", "the answer is empty lines").answers(raw("\r\n\r\n\r\n\r\n")).gives(600),
            Fault("Zeros", "the answer is zero bytes").answers(raw(std::string(1000, '\0'))).gives(600),
            Fault("StatusIsNoNumber", "the status code is no number")
                .answers(statusLine("HTTP/1.1 abc OK")).gives(600),
            Fault("StatusIsNegative", "the status code is negative")
                .answers(statusLine("HTTP/1.1 -200 OK")).gives(600),
            Fault("StatusIsHuge", "the status code has twenty digits")
                .answers(statusLine("HTTP/1.1 20000000000000000000 OK")).gives(600),
            Fault("StatusIsZero", "the status code is 0").answers(statusLine("HTTP/1.1 000 Zero")).gives(600),
            Fault("StatusIsUnknown", "the status code is 799").answers(statusLine("HTTP/1.1 799 What")).gives(799),
            Fault("NoReasonPhrase", "the status line has no reason phrase")
                .answers(statusLine("HTTP/1.1 418")).gives(418).text(),
            Fault("ReasonPhraseIsNoUtf8", "the reason phrase is no UTF-8")
                .answers(statusLine("HTTP/1.1 418 caf\xe9 \xed\xb0\x80")).gives(418).text(),
            Fault("ReasonPhraseEndsInANoncharacter", "the reason phrase ends in U+FFFF")
                .answers(statusLine("HTTP/1.1 418 tea\xef\xbf\xbf")).gives(418).text(),
            Fault("ReasonPhraseHoldsAZero", "the reason phrase holds a zero byte")
                .answers(statusLine(std::string("HTTP/1.1 418 a\0b", 16))).gives(418).text(),
            Fault("ReasonPhraseIsHuge", "the reason phrase has a million letters")
                .answers(statusLine("HTTP/1.1 418 " + std::string(1'000'000, 'x'))).gives(418),
            Fault("ReasonPhraseEchoesThePassword", "the reason phrase repeats the request's query")
                .answers(statusLine("HTTP/1.1 418 {password}")).gives(418).text(),
            Fault("HeaderWithoutColon", "a header has no colon")
                .answers(withHeaders("Nonsense\r\nContent-Length: 2")),
            Fault("HeaderWithoutName", "a header has no name")
                .answers(withHeaders(": nonsense\r\nContent-Length: 2")),
            Fault("HeaderWithAZero", "a header holds a zero byte")
                .answers(withHeaders(std::string("X-Zero: a\0b\r\nContent-Length: 2", 31))),
            Fault("HeaderIsNoUtf8", "a header is no UTF-8")
                .answers(withHeaders("X-Latin: caf\xe9 \xed\xb0\x80\r\nContent-Length: 2")).text(),
            Fault("HeaderIsFolded", "a header goes on in the next line")
                .answers(withHeaders("X-Folded: a\r\n b\r\nContent-Length: 2")),
            Fault("HeaderIsHuge", "a header has a million letters")
                .answers(withHeaders("X-Huge: " + std::string(1'000'000, 'x') + "\r\nContent-Length: 2")),
            Fault("ManyHeaders", "there are 100,000 headers")
                .answers(withHeaders(manyHeaders(100'000) + "Content-Length: 2")).within(30'000).cost(),
            Fault("BareLineFeeds", "lines end in LF alone")
                .answers(raw("HTTP/1.1 {status}\nContent-Type: application/json\nContent-Length: 2\n\n{}")).gives(600),
            Fault("TwoLengths", "there are two Content-Lengths that differ")
                .answers(withHeaders("Content-Length: 2\r\nContent-Length: 3")).gives(600),
            Fault("LengthAndChunks", "there are both Content-Length and chunks")
                .answers(raw(head("Content-Type: application/json\r\nContent-Length: 99\r\nTransfer-Encoding: chunked") +
                             "2\r\n{}\r\n0\r\n\r\n")),
            Fault("LengthIsNegative", "Content-Length is negative").answers(withHeaders("Content-Length: -1")).gives(600),
            Fault("LengthIsNoNumber", "Content-Length is no number").answers(withHeaders("Content-Length: two")).gives(600),
            Fault("LengthIsHuge", "Content-Length is 2^64 - 1, the connection ends after two bytes")
                .answers(withHeaders("Content-Length: 18446744073709551615")).gives(600),
            Fault("LengthIsBeyond64Bits", "Content-Length has thirty digits")
                .answers(withHeaders("Content-Length: " + std::string(30, '9'))).gives(600),
            Fault("LengthIsTooSmall", "Content-Length is shorter than the body")
                .answers(withHeaders("Content-Length: 1")).gives(600),
            Fault("TransferEncodingIsUnknown", "Transfer-Encoding is one that nobody knows")
                .answers(withHeaders("Content-Length: 2\r\nTransfer-Encoding: rot13")),
            Fault("ContinueFirst", "three 100 Continue come before the answer")
                .answers(raw(goOn + goOn + goOn + wholeAnswer())),
            Fault("EarlyHintsFirst", "a 103 comes before the answer")
                .answers(raw("HTTP/1.1 103 Early Hints\r\nLink: </a>\r\n\r\n" + wholeAnswer())),
            Fault("SwitchesProtocols", "the answer is 101 Switching Protocols")
                .answers(raw("HTTP/1.1 101 Switching Protocols\r\nUpgrade: x\r\n\r\n")).gives(101),
            Fault("NoContentWithBody", "a 204 comes with a body")
                .answers(raw("HTTP/1.1 204 No Content\r\nContent-Type: application/json\r\nContent-Length: 2\r\n\r\n{}"))
                .gives(204),
            Fault("NotModifiedWithBody", "a 304 comes with a body")
                .answers(raw("HTTP/1.1 304 Not Modified\r\nContent-Type: application/json\r\nContent-Length: 2\r\n\r\n{}"))
                .gives(304),
            Fault("CookieWithoutAttribute", "the session's cookie has no attribute")
                .of({L"CreateSession"}).answers(withHeaders("Set-Cookie: X=1\r\nContent-Length: 2"))
                .gives(600, L"Error while sending a request to the Vantry server."),
            Fault("CookieEndsInANoncharacter", "the session's cookie ends in U+FFFF")
                .of({L"CreateSession"}).answers(withHeaders("Set-Cookie: X=\xef\xbf\xbf; Path=/\r\nContent-Length: 2")).text(),
            Fault("CookieIsNoUtf8", "the session's cookie is no UTF-8")
                .of({L"CreateSession"}).answers(withHeaders("Set-Cookie: X=\xed\xb0\x80; Path=/\r\nContent-Length: 2")).text(),
            Fault("ProbeIsNoHttp", "the certificate probe's answer is no HTTP")
                .at(Stage::Probe).answersProbe(raw("SSH-2.0-OpenSSH_9.2\r\n")).gives(600),
            Fault("ProbeUnanswered", "the certificate probe is not answered")
                .at(Stage::Probe).answersProbe(raw("")).gives(600),
            Fault("ProbeFails", "the certificate probe is answered with 500")
                .answersProbe(raw("HTTP/1.1 500 Sorry\r\nContent-Length: 0\r\n\r\n")),
            Fault("ProbeBreaks", "the connection ends in the body of the certificate probe's answer")
                .answersProbe(raw(head("Content-Type: text/html\r\nContent-Length: 1000") + "<html>")),
        }};
}
