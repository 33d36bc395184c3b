#include "player.h"

#include "../failure.h"
#include "../image_file.h"
#include "../interruption.h"
#include "../messages.h"
#include "../painting.h"
#include "../picture.h"
#include "../text.h"
#include "../unfinished_file.h"
#include "frames_ahead.h"

#define SDL_MAIN_HANDLED
#include <SDL2/SDL.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <deque>
#include <future>
#include <new>

namespace show {

namespace {

constexpr double secondsOfAStep = 5;
constexpr double secondsBetweenGlances = 0.01; // at the keys; who waits for them by SDL may end in an error of X's
constexpr double secondsBetweenTitles = 0.5;

double secondsNow() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

[[noreturn]] void fail(const char *what) {
    throw Failure(std::string(what) + ": " + printable(SDL_GetError()));
}

std::string clockText(double seconds) {
    const int whole = static_cast<int>(seconds);
    std::array<char, 32> text;
    std::snprintf(text.data(), text.size(), "%d:%02d", whole / 60, whole % 60);
    return text.data();
}

/// Writes the frame into a file of its own in the current directory.
void saveFrame(const DrawnFrame &frame) {
    const std::vector<unsigned char> bytes = encodePng(frame.picture);
    std::array<char, 32> name;
    std::snprintf(name.data(), name.size(), "qmur-show-%06d", frame.number);
    for (int copies = 1;; ++copies) {
        const auto path = pathOf(name.data() + (copies == 1 ? std::string() : '-' + std::to_string(copies)) + ".png");
        if (std::filesystem::exists(std::filesystem::symlink_status(path)))
            continue;
        UnfinishedFile file(path, path);
        file.write(bytes);
        if (!file.finishUnlessThere())
            continue;
        say("wrote " + quoted(path));
        return;
    }
}

/// Saves frames while others are shown.
class Album {
public:
    void save(const DrawnFrame &frame) {
        std::erase_if(savings, [](const auto &one) {
            return one.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
        });
        try {
            auto kept = std::make_shared<DrawnFrame>(
                DrawnFrame{frame.number, Canvas(frame.picture.width(), frame.picture.height())});
            copy(kept->picture, frame.picture);
            const SignalsBlocked blocked;
            savings.push_back(std::async(std::launch::async, [kept] {
                try {
                    saveFrame(*kept);
                } catch (const std::exception &error) {
                    say(error.what());
                }
            }));
        } catch (const std::exception &error) {
            say(error.what());
        }
    }

private:
    std::vector<std::future<void>> savings;
};

} // namespace

class Player::Window {
public:
    Window(int width, int height) {
        SDL_SetMainReady();
        SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
        SDL_SetHint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
        if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0)
            fail("there is no screen for --play");
        if (SDL_GetCurrentVideoDriver() == std::string("x11")) // a detour by textures costs more than it brings
            SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
        SDL_Rect room = {0, 0, width, height};
        SDL_GetDisplayUsableBounds(0, &room);
        const double share = std::min({1.0, 1.0 * room.w / width, 1.0 * room.h / height});
        window = SDL_CreateWindow("qmur-show", SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED,
                                  std::max(static_cast<int>(width * share), 1),
                                  std::max(static_cast<int>(height * share), 1),
                                  SDL_WINDOW_HIDDEN | SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI);
        if (!window) {
            SDL_QuitSubSystem(SDL_INIT_VIDEO);
            fail("cannot open a window");
        }
    }

    ~Window() {
        SDL_DestroyWindow(window);
        SDL_Quit();
    }

    Window(const Window &) = delete;
    Window &operator=(const Window &) = delete;

    void show() { SDL_ShowWindow(window); }
    void setTitle(const std::string &title) { SDL_SetWindowTitle(window, title.c_str()); }

    void turnFullScreen() {
        isFullScreen = !isFullScreen;
        SDL_SetWindowFullscreen(window, isFullScreen ? SDL_WINDOW_FULLSCREEN_DESKTOP : 0);
        SDL_ShowCursor(isFullScreen ? SDL_DISABLE : SDL_ENABLE);
    }

    /// Shows the frame as large as the window has room for it, in its own proportions.
    void present(const Surface &frame) {
        SDL_Surface *const screen = SDL_GetWindowSurface(window);
        if (!screen)
            fail("cannot draw into the window");
        const SDL_PixelFormat &format = *screen->format;
        const bool isOurs = format.BytesPerPixel == sizeof(q_ulong) && format.Rmask == 0xFF0000 &&
                            format.Gmask == 0xFF00 && format.Bmask == 0xFF;
        if (isOurs) {
            draw({static_cast<q_ulong *>(screen->pixels), screen->w, screen->h,
                  screen->pitch / static_cast<int>(sizeof(q_ulong))},
                 frame);
        } else {
            const Canvas picture(screen->w, screen->h);
            const Surface pixels = picture;
            draw(pixels, frame);
            if (SDL_ConvertPixels(screen->w, screen->h, SDL_PIXELFORMAT_RGB888, pixels.pixels,
                                  pixels.pitch * static_cast<int>(sizeof(q_ulong)), format.format, screen->pixels,
                                  screen->pitch) != 0)
                fail("cannot draw into the window");
        }
        SDL_UpdateWindowSurface(window);
    }

private:
    static void draw(const Surface &out, const Surface &frame) {
        if (out.width == frame.width && out.height == frame.height) {
            copy(out, frame);
            return;
        }
        const double share = std::min(1.0 * out.width / frame.width, 1.0 * out.height / frame.height);
        const int width = std::clamp(static_cast<int>(std::lround(frame.width * share)), 1, out.width);
        const int height = std::clamp(static_cast<int>(std::lround(frame.height * share)), 1, out.height);
        const int left = (out.width - width) / 2;
        const int top = (out.height - height) / 2;
        fill(out, {0, 0, out.width, top}, 0);
        fill(out, {0, top + height, out.width, out.height}, 0);
        fill(out, {0, top, left, top + height}, 0);
        fill(out, {left + width, top, out.width, top + height}, 0);
        stretch(out, {left, top, left + width, top + height}, frame);
    }

    static void stretch(const Surface &out, tagRECT area, const Surface &frame) {
        constexpr int largestSource = 4095; // that iBltBilinear32() knows
        if (std::max(frame.width, frame.height) > largestSource || frame.width >= 2 * (area.right - area.left)) {
            const Canvas half = halved(frame);
            extendEdges(half);
            stretch(out, area, half);
            return;
        }
        tagRECT all = frame.rect();
        iBltBilinear32(out.pixels, frame.pixels, &area, &all, out.unsignedPitch(), frame.unsignedPitch());
    }

    SDL_Window *window = nullptr;
    bool isFullScreen = false;
};

/// One playing of a show.
class Player::Playing {
public:
    Playing(const Show &played, int width, int height, FrameRange frameRange, FrameRate frameRate, int threads,
            const Notice &notice, Window &shownIn)
        : show(played), range(frameRange), rate(frameRate), window(shownIn),
          frames(show, width, height, range, rate, threads, notice) {}

    void run() {
        window.show();
        while (goesOn && !frames.isOver()) {
            throwIfInterrupted();
            frames.waitForNext(secondsBetweenGlances);
            showFrame();
            for (SDL_Event event; SDL_PollEvent(&event) != 0;)
                handle(event);
        }
        say("showed " + std::to_string(count) + (count == 1 ? " frame" : " frames") + " and dropped " +
            (frames.framesDropped() == 0 ? "none" : std::to_string(frames.framesDropped())));
    }

private:
    int here() const { return shown.isThere() ? shown.number : range.first; }

    void moveBySeconds(double seconds) {
        frames.goTo(here() + static_cast<int>(std::lround(seconds * rate.perSecond())));
    }

    /// Back is first to where this photograph began, as people expect it.
    void moveByShots(int step) {
        const int shot = show.shotOf(here());
        const bool stoodForAWhile = here() - show.firstFrameOf(shot) > rate.perSecond();
        const int wanted = step < 0 && stoodForAWhile ? shot : shot + step;
        if (wanted < show.shotCount())
            frames.goTo(show.firstFrameOf(std::max(wanted, 0)));
    }

    void press(SDL_Keycode key) {
        switch (key) {
        case SDLK_LEFT:
            return moveBySeconds(-secondsOfAStep);
        case SDLK_RIGHT:
            return moveBySeconds(secondsOfAStep);
        case SDLK_UP:
            return moveByShots(-1);
        case SDLK_DOWN:
            return moveByShots(1);
        case SDLK_SPACE:
            titleTime = 0;
            return frames.pause(!frames.isPaused());
        case SDLK_f:
            return window.turnFullScreen();
        case SDLK_s:
            if (shown.isThere())
                album.save(shown);
            return;
        case SDLK_q:
        case SDLK_ESCAPE:
            goesOn = false;
            return;
        default:
            return;
        }
    }

    void handle(const SDL_Event &event) {
        if (event.type == SDL_QUIT)
            goesOn = false;
        else if (event.type == SDL_KEYDOWN &&
                 (event.key.repeat == 0 || event.key.keysym.sym == SDLK_LEFT || event.key.keysym.sym == SDLK_RIGHT))
            press(event.key.keysym.sym);
        else if (event.type == SDL_WINDOWEVENT)
            isExposed = true;
    }

    void showFrame() {
        const double now = secondsNow();
        if (frames.takeNext(shown)) {
            ++count;
            times.push_back(now);
            isExposed = true;
        }
        if (isExposed && shown.isThere()) {
            window.present(shown.picture);
            isExposed = false;
        }
        while (!times.empty() && times.front() <= now - 1)
            times.pop_front();
        if (now - titleTime >= secondsBetweenTitles) {
            window.setTitle(title());
            titleTime = now;
        }
    }

    std::string title() const {
        const double span = times.empty() ? 0 : times.back() - times.front();
        std::array<char, 64> speed;
        std::snprintf(speed.data(), speed.size(), "%.1f frames a second",
                      span > 0 ? static_cast<double>(times.size() - 1) / span : 0.0);
        return "qmur-show " + clockText(rate.secondsOf(here())) + " of " +
               clockText(rate.secondsOf(show.frameCount())) + ", " + (frames.isPaused() ? "paused" : speed.data());
    }

    const Show &show;
    const FrameRange range;
    const FrameRate rate;
    Window &window;
    Album album;
    DrawnFrame shown;
    std::deque<double> times; ///< at which frames were shown within the last second
    int count = 0;
    double titleTime = 0;
    bool goesOn = true;
    bool isExposed = false;
    FramesAhead frames;
};

Player::Player(int frameWidth, int frameHeight)
    : width(frameWidth), height(frameHeight), window(std::make_unique<Window>(width, height)) {}
Player::~Player() = default;

void Player::play(const Show &show, FrameRange range, FrameRate rate, int threads, const Notice &notice) {
    Playing(show, width, height, range, rate, threads, notice, *window).run();
}

} // namespace show
