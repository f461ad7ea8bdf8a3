#include "Log.h"
#include "Text.h"

#include <log4cxx/basicconfigurator.h>
#include <log4cxx/fileappender.h>
#include <log4cxx/helpers/pool.h>
#include <log4cxx/helpers/transcoder.h>
#include <log4cxx/logmanager.h>
#include <log4cxx/patternlayout.h>
#include <log4cxx/propertyconfigurator.h>
#include <log4cxx/xml/domconfigurator.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace
{
void logToFile(const std::string& file, const std::string& level)
{
    if (!std::ofstream(std::filesystem::u8path(file), std::ios::app)) {
        throw std::runtime_error("cannot write the log " + file);
    }
    log4cxx::LogString name;
    log4cxx::helpers::Transcoder::decode(toWide(file), name);
    const auto appender = std::make_shared<log4cxx::FileAppender>();
    appender->setLayout(std::make_shared<log4cxx::PatternLayout>(LOG4CXX_STR("%d %-5p %c [%t] %m%n")));
    appender->setFile(name);
    appender->setEncoding(LOG4CXX_STR("UTF-8"));
    log4cxx::helpers::Pool pool;
    appender->activateOptions(pool);
    log4cxx::BasicConfigurator::configure(appender);
    log4cxx::Logger::getRootLogger()->setLevel(log4cxx::Level::toLevel(level));
}

void readConfiguration(const std::string& file)
{
    const auto path = std::filesystem::u8path(file);
    const auto name = toWide(file);
    const auto status = path.extension() == ".xml"
                            ? log4cxx::xml::DOMConfigurator::configure(name)
                            : log4cxx::PropertyConfigurator::configure(log4cxx::File(name));
    if (status != log4cxx::spi::ConfigurationStatus::Configured) {
        throw std::runtime_error("cannot use the log configuration " + file);
    }
}
} // namespace

void configureLog(const Options& options)
{
    if (!options.logConfiguration.empty()) {
        readConfiguration(options.logConfiguration);
    } else if (!options.logFile.empty()) {
        logToFile(options.logFile, options.logLevel);
    } else {
        log4cxx::Logger::getRootLogger()->setLevel(log4cxx::Level::getOff());
    }
    std::atexit(log4cxx::LogManager::shutdown);
}
