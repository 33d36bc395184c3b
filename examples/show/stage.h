/// \file
/// What one thread needs to draw frames: the surface that becomes the frame, and the host's record from whose blocks
/// the effects have their working memory.
#ifndef QMUR_SHOW_STAGE_H
#define QMUR_SHOW_STAGE_H

#include "surface.h"

#include <memory>

namespace show {

class Space;

class Stage {
public:
    Stage(int width, int height);
    ~Stage();
    Stage(const Stage &) = delete;
    Stage &operator=(const Stage &) = delete;

    const Surface &frame() const { return frameSurface; }

    /// A frame's drawing stands between these two. Blocks that no effect used in between are given back.
    void beginFrame() { BeginMemoryManager(&record); }
    void endFrame() { EndMemoryManager(&record); }

    /// A surface of the frame's size and pitch to work on, for as long as this object lives. Its pixels are what they
    /// happen to be.
    class Plane {
    public:
        explicit Plane(Stage &owner);
        ~Plane() { --stage.planesInUse; }
        Plane(const Plane &) = delete;
        Plane &operator=(const Plane &) = delete;

        operator const Surface &() const { return surface; }
        const Surface *operator->() const { return &surface; }

    private:
        Stage &stage;
        Surface surface;
    };

    /// The first plane that is not in use. It stays allocated for the frames to come while planes are used at all.
    Plane plane() { return Plane(*this); }

    /// The stage's space, made at first use; see space.h.
    Space &space();

private:
    PlaneLayout layout;
    Canvas frameCanvas;
    Surface frameSurface;
    TransferFrameGeometry geometry = {};
    TransferLimits3D limits = {};
    _TRANSFERDATA record = {};
    int planesInUse = 0;
    std::unique_ptr<Space> ownSpace;
};

} // namespace show

#endif
