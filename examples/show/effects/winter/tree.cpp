#include "tree.h"

#include "../../angle.h"
#include "../../random.h"

#include <algorithm>
#include <cstdlib>

namespace show::winter {

void Tree::prepare(const Yard &ownYard) {
    yard = ownYard;
    const double unit = yard.unit;
    const Canvas figure = loadFigure(LoadResourceChristmasTree, 512, 384);
    const int treeWidth = lengthOf(480 * unit, 2);
    const int treeHeight = lengthOf(360 * unit, 2);
    sprite = cutOut(tinted(figure, 0.68, 0.74, 0.94), treeWidth, treeHeight);
    left = yard.width - treeWidth - rounded(6 * unit);
    top = rounded(0.968 * yard.height) - treeHeight;

    // Lamps hang where the chains of the tree shine golden, well apart.
    constexpr int mostLamps = 46;
    constexpr int nearest = 19;
    const Surface from = figure.surface();
    std::vector<tagPOINT> golden;
    q_long starTop = from.height;
    q_long starColumn = from.width / 2;
    for (int y = 0; y < from.height; ++y)
        for (int x = 0; x < from.width; ++x) {
            const q_ulong pixel = *from.at(x, y);
            if (pixel != 0 && starTop == from.height) {
                starTop = y;
                starColumn = x;
            }
            if ((pixel >> 16) > 225 && (pixel >> 8 & 0xFF) > 140 && (pixel & 0xFF) < 110 && y > 80 && y < 325 &&
                std::abs(x - starColumn) < 140)
                golden.push_back({x, y});
        }
    const auto placed = [&](tagPOINT at) {
        return Point{left + (at.x + 0.5) * treeWidth / from.width, top + (at.y + 0.5) * treeHeight / from.height};
    };
    tip = placed({starColumn, starTop + 27});
    Random random(6);
    std::vector<tagPOINT> chosen;
    for (int tries = 0; tries < 4000 && !golden.empty() && static_cast<int>(chosen.size()) < mostLamps; ++tries) {
        const tagPOINT at = golden[static_cast<std::size_t>(random.below(static_cast<int>(golden.size())))];
        const bool isApart = std::all_of(chosen.begin(), chosen.end(), [&](tagPOINT other) {
            const q_long dx = other.x - at.x;
            const q_long dy = other.y - at.y;
            return dx * dx + dy * dy > nearest * nearest;
        });
        if (isApart) {
            chosen.push_back(at);
            lamps.push_back(placed(at));
        }
    }

    const Canvas note = loadFigure(LoadResourceMusicSymbol, 128, 128);
    for (int i = 0; i < noteTilts; ++i) {
        const int size = lengthOf(92 * unit, 2);
        notes.push_back(cutOut(turned(note, 0.5 * (2.0 * i / (noteTilts - 1) - 1)), size, size));
    }
}

void Tree::draw(const Surface &scene, double seconds) const {
    const double unit = yard.unit;
    lay(scene, sprite, left, top);
    for (std::size_t i = 0; i < lamps.size(); ++i) {
        const double phase = static_cast<double>(i % 4) / 4;
        const double wave = 0.5 + 0.5 * sineOf(0.36 * seconds + phase);
        drawLamp(scene, lamps[i], 6.2, lampColours[i % lampColours.size()], 0.06 + 0.94 * easeInOut(wave), unit);
    }
    const double pulse = 0.75 + 0.25 * sineOf(0.5 * seconds);
    lightAround(scene, tip, 90 * unit, dimmed(0xFFC860, pulse), 30);
    star(scene, rounded(tip.x), rounded(tip.y), lengthOf(74 * pulse * unit, 4), dimmed(0xFFE8B0, pulse), 60);
}

void Tree::sing(Stage &stage, const Surface &scene, const Shot &shot, double seconds) const {
    const double unit = yard.unit;
    constexpr double life = 3.4;
    constexpr double interval = 0.85;
    const Surface figure = sprite;
    for (int i = -3; i * interval < shot.seconds; ++i) {
        const double t = (seconds - i * interval) / life;
        if (t <= 0 || t >= 1)
            continue;
        Random random(seedOf(shot.seed, 1000 + i));
        const double phase = random.unit();
        const double lean = random.between(-46, 30);
        const double sway = sineOf(phase + 0.34 * seconds);
        const double x = left + 0.175 * figure.width + unit * (lean * t + 20 * t * sway);
        const double y = top + 0.60 * figure.height - unit * (30 + 245 * t);
        const double tilt = 0.5 + 0.42 * sineOf(phase + 0.34 * seconds + 0.25);
        const Surface note = notes[static_cast<std::size_t>(tilt * noteTilts)].surface();
        const double shown = stretch(t, 0, 0.18) * (1 - easeInOut(stretch(t, 0.6, 1)));
        lightAround(scene, {x, y}, 64 * unit, dimmed(0x6040C0, shown), 22);
        layFaded(stage, scene, note, x, y, easeInOut(shown));
    }
}

} // namespace show::winter
