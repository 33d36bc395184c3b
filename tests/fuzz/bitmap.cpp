// A fuzz target: whatever a file holds, LoadBitmap24 gives what the naive reader gives, and touches no byte that is not
// its own. The first two bytes of an input choose the size asked for, the rest is the file.

#include "sprite/bitmap.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

namespace {

constexpr q_ulong untouched = 0xAA5533CC;
constexpr std::uint32_t largest = 96;

/// One file that is written anew each time, in the directory that the system has for such files.
class ScratchFile {
public:
    ScratchFile() {
        const std::string name = "q_Mur_bitmap_fuzz_" + std::to_string(std::random_device()());
        path = (std::filesystem::temp_directory_path() / name).string();
    }
    ~ScratchFile() { std::remove(path.c_str()); }
    ScratchFile(const ScratchFile &) = delete;
    ScratchFile &operator=(const ScratchFile &) = delete;

    void write(const unsigned char *bytes, std::size_t count) {
        std::FILE *file = std::fopen(path.c_str(), "wb");
        if (!file || std::fwrite(bytes, 1, count, file) != count || std::fclose(file) != 0)
            std::abort();
    }

    std::string path;
};

/// What the header says, if a surface of that size is at hand, or else the input's choice.
int sizeAsked(const test::Bytes &file, std::size_t position, unsigned char choice) {
    if (choice % 8 != 0 && file.size() >= position + 4) {
        std::uint32_t size = 0;
        for (std::size_t i = 4; i-- > 0;)
            size = size << 8 | file[position + i];
        if (size <= largest)
            return static_cast<int>(size);
    }
    return choice % 64 - 4;
}

void demand(bool holds, const char *what) {
    if (holds)
        return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *bytes, std::size_t count) {
    static ScratchFile scratch;
    if (count < 2)
        return 0;
    const test::Bytes file(bytes + 2, bytes + count);
    scratch.write(file.data(), file.size());
    const int width = sizeAsked(file, 18, bytes[0]);
    const int height = sizeAsked(file, 22, bytes[1]);

    const auto expected = test::naivePixels(file, width, height);
    const std::size_t pixels = width > 0 && height > 0 ? static_cast<std::size_t>(width) * height : 0;
    std::vector<q_ulong> surface(pixels, untouched);
    surface.shrink_to_fit(); // so that the byte behind the last pixel is nobody's
    const int result = LoadBitmap24(surface.data(), scratch.path.data(), width, height);
    demand(result == (expected ? 1 : 0), "the answer differs");
    demand(surface == (expected ? *expected : std::vector<q_ulong>(pixels, untouched)), "the pixels differ");
    return 0;
}
