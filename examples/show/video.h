/// \file
/// Frames as a video, by way of ffmpeg.
#ifndef QMUR_SHOW_VIDEO_H
#define QMUR_SHOW_VIDEO_H

#include "output.h"

#include <string>

namespace show {

/// Whether files of this extension, lower case with its dot, are videos.
bool isVideo(const std::string &extension);

/// Throws Failure if the size does not suit the kind of video, or if there is no ffmpeg.
void checkVideo(const std::filesystem::path &target, const std::string &extension, const VideoFormat &format);

std::unique_ptr<Output> openVideo(const std::filesystem::path &target, const std::string &extension,
                                  const VideoFormat &format, FrameRange frames);

/// How many seconds a piece of music lasts, as ffmpeg counts its packets. Throws Failure if there is none in the file.
double secondsOfMusic(const std::filesystem::path &path);

} // namespace show

#endif
