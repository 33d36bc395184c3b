/// \file
/// Frames per second, which may be no whole number.
#ifndef QMUR_SHOW_FRAME_RATE_H
#define QMUR_SHOW_FRAME_RATE_H

#include <string>

namespace show {

struct FrameRate {
    int numerator = 30;
    int denominator = 1;

    double perSecond() const { return static_cast<double>(numerator) / denominator; }
    double secondsOf(double frames) const { return frames * denominator / numerator; }
    std::string text() const {
        const std::string whole = std::to_string(numerator);
        return denominator == 1 ? whole : whole + '/' + std::to_string(denominator);
    }
};

} // namespace show

#endif
