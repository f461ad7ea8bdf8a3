// What costs nanoseconds: log lines that are off, and conversions of text.
#include "LumoLogging.h"
#include "RestText.h"

#include <benchmark/benchmark.h>

namespace
{
const log4cxx::LoggerPtr& silentLogger()
{
    static const auto logger = [] {
        auto made = log4cxx::Logger::getLogger("silent");
        made->setLevel(log4cxx::Level::getOff());
        return made;
    }();
    return logger;
}

void scopeWithTheLevelOff(benchmark::State& state)
{
    const auto& logger = silentLogger();
    for ([[maybe_unused]] auto _ : state) {
        const LumoLogBlock block(logger, "scope");
        benchmark::DoNotOptimize(&block);
    }
}
BENCHMARK(scopeWithTheLevelOff);

void lineWithTheLevelOff(benchmark::State& state)
{
    const auto& logger = silentLogger();
    for ([[maybe_unused]] auto _ : state) {
        LUMO_LINE(logger, Info, L"line " << 1);
    }
}
BENCHMARK(lineWithTheLevelOff);

std::wstring textOf(std::int64_t kind)
{
    const std::wstring pieces[] = {L"plain ASCII text ", L"Größter Drucker, 12 € ",
                                   L"ein \xFFFF Rest 絵文字 \x1F600"};
    std::wstring text;
    while (text.size() < 1000) {
        text += pieces[kind];
    }
    return text;
}

void toTheSdk(benchmark::State& state)
{
    const auto text = textOf(state.range(0));
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(Platform::toRestText(text));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(toTheSdk)->DenseRange(0, 2);

void fromTheSdk(benchmark::State& state)
{
    const auto text = Platform::toRestText(textOf(state.range(0)));
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(Platform::fromRestText(text));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(fromTheSdk)->DenseRange(0, 2);
} // namespace
