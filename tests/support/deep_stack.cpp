#include "deep_stack.h"

#include <algorithm>
#include <new>

#if defined(_WIN32)
#include <windows.h>
#elif !defined(__wasm__)
#include <climits>
#include <pthread.h>
#endif

namespace test {

#if defined(__wasm__)

void onStackOf(std::size_t, std::function<void()> body) {
    body();
}

#else

void onStackOf(std::size_t bytes, std::function<void()> body) {
    bytes += 64 * 1024; // what a thread needs before it comes to the body
#if defined(_WIN32)
    const auto run = [](void *function) WINAPI -> DWORD {
        (*static_cast<std::function<void()> *>(function))();
        return 0;
    };
    HANDLE thread = CreateThread(nullptr, bytes, run, &body, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    if (!thread)
        throw std::bad_alloc();
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
#else
    const auto run = [](void *function) -> void * {
        (*static_cast<std::function<void()> *>(function))();
        return nullptr;
    };
    bytes = std::max(bytes, static_cast<std::size_t>(PTHREAD_STACK_MIN));
    constexpr std::size_t page = 4096;
    pthread_attr_t attributes;
    pthread_t thread;
    pthread_attr_init(&attributes);
    if (pthread_attr_setstacksize(&attributes, (bytes + page - 1) / page * page) != 0 ||
        pthread_create(&thread, &attributes, run, &body) != 0)
        throw std::bad_alloc();
    pthread_attr_destroy(&attributes);
    pthread_join(thread, nullptr);
#endif
}

#endif

} // namespace test
