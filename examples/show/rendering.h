/// \file
/// Draws the frames of a show with several threads and hands them to the outputs in order.
#ifndef QMUR_SHOW_RENDERING_H
#define QMUR_SHOW_RENDERING_H

#include "output.h"
#include "show.h"

#include <functional>

namespace show {

/// Is told of each frame that was drawn, by the thread that drew it.
using Notice = std::function<void(int frame, const Drawing &drawn)>;

/// Renders what the outputs want of the range, and finishes them. For a notice, if there is one, every frame of the
/// range is drawn. Throws Failure or Interrupted.
void renderShow(const Show &show, int width, int height, FrameRange range,
                const std::vector<std::unique_ptr<Output>> &outputs, int threads, const Notice &notice);

} // namespace show

#endif
