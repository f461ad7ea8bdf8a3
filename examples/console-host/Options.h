#pragma once

#include "CertificateQuestion.h"
#include "TAVIKVANTRYAPI.h"

#include <CLI/CLI.hpp>

#include <cstdint>
#include <string>

/// The command line; all text in UTF-8.
struct Options
{
    std::string endPoint;
    std::string userName;
    std::string password;
    std::string client; ///< id; empty: the ticket is for the asset
    std::string asset;
    std::string subject = "Printer in the hall does not print";
    std::string detail = "It blinks twice and goes silent.";
    std::string note = "Looked at it on site; log attached.";
    std::uint32_t workTime = 15;
    bool isNoteHidden = false;
    std::string file; ///< empty: a built-in sample
    CertificateAnswer certificate = CertificateAnswer::ask;
    bool isAsynchronous = false;
    std::string logFile;
    std::string logLevel = "info";
    std::string logConfiguration;
};

/// Declares the options of the command line and where their values go.
void declareOptions(CLI::App& app, Options& options);
