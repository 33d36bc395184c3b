#include "surface.h"

#include <cstdio>
#include <new>

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace test {

std::string Surface::differenceFrom(const Surface &expected) const {
    if (stride != expected.stride || buffer.size() != expected.buffer.size())
        return "the surfaces have different shapes";
    for (std::size_t i = 0; i < buffer.size(); ++i) {
        if (buffer[i] == expected.buffer[i])
            continue;
        const int x = static_cast<int>(i) % stride - margin;
        const int y = static_cast<int>(i) / stride - margin;
        char text[160];
        std::snprintf(text, sizeof text, "(%d, %d) of a %d x %d picture is 0x%08X instead of 0x%08X", x, y, columns,
                      rows, static_cast<unsigned>(buffer[i]), static_cast<unsigned>(expected.buffer[i]));
        return text;
    }
    return {};
}

#if defined(_WIN32)

namespace {

std::size_t pageSize() {
    SYSTEM_INFO info;
    GetSystemInfo(&info);
    return info.dwPageSize;
}

void *mapWithUnreadableEnd(std::size_t bytes, std::size_t page) {
    auto *memory = static_cast<char *>(VirtualAlloc(nullptr, bytes + page, MEM_RESERVE, PAGE_NOACCESS));
    if (!memory || !VirtualAlloc(memory, bytes, MEM_COMMIT, PAGE_READWRITE))
        throw std::bad_alloc();
    return memory;
}

void unmap(void *memory, std::size_t) {
    VirtualFree(memory, 0, MEM_RELEASE);
}

} // namespace

#else

namespace {

std::size_t pageSize() {
    return static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

void *mapWithUnreadableEnd(std::size_t bytes, std::size_t page) {
    void *memory = mmap(nullptr, bytes + page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED || mprotect(static_cast<char *>(memory) + bytes, page, PROT_NONE) != 0)
        throw std::bad_alloc();
    return memory;
}

void unmap(void *memory, std::size_t bytes) {
    munmap(memory, bytes);
}

} // namespace

#endif

PageEndPixels::PageEndPixels(std::size_t count) {
    const std::size_t page = pageSize();
    const std::size_t bytes = (count * sizeof(q_ulong) + page - 1) / page * page;
    mapping = mapWithUnreadableEnd(bytes, page);
    mappedBytes = bytes + page;
    first = static_cast<q_ulong *>(mapping) + bytes / sizeof(q_ulong) - count;
}

PageEndPixels::~PageEndPixels() {
    unmap(mapping, mappedBytes);
}

} // namespace test
