#include "unfinished_file.h"

#include "failure.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <random>
#include <string>

namespace show {

namespace {

std::filesystem::path unfinishedName(const std::filesystem::path &target) {
    const auto directory = target.has_parent_path() ? target.parent_path() : std::filesystem::path(".");
    std::random_device random;
    std::string name = target.filename().string();
    name.insert(0, 1, '.');
    return directory / (name + '.' + std::to_string(random()) + ".unfinished");
}

[[noreturn]] void fail(const std::filesystem::path &target, const std::string &reason) {
    throw Failure("cannot write '" + target.string() + "': " + reason);
}

} // namespace

UnfinishedFile::UnfinishedFile(std::filesystem::path finalTarget)
    : target(std::move(finalTarget)), unfinished(unfinishedName(target)) {
    errno = 0;
    if (!std::ofstream(unfinished, std::ios::binary))
        fail(target, std::strerror(errno));
}

UnfinishedFile::~UnfinishedFile() {
    std::error_code ignored;
    if (!finished)
        std::filesystem::remove(unfinished, ignored);
}

void UnfinishedFile::write(const std::vector<unsigned char> &bytes) {
    errno = 0;
    std::ofstream file(unfinished, std::ios::binary | std::ios::app);
    for (const unsigned char byte : bytes)
        file.put(static_cast<char>(byte));
    if (!file.flush())
        fail(target, std::strerror(errno));
}

void UnfinishedFile::finish() {
    std::error_code error;
    std::filesystem::rename(unfinished, target, error);
    if (error)
        fail(target, error.message());
    finished = true;
}

void UnfinishedFile::checkTarget(const std::filesystem::path &target) {
    if (std::filesystem::is_directory(target))
        fail(target, "it is a directory");
    UnfinishedFile probe(target);
}

} // namespace show
