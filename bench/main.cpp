// Measures the library beside its peers and says which goals hold. Runs under vantry-bench-server.
#include "Client.h"
#include "CompletionWindow.h"
#include "Measurement.h"

#include <CLI/CLI.hpp>
#include <log4cxx/logger.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <stdexcept>

#ifdef _WIN32
#define popen _popen
#define pclose _pclose
#endif

namespace
{
using namespace Bench;

constexpr std::size_t MB = 1'000'000;

enum class Operation
{
    Note,
    SecureNote,
    List,
    Upload,
    AsynchronousUpload
};

const char* nameOf(Operation operation)
{
    static const char* const names[] = {"note", "note over https", "list", "upload", "upload with a window"};
    return names[static_cast<int>(operation)];
}

/// One thing that a host does, at one size: characters of a note, tickets of a list, bytes of a file.
struct Work
{
    Operation operation;
    std::size_t size;
    int rounds;
    double goal; ///< a part of what the bare SDK needs
    /// A part of what the C++ functions need; 0: none.
    double goalOfTheCInterface = 0;
};

std::string sizeOf(const Work& work)
{
    if (work.operation == Operation::List) {
        return std::to_string(work.size) + " tickets";
    }
    return work.size < MB ? std::to_string(work.size) + " B" : std::to_string(work.size / MB) + " MB";
}

/// A part of what the bare SDK needs.
constexpr double goal([[maybe_unused]] double onLinux)
{
#ifdef _WIN32
    return 1.05;
#else
    return onLinux;
#endif
}

const Work works[] = {
    {Operation::Note, 100, 1500, goal(1.03), 1.02},   {Operation::Note, MB, 30, goal(1.2)},
    {Operation::Note, 10 * MB, 9, goal(1.2)},         {Operation::SecureNote, 100, 300, goal(1.03)},
    {Operation::List, 1000, 60, goal(0.95)},          {Operation::List, 10'000, 20, goal(0.95)},
    {Operation::List, 100'000, 15, goal(0.95), 1.10}, {Operation::Upload, 10 * MB, 30, goal(1.15)},
    {Operation::Upload, 100 * MB, 9, goal(1.15)},     {Operation::Upload, 500 * MB, 5, goal(1.15)},
};

/// Peak memory beyond the host's own, for each byte or ticket; goal 0: what the bare SDK needs.
struct MemoryWork
{
    Work work;
    const char* unitName;
};

const MemoryWork memoryWorks[] = {
    {{Operation::Upload, 100 * MB, 1, 1.05}, "× the file"},
    {{Operation::AsynchronousUpload, 100 * MB, 1, 2.05}, "× the file"},
    {{Operation::List, 100'000, 1, 0}, "bytes a ticket"},
};

/// The records that a host passes to an operation.
struct Material
{
    explicit Material(const Work& work)
        : note{L"1001", {}, 15, true}, file{std::string(), L"file.bin"}, tickets(work.size)
    {
        if (work.operation == Operation::Upload || work.operation == Operation::AsynchronousUpload) {
            file.data.assign(work.size, '\x5a');
        } else if (work.operation != Operation::List) {
            note.noteText.assign(work.size, L'n');
        }
    }

    TechNote note;
    Attachment file;
    std::size_t tickets;
};

/// The library, the bare SDK, the library through its C interface, and the peers of the target, ready to
/// work. A window does not wait for the C interface.
std::vector<NamedClient> allClients(Operation operation)
{
    const auto* const server =
        std::getenv(operation == Operation::SecureNote ? "VANTRY_BENCH_HTTPS" : "VANTRY_BENCH_HTTP");
    if (server == nullptr) {
        throw std::runtime_error("runs under vantry-bench-server only");
    }
    std::vector<NamedClient> all{{"library", libraryClient()}, {"REST SDK", sdkClient()}};
    if (operation != Operation::AsynchronousUpload) {
        all.push_back({"C interface", cInterfaceClient()});
    }
    for (auto& peer : peers()) {
        all.push_back(std::move(peer));
    }
    for (const auto& [name, client] : all) {
        client->use(server);
    }
    return all;
}

/// `named` and `material` must outlive it.
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

void judge(std::vector<std::string>& verdicts, const std::string& what, double measured, double goal)
{
    char row[200];
    std::snprintf(row, sizeof(row), "| %s | %.2f | ≤ %.2f | %s |", what.c_str(), measured, goal,
                  measured <= goal ? "holds" : "**does not hold**");
    verdicts.emplace_back(row);
}

void printTimes(const Work& work, const std::vector<Samples>& all, const Samples& reference)
{
    for (const auto& samples : all) {
        const auto calls = static_cast<double>(samples.seconds.size());
        std::printf("| %s | %s | %s | %.3f | %.3f | %.2f | %.3f | %.2f |\n", nameOf(work.operation),
                    sizeOf(work).c_str(), samples.name.c_str(), quantile(samples.seconds, 0.5) * 1e3,
                    quantile(samples.seconds, 0.99) * 1e3, ratio(samples, reference),
                    samples.cpuSeconds / calls * 1e3, samples.cpuSeconds / reference.cpuSeconds);
    }
    std::fflush(stdout);
}

void measureTime(const Work& work, std::vector<std::string>& verdicts)
{
    const Material material(work);
    const auto clients = allClients(work.operation);
    std::vector<Contender> contenders;
    for (const auto& client : clients) {
        contenders.push_back(contender(client, work.operation, material));
    }
    const auto all = measure(contenders, work.rounds);
    printTimes(work, all, all[1]);
    const std::string what = std::string(nameOf(work.operation)) + ", " + sizeOf(work);
    judge(verdicts, "time, " + what + ", to the bare SDK", ratio(all[0], all[1]), work.goal);
    if (work.goalOfTheCInterface > 0) {
        judge(verdicts, "time through the C interface, " + what + ", to the C++ functions",
              ratio(all[2], all[0]), work.goalOfTheCInterface);
    }
}

/// How long an upload with a window holds the host's thread, beside one copy of the file.
void measureReturn(std::vector<std::string>& verdicts)
{
    const Work work{Operation::AsynchronousUpload, 500 * MB, 5, 1.2, false};
    const Material material(work);
    const auto clients = allClients(work.operation);
    std::string copy;
    const auto all = measure({contender(clients[0], work.operation, material),
                              {"one copy", [] {}, [&] { copy = std::string(material.file.data); },
                               [&] { std::string().swap(copy); }}},
                             work.rounds);
    printTimes(work, all, all[1]);
    judge(verdicts, "time, upload with a window until it returns, to one copy", ratio(all[0], all[1]),
          work.goal);
}

/// Bytes by which the peak goes beyond what the host holds already; in a process of its own.
double peakOf(const Work& work, std::size_t who)
{
    const auto clients = allClients(work.operation);
    const Material small({work.operation, 1, 1, 0, false});
    const Material material(work);
    std::size_t before = 0;
    for (const auto* used : {&small, &material}) { // the small one to warm up
        const auto subject = contender(clients.at(who), work.operation, *used);
        subject.prepare();
        before = usage().residentBytes;
        subject.call();
        subject.finish();
    }
    const auto peak = usage().peakResidentBytes;
    return peak > before ? static_cast<double>(peak - before) : 0; // the system counts them apart
}

double peakInProcessOfItsOwn(const std::string& program, std::size_t work, std::size_t who)
{
    const auto command = '"' + program + "\" --peak " + std::to_string(work) + " " + std::to_string(who);
    FILE* const child = popen(command.c_str(), "r");
    double bytes = 0;
    const bool isMeasured = child != nullptr && std::fscanf(child, "%lf", &bytes) == 1;
    if (child == nullptr || pclose(child) != 0 || !isMeasured) {
        throw std::runtime_error("cannot measure in a process of its own: " + command);
    }
    return bytes;
}

void measureMemory(const std::string& program, std::vector<std::string>& verdicts)
{
    std::printf("\nPeak memory beyond the host's own\n\n| operation | size | done by | peak | |\n"
                "|---|---|---|---:|---|\n");
    for (std::size_t i = 0; i < std::size(memoryWorks); ++i) {
        const auto& [work, unitName] = memoryWorks[i];
        const auto clients = allClients(work.operation);
        const auto count = work.operation == Operation::AsynchronousUpload ? 1 : clients.size();
        std::vector<double> peaks;
        for (std::size_t who = 0; who < count; ++who) {
            peaks.push_back(peakInProcessOfItsOwn(program, i, who) / static_cast<double>(work.size));
            std::printf("| %s | %s | %s | %.2f | %s |\n", nameOf(work.operation), sizeOf(work).c_str(),
                        clients[who].name.c_str(), peaks[who], unitName);
        }
        judge(verdicts, std::string("peak memory, ") + nameOf(work.operation) + ", " + unitName, peaks[0],
              work.goal > 0 ? work.goal : peaks[1]);
    }
}

struct Options
{
    std::string only;
    std::vector<std::size_t> peak;
};

void run(const std::string& program, const Options& options)
{
    log4cxx::Logger::getRootLogger()->setLevel(log4cxx::Level::getOff());
    if (!options.peak.empty()) {
        std::printf("%.0f\n", peakOf(memoryWorks[options.peak[0]].work, options.peak[1]));
        return;
    }
    std::vector<std::string> verdicts;
    const auto wanted = [&](const std::string& name) { return name.find(options.only) == 0; };
    std::printf("Time of a call\n\n| operation | size | done by | median ms | p99 ms | to the SDK | CPU ms | "
                "CPU to the SDK |\n|---|---|---|---:|---:|---:|---:|---:|\n");
    for (const auto& work : works) {
        if (wanted(nameOf(work.operation))) {
            measureTime(work, verdicts);
        }
    }
    if (wanted(nameOf(Operation::AsynchronousUpload))) {
        measureReturn(verdicts);
    }
    if (wanted("memory")) {
        measureMemory(program, verdicts);
    }
    std::printf("\nGoals\n\n| what | measured | goal | |\n|---|---:|---:|---|\n");
    for (const auto& row : verdicts) {
        std::printf("%s\n", row.c_str());
    }
}
} // namespace

int main(int argc, char** argv)
{
    Options options;
    CLI::App app("Measures the library beside its peers.");
    app.add_option("--only", options.only, "only what begins so: note, list, upload, memory");
    app.add_option("--peak", options.peak, "number of a work and of a client: the peak in bytes")
        ->expected(2);
    CLI11_PARSE(app, argc, argv);
    try {
        run(argv[0], options);
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::cerr << "vantry-bench: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
