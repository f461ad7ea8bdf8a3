#include "Work.h"

#include "CompletionWindow.h"

#include <cstdlib>
#include <stdexcept>

namespace Bench
{
const char* nameOf(Operation operation)
{
    static const char* const names[] = {"note", "note over https", "list", "upload", "upload with a window"};
    return names[static_cast<int>(operation)];
}

std::string sizeOf(const Work& work)
{
    if (work.operation == Operation::List) {
        return std::to_string(work.size) + " tickets";
    }
    return work.size < kB   ? std::to_string(work.size) + " B"
           : work.size < MB ? std::to_string(work.size / kB) + " kB"
                            : std::to_string(work.size / MB) + " MB";
}

Material::Material(const Work& work)
    : note{L"1001", {}, 15, true}, file{std::string(), L"file.bin"}, tickets(work.size)
{
    if (work.operation == Operation::Upload || work.operation == Operation::AsynchronousUpload) {
        file.data.assign(work.size, '\x5a');
    } else if (work.operation != Operation::List) {
        note.noteText.assign(work.size, L'n');
    }
}

std::vector<NamedClient> allClients(Operation operation)
{
    const auto* const server =
        std::getenv(operation == Operation::SecureNote ? "VANTRY_BENCH_HTTPS" : "VANTRY_BENCH_HTTP");
    if (server == nullptr) {
        throw std::runtime_error("runs under vantry-bench-server only");
    }
    std::vector<NamedClient> all;
    all.push_back({"library", libraryClient()});
    all.push_back({"REST SDK", sdkClient()});
    if (operation != Operation::AsynchronousUpload) {
        all.push_back({"C interface", cInterfaceClient()});
    }
    for (auto& [name, exchange] : peers()) {
        all.push_back({name, plainClient(exchange)});
    }
    for (const auto& [name, client] : all) {
        client->use(server);
    }
    return all;
}

Contender contender(const NamedClient& named, Operation operation, const Material& material)
{
    auto* const client = named.client.get();
    switch (operation) {
    case Operation::List:
        return {named.name, [] {}, [=, &material] { client->listTickets(material.tickets); }, [] {}};
    case Operation::Upload:
        return {named.name, [=, &material] { client->prepareUpload(material.file); },
                [=, &material] { client->upload(material.file); }, [] {}};
    case Operation::AsynchronousUpload: {
        const auto window = std::make_shared<CompletionWindow>();
        return {named.name, [=] { SetHWND(window->handle()); }, [&] { SaveAttachment(material.file); },
                [=] {
                    window->waitForOperation();
                    SetHWND(nullptr);
                    expect(201, static_cast<std::size_t>(GetLastResponse().httpStatusCode), "status");
                }};
    }
    default:
        return {named.name, [=, &material] { client->prepareNote(material.note); },
                [=, &material] { client->saveNote(material.note); }, [] {}};
    }
}
} // namespace Bench
