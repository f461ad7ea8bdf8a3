// A server's bytes as answer to any of the six operations, over a socket: the REST SDK reads them as from any
// server. The operation ends, what the server left makes no header of its own, and the next good call works.
//
// Input: a character that chooses the operation, then the answer.
#include "Host.h"

#include <boost/asio.hpp>

#include <csignal>
#include <thread>

using boost::asio::ip::tcp;

namespace
{
/// Answers one connection after the other with the same bytes, and hangs up.
class Server
{
public:
    Server() : m_acceptor(m_context, tcp::endpoint(boost::asio::ip::address_v4::loopback(), 0)) {}

    unsigned short port() const { return m_acceptor.local_endpoint().port(); }
    void answerWith(std::string_view bytes) { m_answer = bytes; }

    [[noreturn]] void serve()
    {
        sigset_t signals; // the fuzzer's clock interrupts other threads
        sigfillset(&signals);
        pthread_sigmask(SIG_BLOCK, &signals, nullptr);
        for (;;) {
            auto connection = m_acceptor.accept();
            boost::system::error_code ended; // the client may go at any time
            std::string request;
            boost::asio::read_until(connection, boost::asio::dynamic_buffer(request), "\r\n\r\n", ended);
            const auto head = request.substr(0, request.find("\r\n\r\n"));
            requireWellFormed(head);
            boost::asio::write(connection, boost::asio::buffer(fuzz::withEcho(m_answer, targetOf(head))),
                               ended);
            connection.shutdown(tcp::socket::shutdown_send, ended);
            boost::asio::read(connection, boost::asio::dynamic_buffer(request), ended);
        }
    }

private:
    static std::string targetOf(const std::string& head)
    {
        const auto start = head.find(' ') + 1;
        return head.substr(start, head.find(' ', start) - start);
    }

    static void requireWellFormed(std::string_view head)
    {
        while (!head.empty()) {
            const auto line = head.substr(0, head.find("\r\n"));
            fuzz::require(fuzz::isOneLine(line), "a header of more than one line: " + std::string(line));
            head.remove_prefix(std::min(head.size(), line.size() + 2));
        }
    }

    boost::asio::io_context m_context;
    tcp::acceptor m_acceptor;
    std::string m_answer; ///< changed only while no operation is under way
};

Server& server()
{
    static auto& running = *[] {
        auto* const started = new Server; // for as long as the process lives, like its thread
        std::thread([started] { started->serve(); }).detach();
        return started;
    }();
    return running;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    constexpr unsigned char saveAttachment = 3;
    constexpr unsigned char createTicket = 4;
    fuzz::logAt(log4cxx::Level::getTrace());
    VantryIntegrationApi::CVantryApi client;
    fuzz::setUp(client, L"http://127.0.0.1:" + std::to_wstring(server().port()) + L"/rest", L"technician",
                L"wr\u00E9nch & hammer");
    server().answerWith({reinterpret_cast<const char*>(data) + 1, size - 1});
    fuzz::runOperation(client, data[0]);
    server().answerWith("HTTP/1.1 201 Created\r\nContent-Type: application/json\r\nContent-Length: 8\r\n\r\n"
                        "{\"id\":7}");
    fuzz::runOperation(client, saveAttachment);
    fuzz::runOperation(client, createTicket);
    fuzz::require(client.GetCreatedTicketID() == L"7", "the next good call does not work");
    fuzz::requireSecrecy();
    return 0;
}
