#include "list.h"

#include <algorithm>

namespace show {

namespace {

const EffectInfo *latest = nullptr;

} // namespace

void enlist(EffectInfo &info) noexcept {
    info.next = latest;
    latest = &info;
}

const std::vector<const EffectInfo *> &allEffects() {
    static const std::vector<const EffectInfo *> effects = [] {
        std::vector<const EffectInfo *> all;
        for (const EffectInfo *effect = latest; effect; effect = effect->next)
            all.push_back(effect);
        std::sort(all.begin(), all.end(), [](const EffectInfo *a, const EffectInfo *b) {
            return a->kind != b->kind ? a->kind < b->kind : std::string_view(a->name) < b->name;
        });
        return all;
    }();
    return effects;
}

const EffectInfo *findEffect(std::string_view name) {
    for (const EffectInfo *effect : allEffects())
        if (effect->name == name)
            return effect;
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
