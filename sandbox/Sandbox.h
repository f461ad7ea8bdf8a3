#pragma once

#include "CaFile.h"
#include "Certificates.h"
#include "ControlService.h"
#include "Listener.h"
#include "Options.h"
#include "RestService.h"
#include "TlsContexts.h"

#include <boost/asio/io_context.hpp>

#include <string>

namespace sandbox
{

// The three ports and what stands behind them. Everything runs on the one thread that runs the context.
class Sandbox
{
public:
    Sandbox(boost::asio::io_context& context, const Options& options);

    std::string httpEndpoint() const;
    std::string httpsEndpoint() const;
    std::string controlEndpoint() const;
    std::string caFile() const;

private:
    Listener m_control;
    Listener m_http;
    Listener m_https;
    CertificateAuthority m_authority;
    CaFile m_caFile;
    TlsContexts m_tls;
    std::string m_base;
    SharedState m_state;
    RestService m_restService;
    ControlService m_controlService;
};

} // namespace sandbox
