#include "sprite/bitmap.h"
#include "support/cases.h"
#include "support/pictures.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <random>
#include <set>
#include <string>

#if defined(_WIN32)
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

using test::greatestInt;
using namespace test;

constexpr q_ulong untouched = 0xAA5533CC;

std::string temporaryDirectory() {
    for (const char *name : {"TMPDIR", "TEMP"})
        if (const char *const path = std::getenv(name))
            return path;
    return "/tmp";
}

#if defined(_WIN32)
bool makeDirectory(const std::string &path) {
    return CreateDirectoryA(path.c_str(), nullptr) != 0;
}
void removeDirectory(const std::string &path) {
    RemoveDirectoryA(path.c_str());
}
#else
bool makeDirectory(const std::string &path) {
    return mkdir(path.c_str(), 0700) == 0;
}
void removeDirectory(const std::string &path) {
    rmdir(path.c_str());
}
#endif

/// A directory of the test's own, removed at its end with all that has been written into it.
class Directory {
public:
    Directory() {
        std::random_device device;
        for (int tries = 0; tries < 100 && !made; ++tries) {
            path = temporaryDirectory() + "/q_Mur_tests_" + std::to_string(device());
            made = makeDirectory(path);
        }
    }
    ~Directory() {
        for (const std::string &name : names)
            std::remove((prefix() + name).c_str());
        removeDirectory(path);
    }
    Directory(const Directory &) = delete;
    Directory &operator=(const Directory &) = delete;

    bool isMade() const { return made; }

    /// With a separator behind it.
    std::string prefix() const { return path + "/"; }

    void write(const std::string &name, const Bytes &bytes) const {
        std::remove((prefix() + name).c_str()); // a file made anew is faster: one cut short is put on the disk at once
        names.insert(name);
        if (!writeInto(name, 0, bytes, std::ios::out)) {
            std::cerr << "cannot write " << name << std::endl;
            std::abort();
        }
    }

    /// Writes an empty file of any size, in which only what is written later takes room. False where the file system
    /// has no such files.
    bool writeHole(const std::string &name, std::int64_t size) const {
        write(name, {});
        return mayHaveHoles(prefix() + name) && writeInto(name, size - 1, {0});
    }

    /// Writes bytes into a file, wherever they lie.
    bool writeInto(const std::string &name, std::int64_t position, const Bytes &bytes,
                   std::ios::openmode mode = std::ios::in | std::ios::out) const {
        std::fstream file(prefix() + name, mode | std::ios::binary);
        file.seekp(position);
        file.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        file.close();
        return !file.fail();
    }

private:
#if defined(_WIN32)
    /// Windows must be told, and some of its file systems refuse.
    static bool mayHaveHoles(const std::string &filePath) {
        const HANDLE file = CreateFileA(filePath.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE)
            return false;
        DWORD count = 0;
        const BOOL isGranted = DeviceIoControl(file, FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &count, nullptr);
        CloseHandle(file);
        return isGranted != 0;
    }
#else
    static bool mayHaveHoles(const std::string &) {
        return true;
    }
#endif

    std::string path;
    bool made = false;
    mutable std::set<std::string> names;
};

void setDirectory(std::string path) {
    SetSpriteDir(path.data());
}

/// The answer, and the surface if it was answered 1. A surface that a failure has touched is a failure.
struct Loaded {
    int answer;
    Pixels pixels;
};

Loaded load(std::string name, int width, int height) {
    const auto count = static_cast<std::size_t>(std::max(width, 0)) * static_cast<std::size_t>(std::max(height, 0));
    PageEndPixels surface(count + 1); // a write behind it faults
    q_ulong *const first = surface.data() + 1;
    std::fill(first, first + count, untouched);
    const int answer = LoadBitmap24(first, name.data(), width, height);
    Pixels pixels(first, first + count);
    if (answer == 0) {
        EXPECT_EQ(pixels, Pixels(count, untouched)) << "touched by a failure";
        pixels.clear();
    }
    return {answer, pixels};
}

/// What happened with a whole path before any directory was set: taken down before a test runs.
struct WithoutDirectory {
    WithoutDirectory() noexcept {
        const Directory directory;
        hasFile = directory.isMade();
        if (!hasFile)
            return;
        directory.write("a.bmp", Bitmap::ofSize(1, 1, 4).file());
        answer = LoadBitmap24(&pixel, (directory.prefix() + "a.bmp").data(), 1, 1);
    }

    bool hasFile = true;
    int answer = -1;
    q_ulong pixel = untouched;
};

const WithoutDirectory withoutDirectory;

/// Has a directory with a picture of one pixel in it.
class LoadBitmap24Files : public testing::Test {
protected:
    LoadBitmap24Files() {
        directory.write("a.bmp", Bitmap::ofSize(1, 1, 4).file());
        setDirectory(directory.prefix());
    }

    /// Writes a file and loads it at the size that its header states.
    Loaded loadOf(const Bitmap &bitmap) {
        return loadOf(bitmap.file(), static_cast<int>(bitmap.width), static_cast<int>(bitmap.height));
    }

    Loaded loadOf(const Bytes &file, int width, int height) {
        directory.write("picture.bmp", file);
        return load("picture.bmp", width, height);
    }

    /// Whether a file gives the pixels that the naive reader finds in it.
    void expectAsNaive(const Bytes &file) {
        const auto expected = naivePixels(file, 3, 2);
        const Loaded loaded = loadOf(file, 3, 2);
        EXPECT_EQ(loaded.answer, expected.has_value());
        EXPECT_EQ(loaded.pixels, expected.value_or(Pixels()));
    }

    const Directory directory;
};

TEST_F(LoadBitmap24Files, rows_run_bottom_to_top_and_their_distance_comes_truncated_from_the_size_field) {
    Bitmap bitmap = Bitmap::ofSize(2, 2, 8);
    bitmap.data = {0x10, 0x20, 0x30, 0xFF, 0x00, 0x80, 0xEE, 0xEE, 1, 2, 3, 4, 5, 6, 0xEE, 0xEE};
    EXPECT_EQ(loadOf(bitmap).pixels, (Pixels{0x030201, 0x060504, 0x302010, 0x8000FF}));
    // A stride of 12 for 3 columns with padding, and of 9 without.
    EXPECT_EQ(loadOf(Bitmap::ofSize(3, 2, 12)).pixels,
              (Pixels{0x0F0E0D, 0x121110, 0x151413, 0x030201, 0x060504, 0x090807}));
    EXPECT_EQ(loadOf(Bitmap::ofSize(3, 2, 9)).pixels,
              (Pixels{0x0C0B0A, 0x0F0E0D, 0x121110, 0x030201, 0x060504, 0x090807}));
    bitmap = Bitmap::ofSize(1, 2, 4);
    bitmap.fileSize += 3; // 11 bytes for two rows: 5 each
    EXPECT_EQ(loadOf(bitmap).pixels, (Pixels{0x080706, 0x030201}));
}

TEST_F(LoadBitmap24Files, other_sizes_than_the_file_has_negative_ones_and_pictures_without_rows_are_answered_0) {
    const Bytes file = Bitmap::ofSize(3, 2, 12).file();
    for (int height = -3; height <= 4; ++height)
        for (int width = -4; width <= 5; ++width)
            EXPECT_EQ(loadOf(file, width, height).answer, width == 3 && height == 2) << width << " by " << height;
    Bitmap bitmap = Bitmap::ofSize(3, 2, 12);
    for (const auto &[width, height] : {std::pair{3, -2}, {-3, 2}, {-3, -2}, {3, 0}, {0, 0}, {-1, -1}}) {
        bitmap.width = static_cast<std::uint32_t>(width);
        bitmap.height = static_cast<std::uint32_t>(height);
        EXPECT_EQ(loadOf(bitmap).answer, 0) << width << " by " << height;
    }
}

TEST_F(LoadBitmap24Files, rows_without_pixels_are_a_picture_and_take_no_time_however_many) {
    Bitmap bitmap = Bitmap::ofSize(0, 1, 4);
    bitmap.height = greatestInt;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(loadOf(bitmap).answer, 1);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10)); // a seek for each takes minutes
}

TEST_F(LoadBitmap24Files, only_24_bits_are_read_and_only_of_a_file_that_begins_with_BM) {
    for (const std::uint32_t bits : {0u, 1u, 8u, 23u, 25u, 32u, 24u + 256, 65535u}) {
        Bitmap bitmap = Bitmap::ofSize(3, 2, 12);
        bitmap.bitCount = bits;
        EXPECT_EQ(loadOf(bitmap).answer, 0) << bits;
    }
    for (int bit = 0; bit < 16; ++bit) {
        Bitmap bitmap = Bitmap::ofSize(3, 2, 12);
        bitmap.magic ^= 1u << bit;
        EXPECT_EQ(loadOf(bitmap).answer, 0) << bit;
    }
}

TEST_F(LoadBitmap24Files, compression_and_other_fields_are_not_looked_at) {
    const Bytes file = Bitmap::ofSize(3, 2, 12).file();
    const Loaded expected = loadOf(file, 3, 2);
    for (const std::size_t position : {6, 7, 8, 9, 14, 15, 16, 17, 26, 27, 30, 31, 32, 33, 34, 37, 38, 45, 46, 53}) {
        Bytes changed = file;
        changed[position] ^= 0xFF;
        EXPECT_EQ(loadOf(changed, 3, 2).pixels, expected.pixels) << position;
    }
}

TEST_F(LoadBitmap24Files, a_file_cut_anywhere_keeps_its_whole_pixels_and_is_black_behind_them) {
    const Bytes whole = Bitmap::ofSize(3, 2, 12).file();
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        SCOPED_TRACE(length);
        expectAsNaive(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
    }
    EXPECT_EQ(loadOf(Bytes(whole.begin(), whole.begin() + 54 + 12 + 8), 3, 2).pixels,
              (Pixels{0x0F0E0D, 0x121110, 0, 0x030201, 0x060504, 0x090807}));
    EXPECT_EQ(loadOf(Bytes(whole.begin(), whole.begin() + 54), 3, 2).pixels, Pixels(6, 0));
}

TEST_F(LoadBitmap24Files, the_data_may_begin_anywhere_even_in_the_header_and_need_its_room) {
    for (std::uint32_t offset = 0; offset <= 100; ++offset) {
        SCOPED_TRACE(offset);
        Bitmap bitmap = Bitmap::ofSize(3, 2, 30);
        bitmap.dataOffset = offset;
        bitmap.fileSize = offset + 24;
        EXPECT_EQ(loadOf(bitmap).answer, 1);
        expectAsNaive(bitmap.file());
        bitmap.fileSize = offset + 17; // a byte less than two rows take
        EXPECT_EQ(loadOf(bitmap).answer, 0);
    }
    Bitmap bitmap = Bitmap::ofSize(3, 2, 12);
    bitmap.dataOffset = 0xFFFFFFFF; // less than nothing is left
    EXPECT_EQ(loadOf(bitmap).answer, 0);
}

TEST_F(LoadBitmap24Files, sizes_whose_product_passes_every_number_are_answered_0) {
    Bitmap bitmap = Bitmap::ofSize(3, 2, 12);
    bitmap.fileSize = 0xFFFFFFFF;
    // Products that are small again in 32 or 64 bits, and those that are as large as can be.
    for (const auto &[width, height] : {std::pair{greatestInt, greatestInt},
                                        {0x40000000, 4},
                                        {0x55555556, 1},
                                        {0x10000, 0x10000},
                                        {1, greatestInt},
                                        {greatestInt, 1},
                                        {0x55555555, 3}}) {
        bitmap.width = static_cast<std::uint32_t>(width);
        bitmap.height = static_cast<std::uint32_t>(height);
        directory.write("picture.bmp", bitmap.file());
        q_ulong surface = untouched;
        char name[] = "picture.bmp";
        EXPECT_EQ(LoadBitmap24(&surface, name, width, height), 0) << width << " by " << height;
        EXPECT_EQ(surface, untouched);
    }
}

TEST_F(LoadBitmap24Files, rows_claimed_far_behind_the_end_are_black) {
    Bitmap bitmap = Bitmap::ofSize(1, 3, 4);
    for (const std::uint32_t size : {0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        bitmap.fileSize = size;
        EXPECT_EQ(loadOf(bitmap).pixels, (Pixels{0, 0, 0x030201})) << size;
    }
    bitmap.fileSize = 0xFFFFFFFF;
    for (const std::uint32_t offset : {0x7FFFFFFFu, 0x80000000u, 0xFFFFFFF0u}) {
        bitmap.dataOffset = offset;
        EXPECT_EQ(loadOf(bitmap).pixels, Pixels(3, 0)) << offset;
    }
}

TEST_F(LoadBitmap24Files, a_file_of_3_GiB_is_read_where_rows_begin_below_2_GiB) {
    constexpr std::int64_t GiB = std::int64_t{1} << 30;
    if (!directory.writeHole("picture.bmp", 3 * GiB)) {
        std::cout << "no file of 3 GiB can be made here without taking that room\n";
        return;
    }
    ASSERT_TRUE(directory.writeInto("picture.bmp", GiB - 1, {1, 2, 3, 4, 5}));
    ASSERT_TRUE(directory.writeInto("picture.bmp", 2 * GiB - 1, {6, 7, 8, 9, 10}));
    const auto loadedFrom = [this](std::int64_t offset) { // two rows, 1 GiB apart
        Bitmap bitmap = Bitmap::ofSize(1, 2, 0);
        bitmap.dataOffset = static_cast<std::uint32_t>(offset);
        bitmap.fileSize = static_cast<std::uint32_t>(offset + 2 * GiB);
        EXPECT_TRUE(directory.writeInto("picture.bmp", 0, bitmap.file()));
        return load("picture.bmp", 1, 2).pixels;
    };
    EXPECT_EQ(loadedFrom(GiB - 1), (Pixels{0x080706, 0x030201}));
    EXPECT_EQ(loadedFrom(GiB), (Pixels{0, 0x040302}));
    EXPECT_EQ(loadedFrom(GiB + 1), (Pixels{0, 0x050403}));
}

TEST_F(LoadBitmap24Files, what_is_no_file_is_answered_0_and_files_are_closed_whatever_is_answered) {
    directory.write("short.bmp", Bytes(20, 'B'));
    directory.write("false.bmp", Bytes(60, 'B'));
    Bitmap small = Bitmap::ofSize(1, 1, 4);
    small.fileSize = 55;
    directory.write("small.bmp", small.file());
    for (int i = 0; i < 1500; ++i) { // more files than a program may have open
        for (const char *name : {"short.bmp", "false.bmp", "small.bmp", "nobody.bmp", "", "no/where.bmp"})
            ASSERT_EQ(load(name, 1, 1).answer, 0) << name;
        ASSERT_EQ(load("a.bmp", 1, 1).answer, 1) << i;
    }
}

TEST(LoadBitmap24, without_a_directory_the_name_is_the_path) {
    ASSERT_TRUE(withoutDirectory.hasFile) << "there was no file to load";
    EXPECT_EQ(withoutDirectory.answer, 1);
    EXPECT_EQ(withoutDirectory.pixel, 0x030201u);
}

TEST_F(LoadBitmap24Files, are_looked_for_in_the_last_directory_that_was_set) {
    const Directory other;
    other.write("b.bmp", Bitmap::ofSize(1, 1, 4).file());
    EXPECT_EQ(load("a.bmp", 1, 1).answer, 1);
    EXPECT_EQ(load("b.bmp", 1, 1).answer, 0);
    setDirectory(other.prefix());
    EXPECT_EQ(load("a.bmp", 1, 1).answer, 0);
    EXPECT_EQ(load("b.bmp", 1, 1).answer, 1);
    setDirectory("");
    EXPECT_EQ(load(other.prefix() + "b.bmp", 1, 1).answer, 1);
}

TEST_F(LoadBitmap24Files, have_a_copy_of_the_set_text_right_before_their_name) {
    std::string prefix = directory.prefix() + "a.";
    SetSpriteDir(prefix.data());
    prefix.assign(prefix.size(), 'x');
    EXPECT_EQ(load("bmp", 1, 1).answer, 1);
    EXPECT_EQ(load("a.bmp", 1, 1).answer, 0);
}

TEST_F(LoadBitmap24Files, are_opened_by_a_path_of_511_characters_and_not_by_a_longer_one) {
    // The same file under names of any length: each two characters more are a step to where one is.
    const auto nameOfLength = [this](std::size_t length) {
        std::string name = directory.prefix();
        while (name.size() + 5 < length)
            name += name.size() + 6 < length ? "./" : "/";
        return name + "a.bmp";
    };
    for (std::size_t length = 500; length <= 530; ++length) {
        const std::string path = nameOfLength(length);
        ASSERT_EQ(path.size(), length);
        const int expected = length < 512 && std::ifstream(path).is_open(); // not every system opens paths so long
        for (const std::size_t cut : {std::size_t{0}, std::size_t{1}, length / 2, length - 5, length}) {
            setDirectory(path.substr(0, cut));
            EXPECT_EQ(load(path.substr(cut), 1, 1).answer, expected) << length << " cut at " << cut;
        }
    }
}

TEST_F(LoadBitmap24Files, are_not_found_behind_a_prefix_too_long_until_a_shorter_one_is_set) {
    for (const std::size_t length : {511, 512, 513, 5000}) {
        setDirectory(std::string(length, '/'));
        EXPECT_EQ(load("a.bmp", 1, 1).answer, 0) << length;
        EXPECT_EQ(load("", 1, 1).answer, 0) << length;
        setDirectory(directory.prefix());
        EXPECT_EQ(load("a.bmp", 1, 1).answer, 1) << length;
    }
}

TEST_F(LoadBitmap24Files, agree_with_a_naive_reader_whether_true_or_false) {
    forEachCase(
        "LoadBitmap24",
        [this](Case &c) {
            const int width = c.random.between(1, 12);
            const int height = c.random.between(1, 12);
            const int padding = c.random.oneIn(3) ? c.random.between(0, 9) : width % 4;
            Bitmap bitmap = Bitmap::ofSize(width, height, width * 3 + padding);
            for (unsigned char &byte : bitmap.data)
                byte = static_cast<unsigned char>(c.random.word());
            if (c.random.oneIn(4))
                bitmap.fileSize =
                    static_cast<std::uint32_t>(c.random.between(0, static_cast<int>(bitmap.fileSize) + 99));
            if (c.random.oneIn(6))
                bitmap.dataOffset = static_cast<std::uint32_t>(c.random.between(0, 120));
            if (c.random.oneIn(20))
                bitmap.bitCount = static_cast<std::uint32_t>(c.random.between(0, 32));
            Bytes file = bitmap.file();
            if (c.random.oneIn(4)) { // a bit of the header is wrong
                const int position = c.random.between(0, 53);
                const int bit = c.random.between(0, 7);
                file[static_cast<std::size_t>(position)] ^= static_cast<unsigned char>(1 << bit);
            }
            if (c.random.oneIn(4))
                file.resize(static_cast<std::size_t>(c.random.between(0, static_cast<int>(file.size()))));
            directory.write("picture.bmp", file);

            const int askedWidth = c.random.oneIn(12) ? width + c.random.between(-1, 1) : width;
            const int askedHeight = c.random.oneIn(12) ? height + c.random.between(-1, 1) : height;
            const auto expected = naivePixels(file, askedWidth, askedHeight);
            const std::size_t count = static_cast<std::size_t>(askedWidth) * static_cast<std::size_t>(askedHeight);
            Pixels surface(count + 8, untouched);
            std::string name = "picture.bmp";
            const int answer = LoadBitmap24(surface.data() + 4, name.data(), askedWidth, askedHeight);
            c.expectEqual(std::int64_t{answer}, std::int64_t{expected.has_value()});
            for (std::size_t i = 0; i < surface.size(); ++i) {
                const bool isPicture = expected && i >= 4 && i < count + 4;
                c.expectEqual(std::int64_t{surface[i]}, std::int64_t{isPicture ? (*expected)[i - 4] : untouched});
            }
        },
        4000); // under an emulator each file takes its time; the fuzz target tries many more
}

} // namespace
