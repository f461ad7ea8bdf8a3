/// @file
/// Answers in the server's own bytes, put together.
#pragma once

#include "faults/Fault.h"

#include <string>

constexpr std::uint64_t endlessly = 0;

inline Script raw(std::string bytes, std::string then = "close")
{
    return {{{std::move(bytes)}}, std::move(then)};
}

inline std::string repeated(const std::string& text, std::size_t times)
{
    std::string all;
    all.reserve(text.size() * times);
    for (std::size_t i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

/// The status line of success and `headers`, one a line.
inline std::string head(const std::string& headers = "")
{
    return "HTTP/1.1 {status}\r\n" + headers + (headers.empty() ? "\r\n" : "\r\n\r\n");
}

inline std::string jsonHead(std::size_t length)
{
    return head("Content-Type: application/json\r\nContent-Length: " + std::to_string(length));
}

/// Success with an empty object.
inline std::string wholeAnswer()
{
    return jsonHead(2) + "{}";
}

/// Success with a body of this type.
inline Script typed(const std::string& type, const std::string& body)
{
    return raw(head("Content-Type: " + type + "\r\nContent-Length: " + std::to_string(body.size())) + body);
}

inline Script json(const std::string& body)
{
    return raw(jsonHead(body.size()) + body);
}

/// Success with a JSON body in these chunks, as they stand on the wire.
inline Script chunked(const std::string& chunks, const std::string& then = "close")
{
    return raw(head("Content-Type: application/json\r\nTransfer-Encoding: chunked") + chunks, then);
}
