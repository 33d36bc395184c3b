#include "rows.h"

#include "catalogue/row.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <set>
#include <string>

#ifdef Q_MUR_BENCH_CALLGRIND
#include <valgrind/callgrind.h>
#else
#define CALLGRIND_START_INSTRUMENTATION
#define CALLGRIND_STOP_INSTRUMENTATION
#define CALLGRIND_DUMP_STATS_AT(name)
#endif

namespace bench {
namespace {

using catalogue::Area;
using catalogue::Argument;
using catalogue::Call;
using catalogue::Kind;
using catalogue::Plane;
using catalogue::Row;
using catalogue::Run;
using catalogue::Scene;
using catalogue::Stage;

constexpr Stage pictureStages[] = {{1920, 1080, 0.5}, {640, 480, 0.5}};
constexpr Stage figureStage = {700, 700, 0.5};

/// What a scene is measured by.
enum class Measure { pictures, figures, calls };

/// The pixels of its destinations that a call writes or reads, by their region.
double pixelsOf(const Call &call, const catalogue::Region &areas) {
    double pixels = 0;
    if (!areas)
        return 0;
    for (const Area &area : areas(call)) {
        const Argument *argument = call.row().argument(area.argument);
        if (argument->kind == Kind::destination && !area.part.isEmpty())
            pixels += static_cast<double>(area.part.width()) * static_cast<double>(area.part.height());
    }
    return pixels;
}

Measure measureOf(const Row &row, const Scene &scene) {
    if (!row.writes || std::none_of(row.arguments.begin(), row.arguments.end(),
                                    [](const Argument &a) { return a.kind == Kind::destination; }))
        return scene.figures > 0 || row.argument("data") ? Measure::figures : Measure::calls;
    if (scene.calls > 1 || scene.figures > 0)
        return Measure::figures;
    const Stage &stage = pictureStages[1];
    const double share = pixelsOf(catalogue::sceneCall(row, scene, stage), row.writes) / (stage.width * stage.height);
    return share > 0.9 ? Measure::pictures : Measure::figures;
}

/// The calls of a scene, ready to run as often as wanted.
class Work {
public:
    Work(const Row &row, const Scene &drawn, const Stage &stage)
        : scene(drawn), calls(catalogue::sceneCalls(row, scene, stage)) {
        for (Call &call : calls)
            runs.push_back(row.functions.library(call));
        if (scene.isRestored)
            before.emplace(calls.front());
    }

    void run() {
        for (const Run &one : runs)
            one();
    }

    bool mustBeRestored() const { return scene.isRestored; }
    void restore() { calls.front().restore(*before); }

    Call &first() { return calls.front(); }

private:
    const Scene &scene;
    std::vector<Call> calls;
    std::vector<Run> runs;
    std::optional<Call> before;
};

/// What a check has found.
struct Outcome {
    std::string wrong; ///< empty if nothing is
    double pixels = 0; ///< how many a run draws
};

/// How many pixels of the destinations differ.
double changedPixels(const Call &after, const Call &before) {
    double changed = 0;
    for (std::size_t i = 0; i < after.size(); ++i) {
        if (after.row().arguments[i].kind != Kind::destination || !after[i].is<Plane>())
            continue;
        const auto is = after[i].plane().bytes();
        const auto was = before[i].plane().bytes();
        for (std::size_t byte = 0; byte + 4 <= is.size(); byte += 4)
            changed += std::memcmp(&is[byte], &was[byte], 4) != 0;
    }
    return changed;
}

/// Runs the scene once and compares the memory of its first and last call with what the twin makes of the same.
Outcome checked(const Row &row, const Scene &scene, const Stage &stage) {
    std::vector<Call> drawn = catalogue::sceneCalls(row, scene, stage);
    const Call before = drawn.front();
    const auto seed = [&row] {
        if (row.drawsRandomNumbers)
            std::srand(1);
    };
    seed();
    for (Call &call : drawn)
        row.functions.library(call)();
    if (row.functions.twin) {
        std::vector<Call> expected = catalogue::sceneCalls(row, scene, stage);
        seed();
        for (Call &call : expected)
            row.functions.twin(call)();
        for (const std::size_t i : {std::size_t{0}, drawn.size() - 1}) {
            const std::string wrong = drawn[i].differenceFrom(expected[i]);
            if (!wrong.empty())
                return {wrong};
        }
    }
    const bool readsSource = std::any_of(row.arguments.begin(), row.arguments.end(),
                                         [](const Argument &a) { return a.kind == Kind::source; });
    const double changed = changedPixels(drawn.front(), before);
    if (changed == 0 && pixelsOf(before, row.writes) > 0)
        return {"there is nothing to draw"};
    return {"", readsSource && scene.calls == 1 ? pixelsOf(before, row.writes) : changed};
}

/// Surfaces that a pixel is read from, the destination itself included where the row says so.
int surfacesRead(const Row &row, const Call &call) {
    int count = 0;
    for (const Argument &argument : row.arguments)
        count += argument.kind == Kind::source;
    return count + (row.reads && pixelsOf(call, row.reads) > 0 ? 1 : 0);
}

void time(benchmark::State &state, Work &work) {
    for (auto iteration : state) {
        static_cast<void>(iteration);
        work.run();
        benchmark::ClobberMemory();
        if (work.mustBeRestored()) {
            state.PauseTiming();
            work.restore();
            state.ResumeTiming();
        }
    }
}

void measure(benchmark::State &state, const Row &row, const Scene &scene, const Stage &stage, Measure by,
             std::optional<Outcome> &outcome) {
    if (!outcome) // once for all repetitions
        outcome = checked(row, scene, stage);
    if (!outcome->wrong.empty()) {
        state.SkipWithError(outcome->wrong.c_str());
        return;
    }
    Work work(row, scene, stage);
    time(state, work);
    using benchmark::Counter;
    const double pixels = outcome->pixels;
    if (by != Measure::calls && pixels > 0)
        state.counters["ns_per_pixel"] = Counter(pixels * 1e-9, Counter::kIsIterationInvariantRate | Counter::kInvert);
    if (by == Measure::pictures) {
        const int surfaces = surfacesRead(row, work.first());
        const bool hasSource = surfaces > (row.reads && pixelsOf(work.first(), row.reads) > 0 ? 1 : 0);
        state.counters["bytes_per_second"] = Counter(pixels * 4 * (1 + surfaces), Counter::kIsIterationInvariantRate);
        state.SetLabel(hasSource ? "memcpy" : "fill");
        return;
    }
    const double figures = scene.figures > 0 ? scene.figures : scene.calls > 1 ? scene.calls : 0;
    if (figures > 0)
        state.counters["figures_per_second"] = Counter(figures, Counter::kIsIterationInvariantRate);
    state.SetLabel(std::string(scene.figure));
}

std::string sizeOf(const Stage &stage) {
    return std::to_string(stage.width) + "x" + std::to_string(stage.height);
}

void add(const std::string &name, const Row &row, const Scene &scene, const Stage &stage, Measure by) {
    benchmark::RegisterBenchmark(name.c_str(), [&row, scene, stage, by,
                                                outcome = std::make_shared<std::optional<Outcome>>()](
                                                   benchmark::State &state) {
        measure(state, row, scene, stage, by, *outcome);
    })->Unit(benchmark::kMicrosecond);
}

/// Visits each benchmark of a row with its name, row, scene, stage and measure.
template <typename Visit>
void forEachBenchmark(const Row &row, const Visit &visit) {
    for (const Scene &scene : catalogue::scenesOf(row)) {
        const Measure by = measureOf(row, scene);
        const std::string name = row.fullName();
        if (by == Measure::pictures)
            for (const Stage &stage : pictureStages)
                visit(name + (scene.label.empty() ? "" : " " + scene.label) + "/" + sizeOf(stage), row, scene, stage,
                      by);
        else if (by == Measure::figures)
            visit(name + "/" + (scene.label.empty() ? "scene" : scene.label), row, scene, figureStage, by);
        else
            visit(name + (scene.label.empty() ? "" : " " + scene.label) + "/call", row, scene, figureStage, by);
    }
}

} // namespace

void addRows() {
    catalogue::forEachRow([](const Row &row) { forEachBenchmark(row, add); });
}

std::set<std::string> countRows(std::set<std::string> names) {
    const auto visit = [&](const std::string &name, const Row &row, const Scene &scene, const Stage &stage, Measure) {
        if (names.erase(name) == 0)
            return;
        Work work(row, scene, stage);
        CALLGRIND_START_INSTRUMENTATION;
        work.run();
        CALLGRIND_STOP_INSTRUMENTATION;
        CALLGRIND_DUMP_STATS_AT(name.c_str());
    };
    catalogue::forEachRow([&](const Row &row) {
        if (std::any_of(names.begin(), names.end(),
                        [&row](const auto &name) { return name.starts_with(row.fullName()); }))
            forEachBenchmark(row, visit);
    });
    return names;
}

void addBaselines() {
    for (const Stage &stage : pictureStages) {
        const auto pixels = static_cast<std::size_t>(stage.width) * static_cast<std::size_t>(stage.height);
        const auto add = [&](const char *name, double bytes, auto draw) {
            benchmark::RegisterBenchmark((std::string(name) + "/" + sizeOf(stage)).c_str(), [=](benchmark::State
                                                                                                    &state) {
                const Plane dst = stage.picture(0);
                const Plane src = stage.picture(1);
                for (auto iteration : state) {
                    static_cast<void>(iteration);
                    draw(dst.as<q_ulong>(), src.as<q_ulong>());
                    benchmark::ClobberMemory();
                }
                using benchmark::Counter;
                const auto count = static_cast<double>(pixels);
                state.counters["ns_per_pixel"] =
                    Counter(count * 1e-9, Counter::kIsIterationInvariantRate | Counter::kInvert);
                state.counters["bytes_per_second"] = Counter(count * bytes, Counter::kIsIterationInvariantRate);
                state.SetLabel(name);
            })->Unit(benchmark::kMicrosecond);
        };
        add("memcpy", 8, [pixels](q_ulong *dst, const q_ulong *src) { std::memcpy(dst, src, pixels * 4); });
        add("fill", 4, [pixels](q_ulong *dst, const q_ulong *) { std::fill_n(dst, pixels, 0x00336699); });
    }
}

} // namespace bench
