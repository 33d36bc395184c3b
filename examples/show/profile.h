/// \file
/// Where a show's time goes: by frame, by shot and by function of the library.
#ifndef QMUR_SHOW_PROFILE_H
#define QMUR_SHOW_PROFILE_H

#include "show.h"

#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace show {

/// Any thread may add to it.
class Profile {
public:
    void add(int frame, const std::string &effect, const Drawing &drawn);

    /// Tables; `threads` is how many draw.
    std::string tables(int threads) const;

private:
    /// What is known of several frames.
    struct Sum {
        int frames = 0;
        double seconds = 0;
        double slowest = 0;
        int slowestFrame = 0;
        int firstFrame = 0;
        int lastFrame = 0;
        std::map<std::string, CallSum> calls; ///< by the function's name

        void add(int frame, const Drawing &drawn);
    };
    /// A shot's photograph alone, or the way on to the next.
    struct Part {
        int shot;
        bool leadsOn;
        std::string effect;

        auto operator<=>(const Part &) const = default;
    };

    std::string frameTable() const;
    std::string partTable(int threads) const;
    std::string functionTable() const;

    mutable std::mutex mutex;
    std::vector<double> frameSeconds;
    Sum all;
    std::map<Part, Sum> parts;
};

} // namespace show

#endif
