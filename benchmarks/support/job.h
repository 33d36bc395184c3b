/// \file
/// Jobs: rows that are timed by the figures they draw, each on surfaces of its own. They are checked like the others,
/// before they are timed, and most of them by the second computations of the tests.
#ifndef Q_MUR_BENCH_JOB_H
#define Q_MUR_BENCH_JOB_H

#include "support/surface.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace bench {

/// What a check has found.
struct Outcome {
    std::string wrong; ///< empty if nothing is
    double pixels = 0; ///< how many a run draws
};

/// A call with its surfaces, which does the same work every time.
struct Job {
    std::function<void()> run;
    std::function<Outcome()> check; ///< runs once
    double figures = 0;
    double pixels = 0; ///< counted by the check if 0, and not at all if below
};

constexpr double uncounted = -1;

/// A row of the table.
struct JobRow {
    std::string name;   ///< the exported name; behind an overload or a further way of calling, a word more
    std::string work;   ///< what a run draws
    std::string figure; ///< what is counted beside pixels: "lines", or "Mtriangles" in millions; empty if nothing is
    std::function<Job()> start;
};

/// Registers rows.
void addJobs(const std::vector<JobRow> &rows);

/// Compares what was drawn over `before` with what should be there, margins included, and counts what has changed.
Outcome compared(const test::Surface &drawn, const test::Surface &expected, const test::Surface &before);

/// Pixels of noise without top bytes.
test::Surface noise(int width, int height, std::uint64_t seed = 1);

/// A job on one picture: `draw(picture)` is timed, `compute(picture)` draws the same the plain way.
template <class Draw, class Compute>
Job drawing(const test::Surface &picture, Draw draw, Compute compute, double figures = 0, double pixels = 0) {
    auto dst = std::make_shared<test::Surface>(picture);
    return {[dst, draw]() mutable { draw(*dst); },
            [dst, draw, compute]() mutable {
                const test::Surface before = *dst;
                test::Surface expected = before;
                compute(expected);
                draw(*dst);
                return compared(*dst, expected, before);
            },
            figures, pixels};
}

} // namespace bench

#endif
