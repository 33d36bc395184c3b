/// \file
/// How long effects take to draw.
#ifndef QMUR_SHOW_TIMINGS_H
#define QMUR_SHOW_TIMINGS_H

#include <map>
#include <mutex>
#include <string>

namespace show {

/// The time that the calling thread has been busy, where the system tells; elsewhere the time of day.
double threadSeconds();

/// Any thread may add to it.
class Timings {
public:
    void add(const std::string &effect, double seconds);

    /// A line for each effect, the slowest first.
    std::string table() const;

private:
    struct Sum {
        int frames = 0;
        double seconds = 0;
        double slowest = 0;
    };

    static std::string line(const std::string &name, const Sum &sum);

    mutable std::mutex mutex;
    std::map<std::string, Sum> sums;
};

} // namespace show

#endif
