/// \file
/// Times the exported functions: whole pictures beside memcpy and fill of the same bytes in the same run, everything
/// else by what it draws.
///
/// usage: q_Mur_bench [--check] [--set sse2|v3|v4] [REGEX] [--benchmark_...]
///        q_Mur_bench [--set sse2|v3|v4] --info
///        q_Mur_bench [--set sse2|v3|v4] --count < NAMES
///
/// With --check the rows are checked and not timed. With --count each benchmark named in a line of the input runs once,
/// for counts.py. Without --set the library runs on the instruction set that it
/// chooses itself; --info says on which, and on what machine.
#include "rows.h"
#include "support/chosen_set.h"
#include "table.h"

#include <q_Mur.h>

#include <cstdio>
#include <fstream>
#include <iostream>
#include <set>
#include <string>
#include <vector>

namespace {

std::string processorName() {
    std::ifstream info("/proc/cpuinfo");
    for (std::string line; std::getline(info, line);) {
        if (line.starts_with("model name"))
            return line.substr(line.find(':') + 2);
    }
    return "unknown";
}

std::string cacheSizes() {
    std::string text;
    for (const benchmark::CPUInfo::CacheInfo &cache : benchmark::CPUInfo::Get().caches) {
        if (cache.type != "Instruction")
            text += ", L" + std::to_string(cache.level) + " " + std::to_string(cache.size / 1024) + " KiB";
    }
    return text;
}

std::string machine() {
    return processorName() + ", " + std::to_string(benchmark::CPUInfo::Get().num_cpus) + " processors" + cacheSizes();
}

void describe(const std::string &key, const std::string &value) {
    benchmark::AddCustomContext(key, value);
    std::printf("%-10s %s\n", key.c_str(), value.c_str());
}

/// Runs each benchmark that the input names, and says which there are not.
bool countNamed() {
    std::set<std::string> names;
    for (std::string name; std::getline(std::cin, name);)
        names.insert(name);
    const std::set<std::string> lacking = bench::countRows(names);
    for (const std::string &name : lacking)
        std::fprintf(stderr, "there is no benchmark '%s'\n", name.c_str());
    return lacking.empty();
}

} // namespace

int main(int argc, char **argv) {
    std::vector<std::string> options = {argv[0], "--benchmark_repetitions=7", "--benchmark_min_time=0.02",
                                        "--benchmark_enable_random_interleaving=true"};
    bool checkOnly = false;
    std::string wanted;
    bool infoOnly = false;
    bool countOnly = false;
    Init_qMur_GlobalData(nullptr, nullptr);
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--check") {
            checkOnly = true;
            options.insert(options.end(), {"--benchmark_repetitions=1", "--benchmark_min_time=0"});
            continue;
        }
        if (argument == "--set") {
            if (const std::string reason = test::runOnSet(i + 1 < argc ? argv[++i] : ""); !reason.empty()) {
                std::fprintf(stderr, "%s\n", reason.c_str());
                return 2;
            }
            continue;
        }
        if (argument == "--info") {
            infoOnly = true;
            continue;
        }
        if (argument == "--count") {
            countOnly = true;
            continue;
        }
        if (argument.starts_with("-"))
            options.push_back(argument);
        else
            wanted += "|" + argument;
    }
    if (countOnly)
        return countNamed() ? 0 : 1;
    if (!wanted.empty()) // what rows are compared with is always along
        options.push_back("--benchmark_filter=^(memcpy|fill)/" + wanted);
    std::vector<char *> arguments;
    for (std::string &option : options)
        arguments.push_back(option.data());
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 2;

    describe("machine", machine());
    describe("set", test::setInUse());
    describe("compiler", Q_MUR_BENCH_COMPILER);
    describe("flags", Q_MUR_BENCH_FLAGS);
    std::fflush(stdout);
    if (infoOnly)
        return 0;

    bench::addBaselines();
    bench::addRows();
    bench::Table table(checkOnly);
    benchmark::RunSpecifiedBenchmarks(&table);
    benchmark::Shutdown();
    return table.allRight() ? 0 : 1;
}
