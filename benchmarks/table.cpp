#include "table.h"

#include <algorithm>
#include <cstdio>

namespace bench {
namespace {

const std::string sizes[] = {"1920x1080", "640x480"};
constexpr double target = 1.15;
const std::string targetFunctions[] = {"iFillRect", "iBltFast32", "iBltFast32_Advanced"};

} // namespace

bool Table::ReportContext(const Context &) {
    return true;
}

void Table::ReportRuns(const std::vector<Run> &runs) {
    for (const Run &run : runs) {
        const std::string &name = run.run_name.function_name;
        const std::size_t slash = name.rfind('/');
        const std::string function = name.substr(0, slash);
        const std::string work = name.substr(slash + 1);
        names[run.family_index] = {function, work};
        if (run.error_occurred)
            wrong[name] = run.error_message;
        // Without repetitions a run is its own median.
        if (run.error_occurred || (run.repetitions > 1 && run.aggregate_name != "median"))
            continue;
        const auto counter = [&run](const char *key) {
            const auto found = run.counters.find(key);
            return found == run.counters.end() ? 0.0 : found->second.value;
        };
        const double seconds = run.GetAdjustedCPUTime() / benchmark::GetTimeUnitMultiplier(run.time_unit);
        if (work != "call" && std::find(std::begin(sizes), std::end(sizes), work) == std::end(sizes)) {
            JobCell &job = jobs[run.family_index];
            job = {seconds * 1e6, counter("ns_per_pixel"), counter("figures_per_second"), job.figure};
            if (!run.report_label.empty())
                job.figure = run.report_label;
            continue;
        }
        Cell &cell = cells[function][work];
        cell.nanoseconds = work == "call" ? seconds * 1e9 : counter("ns_per_pixel");
        cell.bytesPerSecond = counter("bytes_per_second");
        if (!run.report_label.empty())
            cell.baseline = run.report_label;
    }
}

double Table::ratio(const Cell &cell, const std::string &size) const {
    const auto row = cells.find(cell.baseline);
    if (row == cells.end())
        return 0;
    const auto baseline = row->second.find(size);
    return baseline == row->second.end() ? 0 : cell.nanoseconds / baseline->second.nanoseconds;
}

void Table::print(const std::string &function) const {
    const auto row = cells.find(function);
    if (row == cells.end())
        return;
    if (const auto call = row->second.find("call"); call != row->second.end()) {
        std::printf("%-40s %10.1f ns/call\n", function.c_str(), call->second.nanoseconds);
        return;
    }
    std::printf("%-40s", function.c_str());
    std::string baseline;
    for (const std::string &size : sizes) {
        if (const auto cell = row->second.find(size); cell != row->second.end()) {
            baseline = cell->second.baseline;
            std::printf(" %9.3f %7.2f %7.2f ", cell->second.nanoseconds, cell->second.bytesPerSecond * 1e-9,
                        ratio(cell->second, size));
        } else {
            std::printf(" %9s %7s %7s ", "-", "-", "-");
        }
    }
    std::printf(" %s\n", baseline.c_str());
}

void Table::printJobs() const {
    if (jobs.empty())
        return;
    std::printf("\n%-44s %-34s %10s %9s %9s %7s  %s\n", "function", "drawing", "us", "ns/pixel", "Mpixel/s", "times",
                "of memcpy at 1920 x 1080");
    for (const auto &[index, job] : jobs) {
        const Name &name = names.at(index);
        std::printf("%-44s %-34s %10.1f", name.function.c_str(), name.work.c_str(), job.microseconds);
        if (job.nanosecondsPerPixel > 0)
            std::printf(" %9.3f %9.1f %7.2f", job.nanosecondsPerPixel, 1e3 / job.nanosecondsPerPixel,
                        ratio({job.nanosecondsPerPixel, 0, "memcpy"}, sizes[0]));
        else
            std::printf(" %9s %9s %7s", "-", "-", "-");
        if (job.figure.starts_with("M"))
            std::printf("  %.3f %s/s", job.figuresPerSecond * 1e-6, job.figure.c_str());
        else if (!job.figure.empty())
            std::printf("  %.0f %s/s", job.figuresPerSecond, job.figure.c_str());
        std::printf("\n");
    }
}

void Table::printTarget() const {
    double worst = 0;
    for (const std::string &function : targetFunctions) {
        const auto row = cells.find(function);
        if (row == cells.end())
            return;
        for (const auto &[size, cell] : row->second)
            worst = std::max(worst, ratio(cell, size));
    }
    std::printf("\niFillRect, iBltFast32 and iBltFast32_Advanced take at most %.2f times fill and memcpy; "
                "the target of %.2f is %s.\n",
                worst, target, worst <= target ? "met" : "missed");
}

void Table::printTimes() const {
    std::printf("\n%-40s %26s %26s\n", "", "1920 x 1080        ", "640 x 480         ");
    std::printf("%-40s %9s %7s %7s  %9s %7s %7s  %s\n", "function", "ns/pixel", "GB/s", "times", "ns/pixel", "GB/s",
                "times", "of");
    const std::string *last = nullptr;
    for (const auto &[index, name] : names) {
        if (!last || *last != name.function)
            print(name.function);
        last = &name.function;
    }
    printTarget();
    printJobs();
}

void Table::Finalize() {
    if (!timesHidden)
        printTimes();
    std::printf("\n%zu rows draw what they should, %zu do not.\n", names.size() - wrong.size(), wrong.size());
    for (const auto &[name, message] : wrong)
        std::printf("%s: %s\n", name.c_str(), message.c_str());
    std::fflush(stdout);
}

} // namespace bench
