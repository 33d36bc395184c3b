/// \file
/// Built-in sprites and bitmap files.
#ifndef Q_MUR_SPRITE_H
#define Q_MUR_SPRITE_H

#include "types.h"

#endif
