#include "worker.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>

// The driver's words, one a line, and what is answered:
//
//   jobs              workload, unit, count, tolerance, functions and note of each job; then an empty line
//   picture NAME FILE prepares the workload, does it once and writes its pixels
//   compare NAME FILE does the same and answers how far its channels are from those in the file: mean, 99th percentile
//   prepare NAME      prepares it to be timed
//   time SECONDS      does it for about as long, twice, and answers how many nanoseconds it took the second time

namespace peers {
namespace {

class Worker {
public:
    explicit Worker(Peer described) : self(std::move(described)) {}

    void answer(const std::string &line) {
        std::istringstream words(line);
        std::string verb, name, file;
        std::getline(words, verb, '\t');
        std::getline(words, name, '\t');
        std::getline(words, file, '\t');
        if (verb == "jobs") {
            listJobs();
        } else if (verb == "time") {
            const double seconds = std::stod(name);
            time(seconds); // from rest a processor takes milliseconds to its full speed
            std::cout << time(seconds) << '\n';
        } else {
            prepare(name);
            run();
            if (verb == "picture")
                write(file);
            else if (verb == "compare")
                compare(file);
            std::cout << '\n';
        }
        std::cout.flush();
    }

private:
    const Job *jobFor(const Workload &workload) const {
        const auto found =
            std::find_if(self.jobs.begin(), self.jobs.end(), [&](const Job &job) { return job.kind == workload.kind; });
        return found == self.jobs.end() ? nullptr : &*found;
    }

    void listJobs() const {
        for (const Workload &workload : workloads())
            if (const Job *job = jobFor(workload))
                std::cout << workload.name() << '\t' << workload.unit << '\t' << workload.count << '\t'
                          << workload.tolerance << '\t' << job->by << '\t' << job->note << '\n';
        std::cout << '\n';
    }

    void prepare(const std::string &name) {
        run = {};
        const auto workload = std::find_if(workloads().begin(), workloads().end(),
                                           [&](const Workload &one) { return one.name() == name; });
        stage = setStage(*workload);
        run = jobFor(*workload)->prepare(stage);
        timesAtOnce = 1;
    }

    void write(const std::string &file) const {
        std::ofstream(file, std::ios::binary)
            .write(reinterpret_cast<const char *>(stage.dst.bytes()),
                   static_cast<std::streamsize>(stage.dst.size() * 4));
    }

    void compare(const std::string &file) const {
        std::vector<std::uint8_t> other(stage.dst.size() * 4);
        std::ifstream(file, std::ios::binary)
            .read(reinterpret_cast<char *>(other.data()), static_cast<std::streamsize>(other.size()));
        std::array<std::size_t, 256> counts = {};
        double sum = 0;
        for (std::size_t i = 0; i < other.size(); ++i) {
            if (i % 4 == 3) // the top byte is no colour
                continue;
            const int difference = std::abs(stage.dst.bytes()[i] - other[i]);
            ++counts[static_cast<std::size_t>(difference)];
            sum += difference;
        }
        const double channels = static_cast<double>(stage.dst.size()) * 3;
        std::size_t percentile = 0;
        for (double below = static_cast<double>(counts[0]); below < 0.99 * channels;)
            below += static_cast<double>(counts[++percentile]);
        std::cout << sum / channels << '\t' << percentile;
    }

    /// What all threads of this process have taken on processors, and no other one.
    static double processorSeconds() {
        timespec now;
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
        return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
    }

    double time(double seconds) {
        long times = 0;
        const double begun = processorSeconds();
        for (;;) {
            for (long i = 0; i < timesAtOnce; ++i)
                run();
            times += timesAtOnce;
            const double taken = processorSeconds() - begun;
            if (taken >= seconds)
                return taken / static_cast<double>(times) * 1e9;
            if (taken < seconds / 100)
                timesAtOnce *= 2;
        }
    }

    Peer self;
    Stage stage = {};
    Run run;
    long timesAtOnce = 1;
};

} // namespace
} // namespace peers

int main(int argc, char **argv) {
    peers::Peer self = peers::peer(argc > 1 ? argv[1] : "");
    std::cout << self.name << std::endl;
    peers::Worker worker(std::move(self));
    for (std::string line; std::getline(std::cin, line);)
        worker.answer(line);
}
