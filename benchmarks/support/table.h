/// \file
/// The table that a person reads: each row beside memcpy or fill of the same run.
#ifndef Q_MUR_BENCH_TABLE_H
#define Q_MUR_BENCH_TABLE_H

#include <benchmark/benchmark.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace bench {

class Table : public benchmark::BenchmarkReporter {
public:
    /// \param checkOnly prints no times, only how many rows were right
    explicit Table(bool checkOnly) : timesHidden(checkOnly) {}

    bool ReportContext(const Context &context) override;
    void ReportRuns(const std::vector<Run> &runs) override;
    void Finalize() override;

    /// Whether every row drew what it should.
    bool allRight() const { return wrong.empty(); }

private:
    /// Medians of one function at one size.
    struct Cell {
        double nanoseconds;    ///< per pixel, or per call
        double bytesPerSecond; ///< 0 for calls
        std::string baseline;
    };

    void print(const std::string &function) const;
    void printTarget() const;
    void printTimes() const;
    double ratio(const Cell &cell, const std::string &size) const;

    const bool timesHidden;
    std::map<std::int64_t, std::string> functions; ///< by their order of registration: the runs come shuffled
    std::map<std::string, std::map<std::string, Cell>> cells;
    std::map<std::string, std::string> wrong;
};

} // namespace bench

#endif
