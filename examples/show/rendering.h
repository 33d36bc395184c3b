/// \file
/// Draws the frames of a show with several threads and hands them to the outputs in order.
#ifndef QMUR_SHOW_RENDERING_H
#define QMUR_SHOW_RENDERING_H

#include "output.h"
#include "show.h"
#include "timings.h"

namespace show {

/// Renders what the outputs want of the range, and finishes them. For timings, unless these are null, every frame of
/// the range is drawn. Throws Failure or Interrupted.
void renderShow(const Show &show, int width, int height, FrameRange range,
                const std::vector<std::unique_ptr<Output>> &outputs, int threads, Timings *timings);

} // namespace show

#endif
