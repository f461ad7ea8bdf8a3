// An upload and back: the sandbox's multipart reader gives the bytes and the name that the host gave, and no
// text makes a header of its own.
//
// Input: file name, user name, session key, content.
#include "Surroundings.h"

#include "Utf8.h"
#include "sandbox/Parsing.h"

#include <cpprest/json.h>
#include <fuzzer/FuzzedDataProvider.h>

#include <optional>

using VantryIntegrationApi::CVantryApi;
using web::http::http_request;

namespace
{
struct Upload
{
    std::string contentType;
    std::string body;
    std::string cookie;
};

std::optional<Upload> upload(CVantryApi& client, const Attachment& attachment)
{
    std::optional<Upload> sent;
    fuzz::setServer([&sent](http_request request) {
        const auto bytes = request.extract_vector().get();
        sent = Upload{
            request.headers().content_type(), {bytes.begin(), bytes.end()}, request.headers()["Cookie"]};
        return fuzz::responseOf("HTTP/1.1 201 Created\r\n\r\n");
    });
    client.wrpSaveAttachment(attachment);
    return sent;
}

void openSession(CVantryApi& client, const std::string& key)
{
    fuzz::setServer([&key](const http_request& /*request*/) {
        return fuzz::responseOf("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n"
                                "Set-Cookie: X=1; Path=/\r\n\r\n{\"sessionKey\":" +
                                web::json::value(key).serialize() + "}");
    });
    client.wrpCreateSession();
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    const auto fileName = Platform::fromUtf8(input.ConsumeRandomLengthString(100));
    const auto userName = Platform::fromUtf8(input.ConsumeRandomLengthString(100));
    const auto key = input.ConsumeRandomLengthString(100);
    const auto content = input.ConsumeRemainingBytesAsString();
    const bool everyTextIsOneLine =
        fuzz::isOneLine(Platform::toUtf8(fileName)) && fuzz::isOneLine(Platform::toUtf8(userName));

    fuzz::logAt(log4cxx::Level::getTrace());
    CVantryApi client;
    fuzz::setUp(client, L"http://127.0.0.1/rest", userName, L"wrench");
    openSession(client, key);
    const auto sent = upload(client, {content, fileName});
    fuzz::requireSecrecy();
    fuzz::require(everyTextIsOneLine || !sent, "a text of more than one line is sent");
    if (!sent) {
        fuzz::require(client.GetLastResponse().httpStatusCode == 600, "nothing was sent, nobody is told");
        return 0;
    }
    fuzz::require(fuzz::isOneLine(sent->cookie), "a cookie of more than one line");
    const auto boundary = sent->contentType.substr(sent->contentType.find('=') + 1);
    if (content.find("--" + boundary) != std::string::npos) {
        return 0; // a file is sent as it is, also one that holds the delimiter of the second
    }
    const auto file = sandbox::readUpload(sent->contentType, sent->body);
    fuzz::require(file.content == content, "another content arrives");
    // A quote ends the name: the form has no way to write one.
    fuzz::require(file.fileName == Platform::toUtf8(fileName.substr(0, fileName.find(L'"'))),
                  "another name arrives");
    return 0;
}
