#include "video.h"

#include "failure.h"
#include "process.h"
#include "unfinished_file.h"

#include <cstring>

namespace show {

namespace {

struct Encoder {
    const char *extension;
    const char *container;
    bool halvesColour; ///< colour is stored at half the size, which takes even sides
    std::vector<std::string> arguments;
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

const std::vector<Encoder> &encoders() {
    static const std::vector<Encoder> list = {
        {".mp4", "mp4", true,
         withColours({"-c:v", "libx264", "-preset", "fast", "-crf", "18", "-movflags", "+faststart"})},
        {".webm", "webm", true,
         withColours(
             {"-c:v", "libvpx-vp9", "-crf", "30", "-b:v", "0", "-deadline", "good", "-cpu-used", "4", "-row-mt", "1"})},
        // A palette for each frame needs no second reading of the frames.
        {".gif", "gif", false, {"-vf", "split[a][b];[a]palettegen=stats_mode=single[p];[b][p]paletteuse=new=1"}},
    };
    return list;
}

const Encoder *findEncoder(const std::string &extension) {
    for (const Encoder &encoder : encoders())
        if (encoder.extension == extension)
            return &encoder;
    return nullptr;
}

std::vector<std::string> commandFor(const Encoder &encoder, const VideoFormat &format,
                                    const std::filesystem::path &path) {
    std::vector<std::string> command = {"ffmpeg",
                                        "-hide_banner",
                                        "-loglevel",
                                        "error",
                                        "-y",
                                        "-f",
                                        "rawvideo",
                                        "-pixel_format",
                                        "bgr0",
                                        "-video_size",
                                        std::to_string(format.width) + "x" + std::to_string(format.height),
                                        "-framerate",
                                        std::to_string(format.framesPerSecond),
                                        "-i",
                                        "pipe:0"};
    command.insert(command.end(), encoder.arguments.begin(), encoder.arguments.end());
    command.insert(command.end(), {"-f", encoder.container, "file:" + path.string()});
    return command;
}

class Video : public Output {
public:
    Video(const std::filesystem::path &target, const Encoder &encoder, const VideoFormat &format)
        : name(target.string()), file(target), ffmpeg(commandFor(encoder, format, file.path())) {}

    EncodedFrame encode(const Surface &frame) const override {
        const std::size_t rowSize = static_cast<std::size_t>(frame.width) * sizeof(q_ulong);
        EncodedFrame encoded;
        encoded.bytes.resize(rowSize * static_cast<std::size_t>(frame.height));
        for (int y = 0; y < frame.height; ++y)
            std::memcpy(encoded.bytes.data() + static_cast<std::size_t>(y) * rowSize, frame.at(0, y), rowSize);
        return encoded;
    }

    void write(int, const EncodedFrame &encoded) override {
        if (!ffmpeg.write(encoded.bytes.data(), encoded.bytes.size())) {
            ffmpeg.finish();
            fail();
        }
    }

    void finish() override {
        if (!ffmpeg.finish())
            fail();
        file.finish();
    }

private:
    [[noreturn]] void fail() const {
        const std::string reason = ffmpeg.lastWords();
        throw Failure("cannot write '" + name + "': ffmpeg failed" + (reason.empty() ? "" : " (" + reason + ")"));
    }

    std::string name;
    UnfinishedFile file;
    Process ffmpeg; // ends before the file that it writes is removed
};

} // namespace

bool isVideo(const std::string &extension) {
    return findEncoder(extension) != nullptr;
}

void checkVideo(const std::filesystem::path &target, const std::string &extension, const VideoFormat &format) {
    if (findEncoder(extension)->halvesColour && (format.width % 2 != 0 || format.height % 2 != 0))
        throw Failure("cannot write '" + target.string() + "': an " + extension.substr(1) +
                      " video needs an even width and height, and " + std::to_string(format.width) + "x" +
                      std::to_string(format.height) + " is odd");
    if (!canStartPrograms())
        throw Failure("cannot write '" + target.string() + "': this build writes .png only, videos take ffmpeg's pipe");
    if (!isInstalled("ffmpeg"))
        throw Failure("cannot write '" + target.string() + "': videos need ffmpeg, which is not installed");
}

std::unique_ptr<Output> openVideo(const std::filesystem::path &target, const std::string &extension,
                                  const VideoFormat &format) {
    return std::make_unique<Video>(target, *findEncoder(extension), format);
}

} // namespace show
