#include "video.h"

#include "failure.h"
#include "input_file.h"
#include "messages.h"
#include "process.h"
#include "text.h"
#include "unfinished_file.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>

namespace show {

namespace {

struct Encoder {
    const char *extension;
    const char *name;
    const char *container;
    bool halvesColour; ///< colour is stored at half the size, which takes even sides
    std::vector<std::string> arguments;
    std::vector<std::string> sound; ///< empty if the container holds none
};

/// Frames are sRGB pictures: their colours are converted by the matrix that players expect for high definition.
const std::vector<std::string> highDefinitionColours = {
    "-vf",
    "scale=out_color_matrix=bt709:out_range=tv:flags=accurate_rnd,format=yuv420p",
    "-colorspace",
    "bt709",
    "-color_range",
    "tv",
    "-color_trc",
    "bt709",
    "-color_primaries",
    "bt709"};

std::vector<std::string> withColours(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), highDefinitionColours.begin(), highDefinitionColours.end());
    return arguments;
}

/// Pauses between the frames of a GIF count hundredths of a second, and players take one for ten.
constexpr int highestGifRate = 50;

const std::vector<Encoder> &encoders() {
    static const std::vector<Encoder> list = {
        {".mp4",
         "an MP4",
         "mp4",
         true,
         withColours({"-c:v", "libx264", "-preset", "fast", "-crf", "18", "-movflags", "+faststart"}),
         {"-c:a", "aac", "-b:a", "192k"}},
        {".webm",
         "a WebM",
         "webm",
         true,
         withColours(
             {"-c:v", "libvpx-vp9", "-crf", "30", "-b:v", "0", "-deadline", "good", "-cpu-used", "4", "-row-mt", "1"}),
         {"-c:a", "libopus", "-b:a", "160k"}},
        // Loses nothing, and each frame stands for itself.
        {".mkv",
         "a Matroska",
         "matroska",
         false,
         {"-c:v", "ffv1", "-level", "3", "-g", "1", "-pix_fmt", "bgr0"},
         {"-c:a", "flac"}},
        // A palette for each frame needs no second reading of the frames.
        {".gif",
         "a GIF",
         "gif",
         false,
         {"-vf", "split[a][b];[a]palettegen=stats_mode=single[p];[b][p]paletteuse=new=1"},
         {}},
    };
    return list;
}

const Encoder *findEncoder(const std::string &extension) {
    for (const Encoder &encoder : encoders())
        if (encoder.extension == extension)
            return &encoder;
    return nullptr;
}

bool playsSlower(const Encoder &encoder, const FrameRate &rate) {
    return std::string_view(encoder.container) == "gif" && rate.perSecond() > highestGifRate;
}

using Command = std::vector<std::string>;

void append(Command &command, const Command &more) {
    command.insert(command.end(), more.begin(), more.end());
}

/// Whatever the path is, ffmpeg takes it for a file.
std::string asFile(const std::filesystem::path &path) {
    const std::u8string text = path.generic_u8string();
    return "file:" + std::string(text.begin(), text.end());
}

/// Each complaint comes with its level, so that none can be overlooked.
Command ffmpeg(const Command &arguments) {
    Command command = {"ffmpeg", "-hide_banner", "-loglevel", "level+error"};
    append(command, arguments);
    return command;
}

/// What ffmpeg says on standard error.
struct Complaints {
    std::string lastWords;
    bool areErrors = false;

    /// The line without what stands in brackets before it.
    void hear(std::string_view line) {
        while (line.starts_with('[')) {
            const std::string_view bracket = line.substr(0, line.find("] "));
            if (bracket.size() == line.size())
                break;
            areErrors = areErrors || bracket == "[error" || bracket == "[fatal" || bracket == "[panic";
            line.remove_prefix(bracket.size() + 2);
        }
        lastWords = printable(line);
    }

    std::string inBrackets() const { return lastWords.empty() ? "" : std::string(" (").append(lastWords).append(")"); }
};

/// What the packets of a file's streams amount to.
struct Contents {
    struct Stream {
        double timeBase = 0;
        std::string dimensions;
        int packets = 0;
        double end = 0; ///< in seconds
    };
    std::map<int, Stream> streams;

    /// A line of ffmpeg's list of packets: what holds for a stream, or stream, times, duration and size of a packet.
    void hear(const std::string &line) {
        int stream = 0;
        int numerator = 0;
        int denominator = 0;
        long long decoded = 0;
        long long shown = 0;
        long long duration = 0;
        if (std::sscanf(line.c_str(), "#tb %d: %d/%d", &stream, &numerator, &denominator) == 3 && denominator > 0)
            streams[stream].timeBase = static_cast<double>(numerator) / denominator;
        else if (std::sscanf(line.c_str(), "#dimensions %d: ", &stream) == 1)
            streams[stream].dimensions = line.substr(line.find(": ") + 2);
        else if (std::sscanf(line.c_str(), "%d, %lld, %lld, %lld,", &stream, &decoded, &shown, &duration) == 4) {
            ++streams[stream].packets;
            streams[stream].end =
                std::max(streams[stream].end, static_cast<double>(shown + duration) * streams[stream].timeBase);
        }
    }
};

/// Throws Failure with what ffmpeg has to say of the file.
Contents contentsOf(const std::filesystem::path &path, const char *streams) {
    Contents contents;
    Complaints complaints;
    Process reader(
        ffmpeg({"-nostdin", "-i", asFile(path), "-map", streams, "-c", "copy", "-f", "framecrc", "-"}),
        [&](std::string_view line) { contents.hear(std::string(line)); },
        [&](std::string_view line) { complaints.hear(line); });
    if (!reader.finish() || complaints.areErrors)
        throw Failure("ffmpeg cannot read it" + complaints.inBrackets());
    return contents;
}

Command commandFor(const Encoder &encoder, const VideoFormat &format, FrameRange frames,
                   const std::filesystem::path &path) {
    Command command = ffmpeg({"-y", "-f", "rawvideo", "-pixel_format", "bgr0", "-video_size",
                              std::to_string(format.width) + "x" + std::to_string(format.height), "-framerate",
                              format.rate.text(), "-i", "pipe:0"});
    Command filters = encoder.arguments;
    if (playsSlower(encoder, format.rate))
        filters[1] = "fps=" + std::to_string(highestGifRate) + "," + filters[1];
    if (format.music.empty() || encoder.sound.empty()) {
        append(command, filters);
    } else {
        // Begins anew as often as the film lasts, and fades out with it.
        constexpr double longestFade = 4;
        const double start = format.rate.secondsOf(frames.first);
        const double length = format.rate.secondsOf(frames.count());
        const double fade = std::min(longestFade, length / 3);
        append(command, {"-stream_loop", "-1", "-i", asFile(format.music), "-map", "0:v:0", "-map", "1:a:0"});
        append(command, filters);
        append(command, encoder.sound);
        append(command, {"-af", "atrim=start=" + std::to_string(start) + ":duration=" + std::to_string(length) +
                                    ",asetpts=PTS-STARTPTS,afade=t=out:st=" + std::to_string(length - fade) +
                                    ":d=" + std::to_string(fade)});
    }
    append(command, {"-f", encoder.container, asFile(path)});
    return command;
}

class Video : public Output {
public:
    Video(const std::filesystem::path &videoTarget, const Encoder &videoEncoder, const VideoFormat &videoFormat,
          FrameRange videoFrames)
        : target(videoTarget), encoder(videoEncoder), format(videoFormat), frames(videoFrames), file(target, target),
          process(commandFor(encoder, format, frames, file.path()), nullptr,
                  [this](std::string_view line) { complaints.hear(line); }) {}

    EncodedFrame encode(const Surface &frame) const override {
        const std::size_t rowSize = static_cast<std::size_t>(frame.width) * sizeof(q_ulong);
        EncodedFrame encoded;
        encoded.bytes.resize(rowSize * static_cast<std::size_t>(frame.height));
        for (int y = 0; y < frame.height; ++y)
            std::memcpy(encoded.bytes.data() + static_cast<std::size_t>(y) * rowSize, frame.at(0, y), rowSize);
        return encoded;
    }

    void write(int, const EncodedFrame &encoded) override {
        if (!process.write(encoded.bytes.data(), encoded.bytes.size())) {
            process.finish();
            fail("ffmpeg failed" + complaints.inBrackets());
        }
    }

    std::string finish() override {
        // Its end may be a success all the same, as when the disk is full by then.
        if (!process.finish() || complaints.areErrors)
            fail("ffmpeg failed" + complaints.inBrackets());
        check();
        file.finish();
        return quoted(target);
    }

private:
    [[noreturn]] void fail(const std::string &reason) const {
        throw Failure("cannot write " + quoted(target) + ": " + reason);
    }

    /// Reads the file back, without decoding it.
    void check() const {
        Contents contents;
        try {
            contents = contentsOf(file.path(), "0");
        } catch (const Failure &failure) {
            fail(std::string("it was written, but ") + failure.what());
        }
        const double length = format.rate.secondsOf(frames.count());
        const double tolerance = std::max(0.1, format.rate.secondsOf(2));
        const Contents::Stream &picture = contents.streams[0];
        if (picture.dimensions != std::to_string(format.width) + "x" + std::to_string(format.height))
            fail("it was written, but holds no pictures of the size");
        if ((picture.packets != frames.count() && !playsSlower(encoder, format.rate)) ||
            std::abs(picture.end - length) > tolerance)
            fail("it was written, but holds " + std::to_string(picture.packets) + " of " +
                 std::to_string(frames.count()) + " frames");
        if (!format.music.empty() && !encoder.sound.empty() && std::abs(contents.streams[1].end - length) > 1)
            fail("it was written, but the music is not in it");
    }

    std::filesystem::path target;
    const Encoder &encoder;
    VideoFormat format;
    FrameRange frames;
    UnfinishedFile file;
    Complaints complaints;
    Process process; // ends before the file that it writes is removed
};

} // namespace

bool isVideo(const std::string &extension) {
    return findEncoder(extension) != nullptr;
}

void checkVideo(const std::filesystem::path &target, const std::string &extension, const VideoFormat &format) {
    const Encoder &encoder = *findEncoder(extension);
    if (encoder.halvesColour && (format.width % 2 != 0 || format.height % 2 != 0))
        throw Failure("cannot write " + quoted(target) + ": " + encoder.name +
                      " video needs an even width and height, and " + std::to_string(format.width) + "x" +
                      std::to_string(format.height) + " is odd");
    if (!isInstalled("ffmpeg"))
        throw Failure("cannot write " + quoted(target) + ": videos need ffmpeg, which is not installed");
}

std::unique_ptr<Output> openVideo(const std::filesystem::path &target, const std::string &extension,
                                  const VideoFormat &format, FrameRange frames) {
    const Encoder &encoder = *findEncoder(extension);
    if (playsSlower(encoder, format.rate))
        say(quoted(target) + " shows " + std::to_string(highestGifRate) +
            " frames a second, which is as many as a GIF holds");
    if (!format.music.empty() && encoder.sound.empty())
        say(quoted(target) + " stays without music, since " + encoder.name + " holds none");
    return std::make_unique<Video>(target, encoder, format, frames);
}

double secondsOfMusic(const std::filesystem::path &path) {
    try {
        const InputFile exists(path);
        if (!isInstalled("ffmpeg"))
            throw Failure("music needs ffmpeg, which is not installed");
        const double seconds = contentsOf(path, "0:a:0").streams[0].end;
        if (seconds <= 0)
            throw Failure("it holds no sound");
        return seconds;
    } catch (const Failure &failure) {
        throw Failure("cannot read " + quoted(path) + ": " + failure.what());
    }
}

} // namespace show
