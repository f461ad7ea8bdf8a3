#include "RequestConnection.h"

#include "platform/PlatformSupport.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/write.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <future>
#include <string>

using boost::asio::ip::tcp;
using namespace std::chrono_literals;

TEST(RequestConnection, WhatArrivesDuringALookIsNotTakenForReadOrForLessThanNothing)
{
    boost::asio::io_context context;
    tcp::acceptor acceptor(context, {boost::asio::ip::address_v4::loopback(), 0});
    tcp::socket peer(context);
    tcp::socket socket(context);
    socket.connect(acceptor.local_endpoint());
    acceptor.accept(peer);

    const auto handles = countHandles();
    auto connection = [&socket] {
        web::http::client::http_client_config config;
        web::uri base("http://127.0.0.1");
        web::http::http_request request;
        auto watched = Platform::watchConnection(config, base, request);
        config.invoke_nativehandle_options(&socket);
        return watched;
    }();
    connection->opened();
    EXPECT_EQ(countHandles(), handles + 1);

    // Nobody reads.
    const auto writer = std::async(std::launch::async, [&peer] {
        const std::string bytes(100, 'x');
        boost::system::error_code full;
        peer.non_blocking(true);
        while (!full) {
            boost::asio::write(peer, boost::asio::buffer(bytes), full);
        }
    });
    std::uint64_t most = 0;
    while (writer.wait_for(0s) != std::future_status::ready) {
        most = std::max(most, connection->bytesRead().value());
    }
    EXPECT_EQ(most, 0U);
    connection.reset();
    EXPECT_EQ(countHandles(), handles);
}
