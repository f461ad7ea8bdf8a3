/// @file
/// Measures calls in turn, and evaluates the times.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace Bench
{
/// What the system counts of this process.
struct Usage
{
    double cpuSeconds = 0; ///< user and system time of all threads
    std::size_t residentBytes = 0;
    std::size_t peakResidentBytes = 0;
};
Usage usage();

/// One way of doing a thing: `prepare` and `finish` are not measured, `call` is.
struct Contender
{
    std::string name;
    std::function<void()> prepare;
    std::function<void()> call;
    std::function<void()> finish;
};

struct Samples
{
    std::string name;
    std::vector<double> seconds;
    double cpuSeconds = 0;
};

/// Calls the contenders in turn, `rounds` times after one to warm up, so that noise hits all alike. Each
/// round has an order of its own: a call is a little slower after one that has let threads and caches go
/// cold.
std::vector<Samples> measure(const std::vector<Contender>& contenders, int rounds);

double quantile(std::vector<double> values, double part);

/// Median of the quotients of calls that followed each other.
double ratio(const Samples& of, const Samples& to);
} // namespace Bench
