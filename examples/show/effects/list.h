/// \file
/// All effects.
#ifndef QMUR_SHOW_EFFECTS_LIST_H
#define QMUR_SHOW_EFFECTS_LIST_H

#include "../effect.h"

#include <string_view>
#include <vector>

namespace show {

/// By their kind and name.
const std::vector<const EffectInfo *> &allEffects();

/// Null if there is no effect of that name.
const EffectInfo *findEffect(std::string_view name);

/// What --list calls a kind of effect.
const char *nameOf(Effect::Kind kind);

} // namespace show

#endif
