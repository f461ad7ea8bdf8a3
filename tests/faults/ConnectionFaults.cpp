// Connections that end, break or fall silent, at every stage.
#include "faults/Scripts.h"

namespace
{
/// A whole answer, a byte at a time.
Script byteByByte()
{
    Script script;
    for (const char byte : wholeAnswer()) {
        script.steps.push_back({std::string(1, byte), 1});
    }
    return script;
}
} // namespace

Section connectionFaults()
{
    const auto both = Endpoint::Both;
    const std::string started = "HTTP/1.1 20";
    const std::string headersStarted = "HTTP/1.1 200 OK\r\nContent-Type: application/js";
    const std::string bodyStarted = jsonHead(1000) + R"({"id":1)";
    const std::string chunkStarted =
        head("Content-Type: application/json\r\nTransfer-Encoding: chunked") + "8\r\n{\"id\"";
    return {
        "Connections",
        {
            Fault("NobodyListens", "nothing listens on the endpoint's port").by([](const auto&) {
                SetEndPoint(L"http://localhost:1/helpdesk/rest");
            }).gives(600),
            Fault("NobodyListensToTls", "nothing listens on the secure endpoint's port")
                .over(Endpoint::Https).at(Stage::Probe)
                .by([](const auto&) { SetEndPoint(L"https://localhost:1/helpdesk/rest"); }).gives(600),
            Fault("ClosedOnArrival", "the server closes the connection as soon as it comes")
                .connection({"fault", "close"}).gives(600),
            Fault("ResetOnArrival", "the server resets the connection as soon as it comes")
                .connection({"fault", "reset"}).gives(600),
            Fault("SilentOnArrival", "the server accepts the connection and does nothing")
                .connection({"fault", "silent"}).silence().gives(600),
            Fault("ClosedUnanswered", "the server reads the request and closes")
                .over(both).answers(raw("")).gives(600),
            Fault("DroppedUnanswered", "the server reads the request and drops the connection without a TLS goodbye")
                .over(Endpoint::Https).answers(raw("", "drop")).gives(600),
            Fault("ResetUnanswered", "the server reads the request and resets the connection")
                .over(both).answers(raw("", "reset")).gives(600),
            Fault("SilentAfterTheRequest", "the server reads the request and never answers")
                .answers(raw("", "stay")).silence().gives(600),
            Fault("ClosedInTheStatusLine", "the connection ends in the status line")
                .over(both).answers(raw(started)).gives(600),
            Fault("ResetInTheStatusLine", "the connection is reset in the status line")
                .answers(raw(started, "reset")).gives(600),
            Fault("ClosedInTheHeaders", "the connection ends in the headers")
                .over(both).answers(raw(headersStarted)).gives(600),
            Fault("ResetInTheHeaders", "the connection is reset in the headers")
                .answers(raw(headersStarted, "reset")).gives(600),
            Fault("SilentInTheHeaders", "the server falls silent in the headers")
                .answers(raw(headersStarted, "stay")).silence().gives(600),
            Fault("ClosedInTheBody", "the connection ends in the body")
                .over(both).answers(raw(bodyStarted)).gives(600),
            Fault("ResetInTheBody", "the connection is reset in the body")
                .over(both).answers(raw(bodyStarted, "reset")).gives(600),
            Fault("SilentInTheBody", "the server falls silent in the body")
                .answers(raw(bodyStarted, "stay")).silence().gives(600),
            Fault("ClosedInAChunk", "the connection ends in a chunk")
                .over(both).answers(raw(chunkStarted)).gives(600),
            Fault("ResetInAChunk", "the connection is reset in a chunk")
                .answers(raw(chunkStarted, "reset")).gives(600),
            Fault("SilentInAChunk", "the server falls silent in a chunk")
                .answers(raw(chunkStarted, "stay")).silence().gives(600),
            Fault("ClosedBeforeTheLastChunk", "the connection ends before the last, empty chunk")
                .answers(chunked("7\r\n{\"id\":1\r\n")).gives(600),
            Fault("NoTlsGoodbye", "the connection is dropped without a TLS goodbye after a whole answer")
                .over(Endpoint::Https).answers(raw(wholeAnswer(), "drop")),
            Fault("ClosedAfterTheAnswer", "the connection ends right after a whole answer")
                .over(both).answers(raw(wholeAnswer())),
            Fault("ByteByByte", "the answer comes a byte at a time").over(both).answers(byteByByte()),
            Fault("PauseInTheBody", "the server pauses in the body")
                .answers({{{jsonHead(2) + "{"}, {"}", 300}}}),
        }};
}
