// An offline loop: frames are drawn one after the other and handed to ffmpeg, which makes a film of them.
//
//     qmur-film FILM.mp4 [SECONDS]
//
// What a frame shows follows from its number alone, so a film can be made anew, or a part of it, with the same pixels.
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <q_Mur.h>
#include <string>
#include <vector>

#ifdef _WIN32
#define popen _popen
#define pclose _pclose
constexpr char forBytes[] = "wb";
#else
constexpr char forBytes[] = "w";
#endif

namespace {

constexpr int width = 640, height = 360, framesPerSecond = 30, trail = 40;

// Lights on their rounds, each with a tail of what it was before.
void draw(std::vector<q_ulong> &frame, int number) {
    tagRECT all = {0, 0, width, height};
    iFillRect(frame.data(), &all, width, 0x080A18);
    constexpr q_ulong colours[] = {0xFF5030, 0x40C0FF, 0xA0FF50, 0xFFC840, 0xC060FF};
    for (int light = 0; light < 5; ++light)
        for (int age = trail; age >= 0; --age) {
            const double time = 0.03 * (number - age) + 1.3 * light;
            const int x = static_cast<int>(std::lround(width / 2 + 260 * std::sin(time * (1 + 0.13 * light))));
            const int y = static_cast<int>(std::lround(height / 2 + 130 * std::sin(1.7 * time + light)));
            const q_ulong strength = static_cast<q_ulong>((trail - age) * 64 / trail);
            Draw_Light_Safe(frame.data(), width, &all, x, y, 10 + (trail - age) / 2, colours[light],
                            strength / (age ? 4 : 1));
        }
}

} // namespace

int main(int count, char **arguments) {
    const double seconds = count == 3 ? std::atof(arguments[2]) : 4;
    const std::string target = count == 2 || count == 3 ? arguments[1] : "";
    // The shell reads the name in quotes, where few characters mean anything.
    if (target.empty() || target.find_first_of("\"\\$`%") != std::string::npos || !(seconds > 0 && seconds <= 3600)) {
        std::fprintf(stderr, "usage: qmur-film FILM.mp4 [SECONDS], without quotes and the like in the name\n");
        return 2;
    }
    // A pixel of the library is what ffmpeg calls bgr0. A surface without a gap between its rows goes as it is.
    const std::string command = "ffmpeg -loglevel error -y -f rawvideo -pixel_format bgr0 -video_size " +
                                std::to_string(width) + "x" + std::to_string(height) + " -framerate " +
                                std::to_string(framesPerSecond) + " -i pipe:0 -pix_fmt yuv420p \"file:" + target + "\"";
#ifndef _WIN32
    std::signal(SIGPIPE, SIG_IGN); // an encoder that ends early is seen where frames are written
#endif
    std::FILE *encoder = popen(command.c_str(), forBytes);
    if (!encoder) {
        std::perror("ffmpeg");
        return 1;
    }
    Init_qMur_GlobalData(nullptr, nullptr);
    std::vector<q_ulong> frame(width * height);
    bool isWritten = true;
    for (int number = 0; isWritten && number < seconds * framesPerSecond; ++number) {
        draw(frame, number);
        isWritten = std::fwrite(frame.data(), sizeof(q_ulong), frame.size(), encoder) == frame.size();
    }
    // Only the encoder knows whether the film is whole.
    const bool isEncoded = pclose(encoder) == 0;
    return isWritten && isEncoded ? 0 : 1;
}
