#include "list.h"

namespace show {

#define EFFECT(function) EffectInfo function();
#include "list.inc"
#undef EFFECT

const std::vector<EffectInfo> &allEffects() {
    static const std::vector<EffectInfo> effects = {
#define EFFECT(function) function(),
#include "list.inc"
#undef EFFECT
    };
    return effects;
}

const EffectInfo *findEffect(std::string_view name) {
    for (const EffectInfo &effect : allEffects())
        if (effect.name == name)
            return &effect;
    return nullptr;
}

const char *nameOf(Effect::Kind kind) {
    switch (kind) {
    case Effect::Kind::scene:
        return "scene";
    case Effect::Kind::transition:
        return "transition";
    case Effect::Kind::ending:
        return "ending";
    }
    return "";
}

} // namespace show
