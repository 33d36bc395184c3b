/// \file
/// A host whose last calls are made when its objects are destroyed, after all that was made later.
#include <q_Mur.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

_TRANSFERDATA record;

struct Late {
    Late() = default;
    Late(const Late &) = delete;
    Late &operator=(const Late &) = delete;
    ~Late() {
        q_ulong pixels[16] = {};
        tagRECT rect = {0, 0, 4, 4};
        iFillRect(pixels, &rect, 4, 7); // likewise called before
        DeleteMemoryBlocks(nullptr);    // called for the first time
        FindNotUsedMemory(&record, 1, 100);
        DeleteMemoryBlocks(&record);
        if (pixels[15] == 7 && !record.blocks[0])
            std::puts("the last call was made");
    }
};

} // namespace

int main() {
    static Late late;
    q_ulong pixels[16] = {};
    tagRECT rect = {0, 0, 4, 4};
    iFillRect(pixels, &rect, 4, 7);
    auto *bytes = static_cast<unsigned char *>(FindNotUsedMemory(&record, 0, 100));
    if (!bytes)
        return EXIT_FAILURE;
    std::memset(bytes, 1, 100);
    ClearMemory(&record, 0);
    return bytes[99] == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
