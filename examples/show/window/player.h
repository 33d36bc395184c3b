/// \file
/// The show in a window, each frame at its time.
#ifndef QMUR_SHOW_PLAYER_H
#define QMUR_SHOW_PLAYER_H

#include "../output.h"
#include "../rendering.h"

#include <memory>

namespace show {

class Player {
public:
    /// Opens the window, which is not to be seen yet. Throws Failure, also where this build knows no windows.
    Player(int width, int height);
    ~Player();
    Player(const Player &) = delete;
    Player &operator=(const Player &) = delete;

    /// Plays the range to its end, or until the user wants no more. Throws Failure or Interrupted.
    void play(const Show &show, FrameRange range, FrameRate rate, int threads, const Notice &notice);

private:
    class Window;
    class Playing;

    int width;
    int height;
    std::unique_ptr<Window> window;
};

} // namespace show

#endif
