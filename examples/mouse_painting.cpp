// An SDL2 window in which the mouse paints with light. The left button paints, the right one blurs, C clears, S writes
// mouse-painting.bmp; Q, Escape or the window's own button ends.
#include <SDL.h>
#include <q_Mur.h>
#include <vector>

namespace {

constexpr int width = 640, height = 400;
constexpr q_ulong night = 0x0C1020;
std::vector<q_ulong> canvas(width *height, night);
tagRECT all = {0, 0, width, height};

// A move may be long, so what lies between is painted as well.
void paint(const SDL_MouseMotionEvent &move) {
    static unsigned step = 0;
    constexpr q_ulong colours[] = {0xFF4020, 0xFFA020, 0x60FF40, 0x30A0FF, 0xB050FF};
    const q_ulong colour = colours[step++ / 24 % 5];
    iLine_AntiAliasing_Add(canvas.data(), &all, width, move.x - move.xrel, move.y - move.yrel, move.x, move.y, colour,
                           3);
    Draw_Light_Safe(canvas.data(), width, &all, move.x, move.y, 24, colour, 16);
    if (step % 8 == 0)
        Draw_Star_Type1_Safe(canvas.data(), width, &all, move.x, move.y, 36, 0xFFFFFF, 60);
}

void blur(int x, int y) {
    tagRECT spot = {SDL_max(x - 40, 0), SDL_max(y - 40, 0), SDL_min(x + 40, width), SDL_min(y + 40, height)};
    Blur_Rect(canvas.data(), &spot, width, 4);
}

} // namespace

int main(int, char **) {
    if (SDL_Init(SDL_INIT_VIDEO) != 0) {
        SDL_Log("%s", SDL_GetError());
        return 1;
    }
    SDL_Window *window = SDL_CreateWindow("q_Mur", SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, width, height, 0);
    // The library's pixels as SDL sees them. The library counts a pitch in pixels, SDL in bytes.
    SDL_Surface *view =
        SDL_CreateRGBSurfaceFrom(canvas.data(), width, height, 32, width * 4, 0xFF0000, 0xFF00, 0xFF, 0);
    bool isOpen = window && view;
    if (!isOpen)
        SDL_Log("%s", SDL_GetError());
    const int status = isOpen ? 0 : 1;

    Init_qMur_GlobalData(nullptr, nullptr);
    SDL_Event event;
    while (isOpen && SDL_WaitEvent(&event)) {
        do {
            const SDL_Keycode key = event.type == SDL_KEYDOWN ? event.key.keysym.sym : SDLK_UNKNOWN;
            if (event.type == SDL_QUIT || key == SDLK_q || key == SDLK_ESCAPE)
                isOpen = false;
            else if (key == SDLK_c)
                iFillRect(canvas.data(), &all, width, night);
            else if (key == SDLK_s)
                SDL_SaveBMP(view, "mouse-painting.bmp");
            else if (event.type == SDL_MOUSEMOTION && event.motion.state & SDL_BUTTON_LMASK)
                paint(event.motion);
            else if (event.type == SDL_MOUSEMOTION && event.motion.state & SDL_BUTTON_RMASK)
                blur(event.motion.x, event.motion.y);
        } while (SDL_PollEvent(&event));
        // Whatever the window's format is, SDL converts to it.
        SDL_BlitSurface(view, nullptr, SDL_GetWindowSurface(window), nullptr);
        SDL_UpdateWindowSurface(window);
    }
    SDL_FreeSurface(view);
    SDL_DestroyWindow(window);
    SDL_Quit();
    return status;
}
