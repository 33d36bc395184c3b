#include "base/surface.h"
#include "q_Mur/sprite.h"
#include "tables.h"

namespace {

using namespace qmur;

[[maybe_unused]] HINSTANCE__ *spriteModule;

/// Meant: width and height are the caller's alone. Columns beyond the sprite's read on into its next row, and only the
/// end of its pixels is a bound.
template <int colours, int bytes>
void loadSprite(const Sprite<colours, bytes> &sprite, q_ulong *dst, int width, int height, Distance pitch) {
    if (width <= 0)
        return;
    for (Distance y = 0; y < height; ++y) {
        q_ulong *const row = dst + y * pitch;
        const long long first = static_cast<long long>(y) * sprite.stride;
        const long long left = first < bytes ? bytes - first : 0;
        const Distance inside = static_cast<Distance>(left < width ? left : width);
        const unsigned char *const pixels = sprite.pixels + (bytes - left);
        for (Distance x = 0; x < inside; ++x)
            row[x] = sprite.palette[pixels[x]];
        for (Distance x = inside; x < width; ++x)
            row[x] = 0;
    }
}

} // namespace

void LoadResourceAirplane(q_ulong *dst, int width, int height, int pitch) {
    loadSprite(airplane, dst, width, height, pitch);
}

void LoadResourceChristmasTree(q_ulong *dst, int width, int height, int pitch) {
    loadSprite(christmasTree, dst, width, height, pitch);
}

void LoadResourceFootMark(q_ulong *dst, int width, int height, int pitch) {
    loadSprite(footMark, dst, width, height, pitch);
}

void LoadResourceMusicSymbol(q_ulong *dst, int width, int height, int pitch) {
    loadSprite(musicSymbol, dst, width, height, pitch);
}

void LoadResourceRedFires(q_ulong *dst, int width, int height, int pitch) {
    loadSprite(redFires, dst, width, height, pitch);
}

void SetSpriteInstance(HINSTANCE__ *module) {
    spriteModule = module;
}
