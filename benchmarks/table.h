/// \file
/// The tables that a person reads: whole pictures beside memcpy or fill of the same run, then jobs by what they draw.
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
    /// What a row is called: a function, and a size of picture, a job's work or "call".
    struct Name {
        std::string function;
        std::string work;
    };

    /// Medians of one function at one size.
    struct Cell {
        double nanoseconds;    ///< per pixel, or per call
        double bytesPerSecond; ///< 0 for calls
        std::string baseline;
    };

    /// Medians of a job.
    struct JobCell {
        double microseconds;        ///< for a run
        double nanosecondsPerPixel; ///< 0 if pixels are not counted
        double figuresPerSecond;    ///< 0 if figures are not counted
        std::string figure;
    };

    void print(const std::string &function) const;
    void printJobs() const;
    void printTarget() const;
    void printTimes() const;
    double ratio(const Cell &cell, const std::string &size) const;

    const bool timesHidden;
    std::map<std::int64_t, Name> names; ///< by their order of registration: the runs come shuffled
    std::map<std::int64_t, JobCell> jobs;
    std::map<std::string, std::map<std::string, Cell>> cells;
    std::map<std::string, std::string> wrong;
};

} // namespace bench

#endif
