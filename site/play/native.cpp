/// \file
/// Draws natively what pages draw: reads states from the standard input, an array of objects, and prints the checksum
/// of each picture.
///
/// A state: {"row": "iFillRect", "width": 400, "height": 225, "time": 0.5, "turn": [0, 0], "numbers": [[3, 0, 17]],
/// "pictures": [{"argument": 1, "width": 2, "height": 1, "pixels": [4278190080, 0]}]}, a number being an argument, a
/// part of it and its value.
#include "play.h"
#include "site/draw/figures.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <exception>
#include <iostream>
#include <stdexcept>

namespace gallery {
namespace {

using Json = nlohmann::ordered_json;

const catalogue::Row &rowNamed(const std::string &name) {
    const catalogue::Row *found = nullptr;
    catalogue::forEachRow([&](const catalogue::Row &row) {
        if (row.fullName() == name)
            found = &row;
    });
    if (!found)
        throw std::runtime_error("there is no row " + name);
    return *found;
}

/// Null where a call would break its contract.
Json drawn(const Json &state) {
    Play play(rowNamed(state.at("row").get<std::string>()));
    play.setStage({state.at("width").get<int>(), state.at("height").get<int>(), state.at("time").get<double>()});
    for (const Json &number : state.at("numbers"))
        play.set(number.at(0).get<std::size_t>(), number.at(1).get<int>(), number.at(2).get<double>());
    for (const Json &picture : state.at("pictures"))
        play.picture(picture.at("argument").get<std::size_t>(), picture.at("width").get<int>(),
                     picture.at("height").get<int>()) = picture.at("pixels").get<std::vector<q_ulong>>();
    play.turn(state.at("turn").at(0).get<double>(), state.at("turn").at(1).get<double>());
    return play.draw() ? Json(std::to_string(play.checksum())) : Json(nullptr);
}

} // namespace
} // namespace gallery

int main() {
    try {
        Init_qMur_GlobalData(nullptr, nullptr);
        gallery::writeInstead = [](int, int, const std::string &, q_ulong, int) {}; // which pages do themselves
        gallery::Json sums = gallery::Json::array();
        for (const gallery::Json &state : gallery::Json::parse(std::cin))
            sums.push_back(gallery::drawn(state));
        std::cout << sums.dump() << "\n" << std::flush;
        return std::cout ? 0 : 1;
    } catch (const std::exception &failure) {
        std::fprintf(stderr, "q_Mur_play: %s\n", failure.what());
        return 1;
    }
}
