#include "gaussian_kernel.h"

#include "base/wide.h"

namespace qmur::gaussian {

Kernel kernelOf(float sigma) {
    Kernel kernel = {};
    atFullWidth([sigma, &kernel] {
        constexpr float smallestDensity = 0.0001F;
        constexpr float pi = 3.1415927F;
        const Wide square = static_cast<Wide>(sigma) * sigma;
        const auto twiceVariance = static_cast<float>(square + square);
        const auto divisor = static_cast<float>(squareRoot(static_cast<Wide>(twiceVariance) * pi));

        float densities[Kernel::room];
        Wide sum = static_cast<Wide>(1) / divisor;
        for (kernel.radius = 1; kernel.radius < Kernel::room; ++kernel.radius) {
            const int k = kernel.radius;
            densities[k] = static_cast<float>(exponential(-static_cast<Wide>(k * k) / twiceVariance) / divisor);
            sum += 2 * static_cast<Wide>(densities[k]);
            if (densities[k] <= smallestDensity)
                break;
        }
        if (kernel.radius == Kernel::room)
            return;
        // The centre takes up what truncation leaves over.
        kernel.centre = 256;
        for (int k = 1; k <= kernel.radius; ++k) {
            kernel.weights[k] = static_cast<unsigned>(truncateToInt(static_cast<Wide>(densities[k]) * 256 / sum));
            kernel.centre -= 2 * kernel.weights[k];
        }
    });
    return kernel;
}

int reachOf(const Kernel &kernel) {
    int reach = kernel.radius;
    while (reach > 1 && kernel.weights[reach] == 0)
        --reach;
    return reach;
}

} // namespace qmur::gaussian
