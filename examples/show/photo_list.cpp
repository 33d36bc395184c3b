#include "photo_list.h"

#include "failure.h"
#include "image_file.h"
#include "input_file.h"
#include "messages.h"
#include "progress.h"
#include "text.h"
#include "threads.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <new>
#include <tuple>

namespace show {

namespace {

constexpr double longestSeconds = 600;

struct Candidate {
    ShownPhoto photo;
    bool wasNamed;     ///< itself, and not its folder
    std::size_t group; ///< photographs of one folder have one number, all others have their own
    std::string taken = {};
    std::string reason = {}; ///< why it cannot be read; empty if it can
    bool lackedMemory = false;
};

bool looksLikePicture(const std::filesystem::path &path) {
    const std::string extension = lowerCaseExtension(path);
    const auto known = {".jpg", ".jpeg", ".jpe", ".png", ".bmp", ".webp", ".heic", ".heif", ".avif"};
    return !utf8(path.filename()).starts_with('.') &&
           std::any_of(known.begin(), known.end(), [&](const char *one) { return extension == one; });
}

std::vector<std::filesystem::path> picturesIn(const std::filesystem::path &folder) {
    std::vector<std::filesystem::path> pictures;
    int others = 0;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        if (looksLikePicture(entry->path()))
            pictures.push_back(entry->path());
        else if (!utf8(entry->path().filename()).starts_with('.'))
            ++others;
    }
    if (error)
        throw Failure("cannot read " + quoted(folder) + ": " + error.message());
    if (pictures.empty())
        throw Failure("cannot read " + quoted(folder) + ": there are no pictures in this folder");
    if (others > 0)
        say(quoted(folder) + " holds " + std::to_string(others) +
            (others == 1 ? " thing that is no picture by its name" : " things that are no pictures by their names"));
    std::sort(pictures.begin(), pictures.end());
    return pictures;
}

std::vector<Candidate> candidatesFor(const std::vector<ShownPhoto> &named) {
    std::vector<Candidate> candidates;
    for (std::size_t group = 0; group < named.size(); ++group) {
        const auto &path = named[group].path;
        std::error_code ignored;
        if (!std::filesystem::is_directory(path, ignored))
            candidates.push_back({named[group], true, group});
        else
            for (const auto &picture : picturesIn(path))
                candidates.push_back({{picture, named[group].seconds}, false, group});
    }
    return candidates;
}

void tryToRead(Candidate &candidate, int mostMegapixels) {
    candidate.lackedMemory = false;
    try {
        ImageFile image = readImage(candidate.photo.path, mostMegapixels);
        candidate.taken = std::move(image.taken);
        candidate.photo.comment = std::move(image.comment);
        candidate.photo.bytes = image.picture.bytes();
    } catch (const Failure &failure) {
        candidate.reason = failure.what();
    } catch (const std::bad_alloc &) {
        candidate.lackedMemory = true;
    }
}

void readAll(std::vector<Candidate> &candidates, const PhotoReading &reading) {
    std::atomic<std::size_t> next = 0;
    std::atomic<bool> stopped = false;
    std::size_t done = 0;
    std::mutex mutex;
    std::condition_variable changed;
    const int count = static_cast<int>(std::min(static_cast<std::size_t>(reading.threads), candidates.size()));
    {
        const Threads readers(count, 0, [&](int) {
            for (std::size_t i; !stopped && (i = next++) < candidates.size();) {
                tryToRead(candidates[i], reading.mostMegapixels);
                const std::lock_guard lock(mutex);
                ++done;
                changed.notify_all();
            }
        });
        constexpr double fast = 1;
        constexpr std::size_t few = 20;
        Progress progress("photograph", static_cast<int>(candidates.size()));
        if (candidates.size() < few)
            progress.waitBeforeSaying(fast);
        try {
            for (std::size_t seen = 0; seen < candidates.size(); ++seen) {
                std::unique_lock lock(mutex);
                while (!changed.wait_for(lock, std::chrono::milliseconds(50), [&] { return done > seen; }))
                    throwIfInterrupted();
                lock.unlock();
                progress.advance();
            }
        } catch (...) {
            stopped = true;
            throw;
        }
    }
    // Several large ones at once may have taken what is enough for one.
    for (Candidate &candidate : candidates) {
        if (candidate.lackedMemory)
            tryToRead(candidate, reading.mostMegapixels);
        if (candidate.lackedMemory)
            candidate.reason = "cannot read " + quoted(candidate.photo.path) + ": there is not enough memory for it";
    }
}

} // namespace

std::vector<ShownPhoto> readPlaylist(const std::filesystem::path &path) {
    constexpr std::size_t longestPlaylist = 1 << 24;
    std::vector<unsigned char> bytes;
    try {
        InputFile file(path);
        if (file.size() > longestPlaylist)
            throw Failure("it is too long for a playlist");
        file.read(bytes, static_cast<std::size_t>(file.size()));
    } catch (const Failure &failure) {
        throw Failure("cannot read " + quoted(path) + ": " + failure.what());
    }
    std::vector<ShownPhoto> photos;
    std::string_view text(reinterpret_cast<const char *>(bytes.data()), bytes.size());
    if (text.starts_with("\xEF\xBB\xBF")) // as some editors begin files
        text.remove_prefix(3);
    for (int number = 1; !text.empty(); ++number) {
        std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        const std::string_view space = " \t\r";
        line.remove_prefix(std::min(line.find_first_not_of(space), line.size()));
        line.remove_suffix(line.size() - (line.find_last_not_of(space) + 1));
        if (line.empty() || line.starts_with('#'))
            continue;
        const std::string_view first = line.substr(0, line.find_first_of(space));
        std::string_view name = line.substr(first.size());
        name.remove_prefix(std::min(name.find_first_not_of(space), name.size()));
        const std::optional<double> seconds = decimalNumber(first);
        if (name.empty() || (first != "-" && (!seconds || *seconds <= 0 || *seconds > longestSeconds)))
            throw Failure("cannot read " + quoted(path) + ": line " + std::to_string(number) +
                          " is not seconds, of up to 600 or '-', and a photograph");
        photos.push_back({path.parent_path() / pathOf(name), first == "-" ? std::nullopt : seconds});
    }
    if (photos.empty())
        throw Failure("cannot read " + quoted(path) + ": no photograph stands in it");
    return photos;
}

ReadPhotos readablePhotos(const std::vector<ShownPhoto> &named, const PhotoReading &reading) {
    std::vector<Candidate> candidates = candidatesFor(named);
    readAll(candidates, reading);
    std::string reasons;
    bool isRefused = false;
    int leftOut = 0;
    for (const Candidate &candidate : candidates)
        if (!candidate.reason.empty()) {
            reasons += candidate.reason + '\n';
            isRefused |= candidate.wasNamed && !reading.skipBad;
            ++leftOut;
        }
    std::erase_if(candidates, [](const Candidate &candidate) { return !candidate.reason.empty(); });
    if (isRefused)
        throw Failure(reasons);
    if (!reasons.empty())
        say(reasons);
    if (candidates.empty())
        throw Failure("no photograph is left to show");

    std::stable_sort(candidates.begin(), candidates.end(), [](const Candidate &a, const Candidate &b) {
        return std::tuple(a.group, a.taken.empty(), a.taken) < std::tuple(b.group, b.taken.empty(), b.taken);
    });
    std::vector<ShownPhoto> photos;
    for (Candidate &candidate : candidates)
        photos.push_back(std::move(candidate.photo));
    return {std::move(photos), leftOut};
}

} // namespace show
