#include "proofs.h"

#include <algorithm>
#include <vector>

namespace proofs {
namespace {

constexpr int side = 4;

bool isPlace(const Argument &argument) {
    switch (argument.kind) {
    case Kind::rectangle:
    case Kind::clip:
    case Kind::point:
    case Kind::position:
    case Kind::extent:
    case Kind::radius:
        return true;
    default:
        return false;
    }
}

std::string_view reason(const Row &row) {
    if (!row.functions.twin)
        return "no twin";
    for (const Argument &argument : row.arguments)
        if (isPlace(argument))
            return "";
    return "no places";
}

/// What a place may be over a surface of 4 x 4: all rectangles on it, the empty ones and those inverted by one
/// included, and all numbers from before its beginning to behind its end.
std::vector<Value> places(const Argument &argument) {
    std::vector<Value> all;
    constexpr int low = -2;
    constexpr int high = side + 2;
    switch (argument.kind) {
    case Kind::rectangle:
    case Kind::clip:
        for (int left = 0; left <= side; ++left)
            for (int right = left - 1; right <= side; ++right)
                for (int top = 0; top <= side; ++top)
                    for (int bottom = top - 1; bottom <= side; ++bottom)
                        all.emplace_back(tagRECT{left, top, right, bottom});
        break;
    case Kind::point:
        for (int y = low; y <= high; ++y)
            for (int x = low; x <= high; ++x)
                all.emplace_back(tagPOINT{x, y});
        break;
    default:
        for (int number = low; number <= high; ++number)
            all.emplace_back(number);
    }
    return all;
}

/// The pitch exceeds the width by as much as before, so that surfaces which must share a pitch still do.
Plane smallSurface(const Plane &drawn, Random &random) {
    const Plane plane = Plane::surface(side, side, 0, std::max(drawn.extraPitch(), 0));
    return plane.fill(plane.rect(), [&](int, int) { return random.pixel(); }).cutTo(plane.rect(), Fence::behind);
}

/// Surfaces of 4 x 4 that end where memory ends, with every combination of places and sizes, or 20,000 of them where
/// there are more: wherever the call keeps to the contract, it gives what the twin gives.
/// \return how many calls have kept to the contract
int tryPlaces(const Row &row, std::uint64_t seed) {
    constexpr double most = 20000;
    std::vector<std::size_t> indices;
    std::vector<std::vector<Value>> choices;
    double combinations = 1;
    for (std::size_t i = 0; i < row.arguments.size(); ++i)
        if (isPlace(row.arguments[i])) {
            indices.push_back(i);
            choices.push_back(places(row.arguments[i]));
            combinations *= static_cast<double>(choices.back().size());
        }
    Random random(seed);
    Call base = catalogue::randomCall(row, random);
    for (std::size_t i = 0; i < base.size(); ++i) {
        if (isSurface(row.arguments[i].kind) && base[i].is<Plane>() && !base[i].plane().isNull())
            base[i] = smallSurface(base[i].plane(), random);
    }
    base.settle();
    std::vector<std::size_t> chosen(indices.size(), 0);
    const bool all = combinations <= most;
    int tried = 0;
    for (double n = 0; n < (all ? combinations : most); ++n) {
        Call call = base;
        for (std::size_t k = 0; k < indices.size(); ++k) {
            if (!all)
                chosen[k] = static_cast<std::size_t>(random.between(0, static_cast<int>(choices[k].size()) - 1));
            call[indices[k]] = choices[k][chosen[k]];
        }
        for (std::size_t k = 0; all && k < indices.size() && ++chosen[k] == choices[k].size(); ++k)
            chosen[k] = 0;
        if (!catalogue::keepsToContract(call))
            continue;
        ++tried;
        if (!agree(call, "over 4 x 4 pixels"))
            break;
    }
    return tried;
}

/// Where limits that stand in a private block leave all of the places out, other ones are drawn.
void prove(const Row &row) {
    int tried = 0;
    for (std::uint64_t seed = 1; tried == 0 && seed <= 20; ++seed)
        tried = tryPlaces(row, seed);
    EXPECT_GT(tried, 0) << "no call kept to the contract";
}

} // namespace

const Proof everyPlaceAndSize = {"every_place_and_size_over_a_small_surface", reason, prove};

} // namespace proofs
