#include "job.h"

#include <benchmark/benchmark.h>

#include <optional>

namespace bench {
namespace {

void measure(benchmark::State &state, const JobRow &row, std::optional<Outcome> &outcome) {
    const Job job = row.start();
    if (!outcome) // once for all repetitions
        outcome = job.check();
    if (!outcome->wrong.empty()) {
        state.SkipWithError(outcome->wrong.c_str());
        return;
    }
    for (auto iteration : state) {
        static_cast<void>(iteration);
        job.run();
        benchmark::ClobberMemory();
    }
    using benchmark::Counter;
    const double pixels = job.pixels == 0 ? outcome->pixels : job.pixels;
    if (pixels > 0)
        state.counters["ns_per_pixel"] = Counter(pixels * 1e-9, Counter::kIsIterationInvariantRate | Counter::kInvert);
    if (job.figures > 0)
        state.counters["figures_per_second"] = Counter(job.figures, Counter::kIsIterationInvariantRate);
    state.SetLabel(row.figure);
}

} // namespace

void addJobs(const std::vector<JobRow> &rows) {
    for (const JobRow &row : rows)
        benchmark::RegisterBenchmark((row.name + "/" + row.work).c_str(),
                                     [row, outcome = std::make_shared<std::optional<Outcome>>()](
                                         benchmark::State &state) { measure(state, row, *outcome); })
            ->Unit(benchmark::kMicrosecond);
}

Outcome compared(const test::Surface &drawn, const test::Surface &expected, const test::Surface &before) {
    int changed = 0;
    for (std::size_t i = 0; i < expected.words().size(); ++i)
        changed += expected.words()[i] != before.words()[i];
    if (changed == 0)
        return {"there is nothing to draw"};
    return {drawn.differenceFrom(expected), static_cast<double>(changed)};
}

test::Surface noise(int width, int height, std::uint64_t seed) {
    test::Random random(seed);
    test::Surface surface(width, height);
    for (int y = -test::Surface::margin; y < height + test::Surface::margin; ++y)
        for (int x = -test::Surface::margin; x < width + test::Surface::margin; ++x)
            surface.at(x, y) = random.word() & 0xFFFFFF;
    return surface;
}

} // namespace bench
