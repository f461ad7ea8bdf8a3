#include "Host.h"

#include "Utf8.h"
#include "Utils.h"

#include <boost/algorithm/string/replace.hpp>
#include <log4cxx/appenderskeleton.h>
#include <log4cxx/spi/loggingevent.h>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <mutex>

using VantryIntegrationApi::CVantryApi;

namespace
{
std::mutex forbiddenMutex;
std::string forbidden;

void watch(const std::string& text)
{
    const std::lock_guard lock(forbiddenMutex);
    fuzz::require(forbidden.empty() || text.find(forbidden) == std::string::npos,
                  "shows a password: " + text);
}
} // namespace

namespace log4cxx // its macros look names up from here
{
class WatchingAppender : public AppenderSkeleton
{
public:
    DECLARE_LOG4CXX_OBJECT(WatchingAppender)
    BEGIN_LOG4CXX_CAST_MAP()
    LOG4CXX_CAST_ENTRY(WatchingAppender)
    LOG4CXX_CAST_ENTRY_CHAIN(AppenderSkeleton)
    END_LOG4CXX_CAST_MAP()

    void close() override {}
    bool requiresLayout() const override { return false; }

protected:
    void append(const spi::LoggingEventPtr& event, helpers::Pool& /*pool*/) override
    {
        watch(event->getRenderedMessage());
    }
};
IMPLEMENT_LOG4CXX_OBJECT(WatchingAppender)
} // namespace log4cxx

namespace fuzz
{
void require(bool holds, std::string_view what)
{
    if (!holds) {
        std::cerr << "FIND: " << what << std::endl;
        std::abort();
    }
}

void logAt(const log4cxx::LevelPtr& level)
{
    static const auto appender = std::make_shared<log4cxx::WatchingAppender>();
    for (const auto* const name : {L"TAVIKVANTRYAPI", L"CVantryApi"}) {
        const auto logger = log4cxx::Logger::getLogger(name);
        logger->setAdditivity(false);
        logger->addAppender(appender); // once, however often it is called
        logger->setLevel(level);
    }
}

void forbidInLog(const std::string& utf8)
{
    const std::lock_guard lock(forbiddenMutex);
    forbidden = utf8;
}

void setUp(CVantryApi& client, const std::wstring& endPoint, const std::wstring& userName,
           const std::wstring& password)
{
    client.setEndPoint(endPoint);
    client.setCredentials(userName, password);
    const auto shown = VantryIntegrationApi::Utils::shownInQuery(password).value_or(L"");
    forbidInLog(shown.empty() ? "" : "password=" + Platform::toUtf8(shown));
}

std::string runOperation(CVantryApi& client, unsigned char choice)
{
    try {
        switch (choice % 6) {
        case 0:
            client.wrpCreateSession();
            break;
        case 1:
            client.wrpCloseSession();
            break;
        case 2:
            client.wrpSaveTechNote({L"1001", L"A note", 15, true});
            break;
        case 3:
            client.wrpSaveAttachment({"content", L"file.txt"});
            break;
        case 4:
            client.wrpCreateTicket({L"42", Client, L"A subject", L"A detail"});
            break;
        default:
            try {
                client.wrpRequestTicketList(L"42", Client);
            } catch (const web::json::json_exception& e) {
                watch(e.what());
                return e.what();
            }
        }
    } catch (const std::exception& e) {
        require(false, std::string("an exception that nobody expects: ") + e.what());
    }
    return "";
}

std::string withEcho(std::string_view answer, const std::string& target)
{
    return boost::replace_all_copy(std::string(answer), "\1", target);
}

bool isOneLine(std::string_view text)
{
    return text.find_first_of(std::string_view("\r\n\0", 3)) == std::string_view::npos;
}
} // namespace fuzz
