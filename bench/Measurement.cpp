#include "Measurement.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <numeric>
#include <random>

namespace
{
void add(Bench::Samples& samples, const Bench::Contender& contender)
{
    contender.prepare();
    const auto before = Bench::usage();
    const auto start = std::chrono::steady_clock::now();
    contender.call();
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    const auto after = Bench::usage();
    contender.finish();
    samples.seconds.push_back(taken.count());
    samples.cpuSeconds += after.cpuSeconds - before.cpuSeconds;
}
} // namespace

namespace Bench
{
std::vector<Samples> measure(const std::vector<Contender>& contenders, int rounds)
{
    std::vector<Samples> all;
    for (const auto& contender : contenders) {
        Samples warmUp;
        add(warmUp, contender);
        all.push_back({contender.name, {}, 0});
    }
    std::vector<std::size_t> order(contenders.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::mt19937 random; // the same orders in every run
    for (int round = 0; round < rounds; ++round) {
        std::shuffle(order.begin(), order.end(), random);
        for (const auto i : order) {
            add(all[i], contenders[i]);
        }
    }
    return all;
}

double quantile(std::vector<double> values, double part)
{
    const auto index = static_cast<std::size_t>(std::ceil(part * static_cast<double>(values.size()))) - 1;
    const auto at = values.begin() + static_cast<std::ptrdiff_t>(index);
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

double ratio(const Samples& of, const Samples& to)
{
    std::vector<double> quotients(of.seconds.size());
    std::transform(of.seconds.begin(), of.seconds.end(), to.seconds.begin(), quotients.begin(),
                   std::divides<>());
    return quantile(quotients, 0.5);
}
} // namespace Bench
