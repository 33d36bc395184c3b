#include "effect.h"

namespace show {

void Effect::write(const std::string &, const std::string &) {}

void Effect::prepare(int, int) {}

void drawShot(Stage &stage, const Surface &out, const Shot &shot) {
    shot.scene->render(stage, out, {shot, shot, shot.progress});
}

} // namespace show
