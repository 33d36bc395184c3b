/// \file
/// Doubles in the place of full width, where they can be shown to lead to the same float.
#ifndef Q_MUR_BASE_DOUBLED_H
#define Q_MUR_BASE_DOUBLED_H

#include <cmath>

namespace qmur {

/// A number within some units of the last place of a double from what full width makes of the same formula. Rounding to
/// float never turns an order around: where both ends of a wider range round to one float, that is the float.
class Doubled {
public:
    explicit Doubled(double value) : number(value) {}

    float nearest() const { return static_cast<float>(number); }

    /// 0 where full width rounds to nearest() as well, for a range of 16 units on either side.
    float doubt() const {
        const double range = 0x1p-48 * std::fabs(number);
        return static_cast<float>(number + range) - static_cast<float>(number - range);
    }
    bool isSettled() const { return doubt() == 0; }

private:
    double number;
};

} // namespace qmur

#endif
