/// \file
/// q_Mur: a software graphics library that draws into plain buffers of 32-bit pixels.
///
/// Include this header alone. It pulls in one header for each subsystem, in which every function stands with what it
/// draws, the meaning and unit of each argument, what it clips and what it trusts the caller with.
///
/// A host calls Init_qMur_GlobalData() once, before any function that reads the tables #iSin, #iCos and #iSqrt. There
/// is no other set-up, no error channel and no state beside the tables, which vector instructions are used, the counter
/// of GaussRand(), what SetSpriteDir() and SetSpriteInstance() have stored, and the blocks of the host's _TRANSFERDATA.
/// Calls on separate surfaces may run at the same time.
#ifndef Q_MUR_H
#define Q_MUR_H

#include "q_Mur/blit.h"
#include "q_Mur/draw.h"
#include "q_Mur/filter.h"
#include "q_Mur/frame.h"
#include "q_Mur/math3d.h"
#include "q_Mur/pipeline.h"
#include "q_Mur/region.h"
#include "q_Mur/sprite.h"
#include "q_Mur/textured.h"
#include "q_Mur/types.h"
#include "q_Mur/warp.h"

#endif
