/// \file
/// Rows of the benchmark that draw whole pictures, and calls. Every row is checked before it is timed.
#ifndef Q_MUR_BENCH_ROW_H
#define Q_MUR_BENCH_ROW_H

#include "scene.h"

#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <vector>

namespace bench {

/// What a row reads for each pixel that it writes, and so what it is compared with: memcpy, or fill where nothing is
/// brought over from another surface.
enum class Traffic {
    writes,          ///< beside fill
    readsDst,        ///< beside fill
    readsSrc,        ///< beside memcpy
    readsDstAndSrc,  ///< beside memcpy
    readsTwoSources, ///< beside memcpy
};

/// A function that draws pixels.
struct PixelRow {
    std::string name; ///< the exported name; behind an overload or a further way of calling, a word more
    Traffic traffic;
    std::function<void(Scene &)> draw;

    /// The pixel (x, y) after the call, computed the plain way from what stood there before and from the sources.
    std::function<q_ulong(const Scene &, int x, int y)> expected;

    int extraPitch = 0; ///< pixels between the end of a row and the start of the next

    /// How many pixels a call draws, where it is not all of them.
    std::function<int(const Scene &)> pixelCount = [](const Scene &scene) { return scene.pixelCount(); };
};

/// Registers rows, at both sizes.
void addRows(const std::vector<PixelRow> &rows);

/// Registers the rows that everything is compared with.
void addBaselines();

/// A function that draws no pixels, timed by the call.
/// \param holds checks its results
template <class Call, class Check>
void addCall(const std::string &name, Call call, Check holds) {
    benchmark::RegisterBenchmark((name + "/call").c_str(), [call, holds](benchmark::State &state) mutable {
        if (!holds()) {
            state.SkipWithError("wrong results");
            return;
        }
        for (auto iteration : state) {
            static_cast<void>(iteration);
            call();
            benchmark::ClobberMemory();
        }
    });
}

/// Each family's rows.
void addFrameRows();
void addBlitRows();
void addWarpRows();
void addDrawRows();
void addRegionRows();
void addFilterRows();
void addPipelineRows();
void addTexturedRows();
void addSpriteRows();

} // namespace bench

#endif
