// Where there is no library for windows.

#include "player.h"

#include "../failure.h"

namespace show {

class Player::Window {};

Player::Player(int frameWidth, int frameHeight) : width(frameWidth), height(frameHeight) {
    throw Failure("--play needs SDL2, which was not found when this program was built (package: libsdl2-dev)");
}
Player::~Player() = default;

void Player::play(const Show &, FrameRange, FrameRate, int, const Notice &) {}

} // namespace show
