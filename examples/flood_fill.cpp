// A flood fill that cannot run away: leaded glass, each of whose panes is a region between curves.
//
//     qmur-flood-fill      writes flood-fill.png
#include <q_Mur.h>
#include <vector>

#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb_image_write.h>

namespace {

constexpr int width = 600, height = 400;
// A fill calls itself once for each span on its way, and a row of this width has at most half as many spans: 64 bytes
// for each is what the stack of the calling thread must hold, less than the main thread's 8 MiB on Linux. On Windows
// the program is linked with as much.
static_assert(width / 2 * height * 64 <= 8 << 20);

} // namespace

int main() {
    Init_qMur_GlobalData(nullptr, nullptr);
    std::vector<unsigned char> plane(width * height);
    tagRECT all = {0, 0, width, height};
    constexpr unsigned char lead = 1;

    // A frame all around, as nothing else ends a fill in the last rows and columns: regions stop before it.
    bLine(plane.data(), 0, 0, width - 1, 0, lead, &all, width);
    bLine(plane.data(), 0, height - 1, width - 1, height - 1, lead, &all, width);
    bLine(plane.data(), 0, 0, 0, height - 1, lead, &all, width);
    bLine(plane.data(), width - 1, 0, width - 1, height - 1, lead, &all, width);
    // Closed curves, and islands in them.
    for (int ring = 0; ring < 5; ++ring) {
        const short in = static_cast<short>(40 * ring + 20);
        short xs[] = {300, static_cast<short>(600 - in), 300, in}, ys[] = {in, 200, static_cast<short>(400 - in), 200};
        bPolyBesier(plane.data(), &all, width, xs, ys, 4, lead, 0);
    }
    for (int x = -40; x < width; x += 85)
        bBesierLine(plane.data(), x, 0, x + 160, 140, x - 90, 280, x + 70, height - 1, lead, &all, width);

    // The record holds the private block of the fills.
    _TRANSFERDATA record = {};
    _PRIVATE_QMGP_DATA *fill = GetPrivate_QMGP_Data(&record, 0);
    if (!fill)
        return 1;
    bSetRegionFill(fill, plane.data(), &all, width);

    std::vector<q_ulong> glass(width * height, 0x101014);
    std::vector<unsigned char> before = plane;
    unsigned panes = 0;
    for (int y = 1; y < height - 1; ++y)
        for (int x = 1; x < width - 1; ++x) {
            if (plane[static_cast<std::size_t>(y * width + x)] == lead)
                continue;
            // What is painted is boundary from then on, so islands do no harm. The seed is inside the frame.
            bRegion_Fill(fill, x, y, lead, 0, 0, 0);
            // Three sines a third of the circle apart are a wheel of colours; golden steps on it repeat none.
            q_ulong colour = 0;
            for (const unsigned third : {0U, 2731U, 5461U})
                colour = colour << 8 | static_cast<q_ulong>(130 + 70 * iSin[(panes * 5063 + third) % 8192] / 32768);
            for (std::size_t i = 0; i < plane.size(); ++i)
                if (plane[i] != before[i])
                    glass[i] = colour;
            before = plane;
            ++panes;
        }
    DeleteMemoryBlocks(&record);

    std::vector<unsigned char> bytes;
    for (const q_ulong pixel : glass)
        for (const int shift : {16, 8, 0})
            bytes.push_back(static_cast<unsigned char>(pixel >> shift));
    return stbi_write_png("flood-fill.png", width, height, 3, bytes.data(), 0) ? 0 : 1;
}
