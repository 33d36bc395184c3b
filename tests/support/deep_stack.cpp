#include "deep_stack.h"

#include <new>

#if defined(_WIN32)
#include <windows.h>
#else
#include <pthread.h>
#endif

namespace test {
namespace {

/// What a thread needs of its stack before it comes to the body.
constexpr std::size_t spare = 64 * 1024;

void call(const void *body) {
    (*static_cast<const std::function<void()> *>(body))();
}

} // namespace

#if defined(_WIN32)

void onStackOf(std::size_t bytes, const std::function<void()> &body) {
    const auto run = [](void *function) WINAPI -> DWORD {
        call(function);
        return 0;
    };
    HANDLE thread = CreateThread(nullptr, bytes + spare, run, const_cast<std::function<void()> *>(&body),
                                 STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    if (!thread)
        throw std::bad_alloc();
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
}

#else

void onStackOf(std::size_t bytes, const std::function<void()> &body) {
    const auto run = [](void *function) -> void * {
        call(function);
        return nullptr;
    };
    constexpr std::size_t page = 4096;
    pthread_attr_t attributes;
    pthread_t thread;
    pthread_attr_init(&attributes);
    const bool started = pthread_attr_setstacksize(&attributes, (bytes + spare + page - 1) / page * page) == 0 &&
                         pthread_create(&thread, &attributes, run, const_cast<std::function<void()> *>(&body)) == 0;
    pthread_attr_destroy(&attributes);
    if (!started)
        throw std::bad_alloc();
    pthread_join(thread, nullptr);
}

#endif

} // namespace test
