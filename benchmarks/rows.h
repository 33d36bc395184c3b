/// \file
/// The benchmark's rows: the scenes of the catalogue, each checked with its plain twin before it is timed.
#ifndef Q_MUR_BENCH_ROWS_H
#define Q_MUR_BENCH_ROWS_H

#include <set>
#include <string>

namespace bench {

/// Registers what pictures are compared with: memcpy and fill of the same bytes.
void addBaselines();

/// Registers every scene of the catalogue: whole pictures at two sizes, other scenes by what they draw, and functions
/// that draw nothing by the call.
void addRows();

/// Runs what the benchmarks of these names time, each once and unchecked in a function of its own.
/// \return the names of which there is no benchmark
std::set<std::string> countRows(std::set<std::string> names);

} // namespace bench

#endif
