/// \file
/// The tree that twinkles, and the snowman beside it who sings.
#ifndef QMUR_SHOW_EFFECTS_WINTER_TREE_H
#define QMUR_SHOW_EFFECTS_WINTER_TREE_H

#include "yard.h"

#include "../../effect.h"

#include <vector>

namespace show::winter {

class Tree {
public:
    void prepare(const Yard &yard);

    void draw(const Surface &scene, double seconds) const;

    /// Notes rise from the snowman's mouth.
    void sing(Stage &stage, const Surface &scene, const Shot &shot, double seconds) const;

private:
    static constexpr int noteTilts = 15;

    Yard yard;
    Canvas sprite;
    int left = 0;
    int top = 0;
    std::vector<Point> lamps;
    Point tip = {};
    std::vector<Canvas> notes; ///< one for each tilt
};

} // namespace show::winter

#endif
