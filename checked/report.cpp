#include "report.h"

#include "q_Mur/checked.h"

#include <cstdio>
#include <cstdlib>
#include <mutex>

namespace checked {
namespace {

struct Wishes {
    std::mutex guard;
    int messagesLeft;
    bool doubtsAreNamed;
    q_Mur_checked_handler handler = nullptr;
    void *context = nullptr;
};

int fromEnvironment(const char *name, int otherwise) {
    const char *value = std::getenv(name);
    return value ? std::atoi(value) : otherwise;
}

Wishes &wishes() {
    static Wishes all = {.guard = {},
                         .messagesLeft = fromEnvironment("Q_MUR_CHECKED_GO_ON", 0),
                         .doubtsAreNamed = fromEnvironment("Q_MUR_CHECKED_DOUBTS", 1) != 0};
    return all;
}

} // namespace

void report(const std::string &message) {
    Wishes &all = wishes();
    std::unique_lock<std::mutex> lock(all.guard);
    if (const q_Mur_checked_handler handler = all.handler) {
        void *const context = all.context;
        lock.unlock(); // a handler may call what takes it
        handler(message.c_str(), context);
        return;
    }
    std::fprintf(stderr, "%s\n", message.c_str());
    std::fflush(stderr);
    if (all.messagesLeft == 0)
        std::abort();
    if (all.messagesLeft > 0)
        --all.messagesLeft;
}

bool areDoubtsNamed() {
    const std::lock_guard<std::mutex> lock(wishes().guard);
    return wishes().doubtsAreNamed;
}

} // namespace checked

void q_Mur_checked_go_on(int messages) {
    const std::lock_guard<std::mutex> lock(checked::wishes().guard);
    checked::wishes().messagesLeft = messages;
}

void q_Mur_checked_handle(q_Mur_checked_handler handler, void *context) {
    const std::lock_guard<std::mutex> lock(checked::wishes().guard);
    checked::wishes().handler = handler;
    checked::wishes().context = context;
}

void q_Mur_checked_doubts(int areNamed) {
    const std::lock_guard<std::mutex> lock(checked::wishes().guard);
    checked::wishes().doubtsAreNamed = areNamed != 0;
}
