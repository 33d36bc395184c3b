#include "worker.h"

#include <cstring>
#include <cwchar>

// No library of pictures: what the bare memory takes.

namespace peers {

Peer peer(const std::string &) {
    return {"memory",
            {{"fill", "wmemset",
              [](const Stage &stage) -> Run {
                  static_assert(sizeof(wchar_t) == sizeof(Pixel));
                  return [dst = stage.dst] {
                      std::wmemset(reinterpret_cast<wchar_t *>(dst.pixels), static_cast<wchar_t>(fillColour),
                                   dst.size());
                  };
              }},
             {"copy", "memcpy", [](const Stage &stage) -> Run {
                  return [stage] { std::memcpy(stage.dst.pixels, stage.src.pixels, stage.dst.size() * 4); };
              }}}};
}

} // namespace peers
