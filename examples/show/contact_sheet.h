/// \file
/// Frames of the whole show side by side on one picture.
#ifndef QMUR_SHOW_CONTACT_SHEET_H
#define QMUR_SHOW_CONTACT_SHEET_H

#include "output.h"
#include "unfinished_file.h"

namespace show {

/// Up to 20 frames from evenly spaced moments, in rows of four, on a dark sheet.
class ContactSheet : public Output {
public:
    ContactSheet(const std::filesystem::path &target, int frameWidth, int frameHeight, FrameRange frames);

    bool wants(int frame) const override;
    EncodedFrame encode(const Surface &frame) const override;
    void write(int frame, const EncodedFrame &encoded) override;
    std::string finish() override;

private:
    std::filesystem::path target;
    UnfinishedFile file;
    std::vector<int> chosen;
    int columns;
    int pictureWidth;
    int pictureHeight;
    Canvas sheet;
    int placed = 0;
};

} // namespace show

#endif
