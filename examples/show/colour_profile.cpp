// By Little CMS, where the system has it.

#include "colour_profile.h"

#include <array>
#include <bit>
#include <memory>
#include <string_view>

#include <lcms2.h>

namespace show {

namespace {

struct Close {
    void operator()(void *profile) const { cmsCloseProfile(profile); }
};
using Profile = std::unique_ptr<void, Close>;

struct Delete {
    void operator()(void *transform) const { cmsDeleteTransform(transform); }
};
using Transform = std::unique_ptr<void, Delete>;

bool isScreen(const Profile &profile) {
    std::array<char, 64> name = {};
    cmsGetProfileInfoASCII(profile.get(), cmsInfoDescription, "en", "US", name.data(), name.size() - 1);
    return std::string_view(name.data()).find("sRGB") != std::string_view::npos;
}

} // namespace

void convertToScreen(const Surface &picture, Bytes bytes) {
    const Profile profile(cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size())));
    if (!profile || cmsGetColorSpace(profile.get()) != cmsSigRgbData || isScreen(profile))
        return;
    const Profile screen(cmsCreate_sRGBProfile());
    const cmsUInt32Number format = std::endian::native == std::endian::little ? TYPE_BGRA_8 : TYPE_ARGB_8;
    const Transform transform(cmsCreateTransform(profile.get(), format, screen.get(), format, INTENT_PERCEPTUAL,
                                                 cmsFLAGS_COPY_ALPHA | cmsFLAGS_NOCACHE));
    for (int y = 0; transform && y < picture.height; ++y)
        cmsDoTransform(transform.get(), picture.at(0, y), picture.at(0, y),
                       static_cast<cmsUInt32Number>(picture.width));
}

} // namespace show
