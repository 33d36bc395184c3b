#include "base/surface.h"
#include "q_Mur/region.h"

namespace {

using namespace qmur;

/// The first column of the span that reaches `x` from the left; behind `x` if the span's row has the boundary there.
template <class Element>
int spanBegin(const Element *row, int x, Element border, int limit) {
    if (row[x] == border)
        return x + 1;
    // Meant: where `x` lies beyond the limit already, the first step is taken all the same.
    do
        --x;
    while (x >= limit && row[x] != border);
    return x + 1;
}

/// The column behind the span that reaches `x` from the right; `x` itself if the row has the boundary there.
template <class Element>
int spanEnd(const Element *row, int x, Element border, int limit) {
    if (row[x] == border)
        return x;
    do
        ++x;
    while (x < limit && row[x] != border);
    return x;
}

template <class Element>
void fillSpan(Element *row, Span span, Element value) {
    for (Distance x = span.begin; x < span.end; ++x)
        row[x] = value;
}

/// What Region_Fill() looks at and does: a colour laid on one surface, the boundary found on another or the same.
struct ColourFill {
    q_ulong *dst;
    Distance dstPitch;
    const q_ulong *test;
    Distance testPitch;
    q_ulong colour;
    q_ulong border;

    const q_ulong *scannedRow(int y) const { return test + y * testPitch; }
    const q_ulong *enteredRow(int y) const { return test + y * testPitch; }
    void paint(int y, Span span) const { fillSpan(dst + y * dstPitch, span, colour); }
    void paintEdge(int y, int x) const { dst[y * dstPitch + x] = colour; }
};

/// What bRegion_Fill() looks at and does: what it lays on the plane is boundary from then on.
struct PlaneFill {
    unsigned char *plane;
    Distance pitch;
    unsigned char border;

    const unsigned char *scannedRow(int y) const { return plane + y * pitch; }
    const unsigned char *enteredRow(int y) const { return plane + y * pitch; }
    void paint(int y, Span span) const { fillSpan(plane + y * pitch, span, border); }
    void paintEdge(int y, int x) const { plane[y * pitch + x] = border; }
};

/// What Region_Src_Fill() looks at and does: pixels brought from one surface to another, the boundary on a plane.
struct SourceFill {
    unsigned char *plane;
    Distance planePitch;
    unsigned char border;
    q_ulong *dst;
    Distance dstPitch;
    const q_ulong *src;
    Distance srcPitch;

    const unsigned char *scannedRow(int y) const { return plane + y * planePitch; }
    // Meant: the rows above and below are found by the pitch of the source.
    const unsigned char *enteredRow(int y) const { return plane + y * srcPitch; }
    void paint(int y, Span span) const {
        q_ulong *const to = dst + y * dstPitch;
        const q_ulong *const from = src + y * srcPitch;
        for (Distance x = span.begin; x < span.end; ++x)
            to[x] = from[x];
    }
    // Meant: the first and the last row are marked on the plane instead of being copied.
    void paintEdge(int y, int x) const { plane[y * planePitch + x] = border; }
};

/// How a span was reached, as the interface numbers it.
enum Direction { atSeed = 0, goingUp = 1, goingDown = 2 };

/// A level of the recursion: a span, and the level it was entered from.
struct Level {
    Span span;
    Level *parent;
};

/// A fill under way. What a level need not keep for itself stands here, the column and row where the walk is and the
/// innermost level included, so that its frame on the stack holds no more than its #Level, this walk's address and its
/// own return. The functions below take nothing but the walk for the same reason.
template <class Fill>
struct Walk {
    Fill fill;
    Span columns;
    int top;
    int bottom; ///< the last row
    int x;
    Level *level; // between x and y: side by side they are moved as a vector, for which frames are kept aligned
    int y;

    const Span &span() const { return level->span; }
    const Span &parent() const { return level->parent->span; }
};

/// The first and the last row, and what lies beyond them, get one pixel and go no further.
template <class Fill>
[[gnu::noinline]] bool markEdge(Walk<Fill> &walk) {
    if (walk.y > walk.top && walk.y < walk.bottom)
        return false;
    // Meant: the pixel at the top goes to row 0, wherever the rectangle begins.
    walk.fill.paintEdge(walk.y <= walk.top ? 0 : walk.bottom, walk.x);
    ++walk.x;
    return true;
}

/// Finds the span through the walk's place, paints it, and makes it the innermost level.
template <class Fill>
[[gnu::noinline]] void open(Walk<Fill> &walk, Level &inner) {
    const auto *const row = walk.fill.scannedRow(walk.y);
    inner.span = {spanBegin(row, walk.x, walk.fill.border, walk.columns.begin),
                  spanEnd(row, walk.x, walk.fill.border, walk.columns.end)};
    inner.parent = walk.level;
    walk.level = &inner;
    walk.fill.paint(walk.y, inner.span);
}

/// Leaves the innermost level for the column behind its span.
template <class Fill>
[[gnu::noinline]] void close(Walk<Fill> &walk) {
    walk.x = walk.span().end;
    walk.level = walk.level->parent;
}

/// Moves on to a column that may be entered, before `end`; false if there is none.
template <class Fill>
bool seekOpen(Walk<Fill> &walk, int end) {
    const auto *const row = walk.fill.enteredRow(walk.y);
    int x = walk.x;
    while (x < end && row[x] == walk.fill.border)
        ++x;
    walk.x = x;
    return x < end;
}

template <class Fill>
[[gnu::noinline]] bool seekOpenInSpan(Walk<Fill> &walk) {
    return seekOpen(walk, walk.span().end);
}

template <class Fill>
[[gnu::noinline]] bool seekOpenBeforeParent(Walk<Fill> &walk) {
    return seekOpen(walk, walk.parent().begin);
}

/// Enters the current row wherever it is open along the span.
template <auto enter, class Fill>
[[gnu::always_inline]] inline void enterAlongSpan(Walk<Fill> &walk) {
    walk.x = walk.span().begin;
    while (seekOpenInSpan(walk))
        enter(walk);
}

/// Enters the current row wherever it is open and the span overhangs its parent's, left before right.
template <auto enter, class Fill>
[[gnu::always_inline]] inline void enterAlongOverhangs(Walk<Fill> &walk) {
    walk.x = walk.span().begin;
    while (seekOpenBeforeParent(walk))
        enter(walk);
    walk.x = walk.parent().end;
    while (seekOpenInSpan(walk))
        enter(walk);
}

// One level each: entered at the walk's place, they leave it at the column behind what they have painted there.

template <class Fill>
[[gnu::noinline]] void descend(Walk<Fill> &walk);

template <class Fill>
[[gnu::noinline]] void climb(Walk<Fill> &walk) {
    if (markEdge(walk))
        return;
    Level level;
    open(walk, level);
    walk.y -= 1;
    enterAlongSpan<climb<Fill>>(walk);
    walk.y += 2;
    enterAlongOverhangs<descend<Fill>>(walk);
    walk.y -= 1;
    close(walk);
}

template <class Fill>
[[gnu::noinline]] void descend(Walk<Fill> &walk) {
    if (markEdge(walk))
        return;
    Level level;
    open(walk, level);
    walk.y -= 1;
    enterAlongOverhangs<climb<Fill>>(walk);
    walk.y += 2;
    enterAlongSpan<descend<Fill>>(walk);
    walk.y -= 1;
    close(walk);
}

template <class Fill>
void startAt(Walk<Fill> &walk, bool spreading) {
    if (markEdge(walk))
        return;
    Level level;
    open(walk, level);
    if (spreading) {
        walk.y -= 1;
        enterAlongSpan<climb<Fill>>(walk);
        walk.y += 2;
        enterAlongSpan<descend<Fill>>(walk);
    }
    close(walk);
}

/// Fills from (x, y) and returns the last column of the span there.
template <class Fill>
int fillRegion(const Fill &fill, const tagRECT &limits, int x, int y, int direction, Span parent) {
    Level outer = {parent, nullptr};
    const Span rows = rowsOf(limits);
    Walk<Fill> walk = {fill, columnsOf(limits), rows.begin, wrapSubtract(rows.end, 1), x, &outer, y};
    switch (direction) {
    case goingUp:
        climb(walk);
        break;
    case goingDown:
        descend(walk);
        break;
    default:
        startAt(walk, direction == atSeed);
    }
    return walk.x - 1;
}

void setSurfaces(_PRIVATE_QMGP_DATA &data, q_ulong *destSurface, int destPitch, q_ulong *testSurface, int testPitch) {
    data.destSurface = destSurface;
    data.destPitch = destPitch;
    data.testSurface = testSurface;
    data.testPitch = testPitch;
}

void setPlane(_PRIVATE_QMGP_DATA &data, unsigned char *plane, tagRECT *planeRect, int planePitch) {
    data.plane = plane;
    data.planeRect = planeRect;
    data.planePitch = planePitch;
}

} // namespace

void SetRegionFill(_PRIVATE_QMGP_DATA *data, q_ulong *destSurface, int destPitch, q_ulong *testSurface, int testPitch) {
    setSurfaces(*data, destSurface, destPitch, testSurface, testPitch);
}

void bSetRegionFill(_PRIVATE_QMGP_DATA *data, unsigned char *plane, tagRECT *planeRect, int planePitch) {
    setPlane(*data, plane, planeRect, planePitch);
}

void SetRegionSrcFill(_PRIVATE_QMGP_DATA *data, q_ulong *destSurface, int destPitch, q_ulong *testSurface,
                      int testPitch, unsigned char *plane, tagRECT *planeRect, int planePitch) {
    setSurfaces(*data, destSurface, destPitch, testSurface, testPitch);
    setPlane(*data, plane, planeRect, planePitch);
}

int scan_left(_PRIVATE_QMGP_DATA *data, int x, int y, q_ulong border, int limit) {
    return spanBegin(pixelAt(data->testSurface, data->testPitch, 0, y), x, border, limit);
}

int scan_right(_PRIVATE_QMGP_DATA *data, int x, int y, q_ulong border, int limit) {
    return spanEnd(pixelAt(data->testSurface, data->testPitch, 0, y), x, border, limit) - 1;
}

int bscan_left(_PRIVATE_QMGP_DATA *data, int x, int y, unsigned char value) {
    return spanBegin(pixelAt(data->plane, data->planePitch, 0, y), x, value, static_cast<int>(data->planeRect->left));
}

int bscan_right(_PRIVATE_QMGP_DATA *data, int x, int y, unsigned char value) {
    return spanEnd(pixelAt(data->plane, data->planePitch, 0, y), x, value, static_cast<int>(data->planeRect->right)) -
           1;
}

int Region_Fill(_PRIVATE_QMGP_DATA *data, int x, int y, q_ulong fill, q_ulong border, int parentLeft, int parentRight,
                int direction, tagRECT *rect) {
    return fillRegion(ColourFill{.dst = data->destSurface,
                                 .dstPitch = data->destPitch,
                                 .test = data->testSurface,
                                 .testPitch = data->testPitch,
                                 .colour = fill,
                                 .border = border},
                      *rect, x, y, direction, {parentLeft, wrapAdd(parentRight, 1)});
}

int bRegion_Fill(_PRIVATE_QMGP_DATA *data, int x, int y, unsigned char value, int parentLeft, int parentRight,
                 int direction) {
    return fillRegion(PlaneFill{data->plane, data->planePitch, value}, *data->planeRect, x, y, direction,
                      {parentLeft, wrapAdd(parentRight, 1)});
}

int Region_Src_Fill(_PRIVATE_QMGP_DATA *data, int x, int y, unsigned char value, int parentLeft, int parentRight,
                    int direction) {
    return fillRegion(SourceFill{.plane = data->plane,
                                 .planePitch = data->planePitch,
                                 .border = value,
                                 .dst = data->destSurface,
                                 .dstPitch = data->destPitch,
                                 .src = data->testSurface,
                                 .srcPitch = data->testPitch},
                      *data->planeRect, x, y, direction, {parentLeft, wrapAdd(parentRight, 1)});
}
