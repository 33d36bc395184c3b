#define SDL_MAIN_HANDLED
#include "worker.h"

#include <SDL.h>

#include <memory>

namespace peers {
namespace {

using Image = std::shared_ptr<SDL_Surface>;

Image image(const Surface &surface, Uint32 format) {
    return {
        SDL_CreateRGBSurfaceWithFormatFrom(surface.pixels, surface.width, surface.height, 32, surface.pitch(), format),
        SDL_FreeSurface};
}

Run fill(const Stage &stage) {
    return [dst = image(stage.dst, SDL_PIXELFORMAT_RGB888)] { SDL_FillRect(dst.get(), nullptr, fillColour); };
}

/// Blits a source as `set` tells it to.
template <class Set>
Run blit(const Stage &stage, Uint32 format, Set set) {
    const Image src = image(stage.src, format);
    set(src.get());
    return [src, dst = image(stage.dst, SDL_PIXELFORMAT_RGB888)] {
        SDL_BlitSurface(src.get(), nullptr, dst.get(), nullptr);
    };
}

Run copy(const Stage &stage) {
    return blit(stage, SDL_PIXELFORMAT_RGB888,
                [](SDL_Surface *src) { SDL_SetSurfaceBlendMode(src, SDL_BLENDMODE_NONE); });
}

Run add(const Stage &stage) {
    return blit(stage, SDL_PIXELFORMAT_RGB888,
                [](SDL_Surface *src) { SDL_SetSurfaceBlendMode(src, SDL_BLENDMODE_ADD); });
}

Run blendConstant(const Stage &stage) {
    return blit(stage, SDL_PIXELFORMAT_RGB888, [](SDL_Surface *src) {
        SDL_SetSurfaceBlendMode(src, SDL_BLENDMODE_BLEND);
        SDL_SetSurfaceAlphaMod(src, constantAlpha);
    });
}

Run blend(const Stage &stage) {
    return blit(stage, SDL_PIXELFORMAT_ARGB8888,
                [](SDL_Surface *src) { SDL_SetSurfaceBlendMode(src, SDL_BLENDMODE_BLEND); });
}

/// Without run lengths, which would be encoded before.
Run copyKeyed(const Stage &stage) {
    return blit(stage, SDL_PIXELFORMAT_RGB888, [](SDL_Surface *src) {
        SDL_SetSurfaceBlendMode(src, SDL_BLENDMODE_NONE);
        SDL_SetColorKey(src, SDL_TRUE, keyColour);
    });
}

template <auto &stretch>
Run scale(const Stage &stage) {
    return [dst = image(stage.dst, SDL_PIXELFORMAT_RGB888), src = image(stage.src, SDL_PIXELFORMAT_RGB888)] {
        stretch(src.get(), nullptr, dst.get(), nullptr);
    };
}

} // namespace

Peer peer(const std::string &) {
    SDL_version version;
    SDL_GetVersion(&version);
    return {"SDL2 " + std::to_string(version.major) + "." + std::to_string(version.minor) + "." +
                std::to_string(version.patch),
            {{"fill", "SDL_FillRect", fill},
             {"copy", "SDL_BlitSurface", copy},
             {"add", "SDL_BlitSurface, SDL_BLENDMODE_ADD", add},
             {"constant alpha", "SDL_BlitSurface, SDL_SetSurfaceAlphaMod", blendConstant},
             {"pixel alpha", "SDL_BlitSurface, SDL_BLENDMODE_BLEND", blend},
             {"colour key", "SDL_BlitSurface, SDL_SetColorKey", copyKeyed},
             {"nearest", "SDL_SoftStretch", scale<SDL_SoftStretch>},
             {"bilinear", "SDL_SoftStretchLinear", scale<SDL_SoftStretchLinear>}}};
}

} // namespace peers
