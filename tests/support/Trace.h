/// @file
/// The lines that a call has to leave, put together from the pieces that recur. In an expected line, "…"
/// stands for text of the platform that is not compared.
#pragma once

#include "support/Operations.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Trace
{
const std::wstring api = L"VantryIntegrationApi::CVantryApi::";
const std::wstring utils = L"VantryIntegrationApi::Utils::";
const std::wstring mask = L"***************";
const std::wstring failure =
    L"We've got an error during request. See logged status code and message for more details.";

struct Lines : std::vector<std::wstring>
{
    using vector::vector;
};
Lines operator+(Lines first, const Lines& second);

// One line of the class logger.
std::wstring trace(const std::wstring& text);
std::wstring debug(const std::wstring& text);
std::wstring info(const std::wstring& text);
std::wstring error(const std::wstring& text);
std::wstring fatal(const std::wstring& text);

/// `inner` between the name's entering and exiting.
Lines scope(const std::wstring& name, const Lines& inner = {});

/// What the host's thread logs of a call without a window, and with one.
Lines synchronous(const Operation& operation, const Lines& body);
Lines asynchronousHost(const Operation& operation);
/// What an asynchronous operation's own threads log.
Lines worker(const Operation& operation, const Lines& body);

/// What an operation logs before it validates the certificate.
Lines prepared(const Operation& operation, const std::wstring& maskedUrl);

/// "Going to validate certificate", the validation, "Going to send request to server".
Lines validated(const Operation& operation, const Lines& validation);
Lines refused(const Operation& operation, const Lines& validation);
Lines notSecured();
/// A probe of `base` ("scheme://host:port") that was answered, up to `verdict`.
Lines probe(const std::wstring& base, const Lines& verdict);

/// An answer of JSON type.
Lines jsonAnswer(const std::wstring& status, std::size_t length);

/// What the upload logs before it sends.
Lines uploadPrepared(const std::wstring& cookie, const std::wstring& length, const std::wstring& base);

/// An exchange and what becomes of it.
struct Exchange
{
    Lines before; ///< the operation's thread, before it sends
    Lines answer; ///< other threads, of the answer
    Lines after;  ///< the operation's thread, with the answer at hand
    Lines caught; ///< of an exception
};
/// The exchange of `operation`, run by safe_CallMethod, which returns this status.
Lines sent(const Operation& operation, const Exchange& exchange, const std::wstring& code,
           const std::wstring& message);

/// The lines from the first that contains `part` on.
std::vector<std::wstring> excerpt(const std::vector<std::wstring>& texts, const std::wstring& part,
                                  std::size_t count);

testing::AssertionResult same(const Lines& expected, const std::vector<std::wstring>& actual);
} // namespace Trace
