#include "base/surface.h"
#include "q_Mur/region.h"

#include <cstdint>

#if defined(__wasm__)
#include <vector>
#endif

namespace {

using namespace qmur;

/// As many elements as are compared at once, with a border that none of them may be.
template <class Element>
constexpr int comparedAtOnce = 64 / sizeof(Element);

template <class Element>
bool isOpen(const Element *first, Element border) {
    Element found = 0;
    for (int i = 0; i < comparedAtOnce<Element>; ++i)
        found |= static_cast<Element>(first[i] == border);
    return found == 0;
}

/// How far spans go element by element; most of those that end soon have ended by then.
constexpr int fewColumns = 16;

/// Whether as many elements as are compared at once would be read from one line of the cache, and so from no page but
/// that of the first: behind a border there may be nothing that can be read.
template <class Element>
bool beginsLine(const Element *first) {
    return reinterpret_cast<std::uintptr_t>(first) % (comparedAtOnce<Element> * sizeof(Element)) == 0;
}

/// The rest of spanBegin() and spanEnd() for spans that go on.
template <class Element>
[[gnu::noinline]] int farBegin(const Element *row, int x, Element border, int limit) {
    while (x >= limit && row[x] != border && !beginsLine(row + x + 1))
        --x;
    while (beginsLine(row + x + 1) && x - static_cast<long long>(limit) >= comparedAtOnce<Element> &&
           isOpen(row + (x - comparedAtOnce<Element> + 1), border))
        x -= comparedAtOnce<Element>;
    while (x >= limit && row[x] != border)
        --x;
    return x + 1;
}
template <class Element>
[[gnu::noinline]] int farEnd(const Element *row, int x, Element border, int limit) {
    while (x < limit && row[x] != border && !beginsLine(row + x))
        ++x;
    while (beginsLine(row + x) && static_cast<long long>(limit) - x >= comparedAtOnce<Element> &&
           isOpen(row + x, border))
        x += comparedAtOnce<Element>;
    while (x < limit && row[x] != border)
        ++x;
    return x;
}

/// The first column of the span that reaches `x` from the left; behind `x` if the span's row has the boundary there.
template <class Element>
int spanBegin(const Element *row, int x, Element border, int limit) {
    if (row[x] == border)
        return x + 1;
    const int nearLimit = larger(limit, wrapSubtract(x, fewColumns));
    // Meant: where `x` lies beyond the limit already, the first step is taken all the same.
    do
        --x;
    while (x >= nearLimit && row[x] != border);
    return x < limit || x >= nearLimit ? x + 1 : farBegin(row, x, border, limit);
}

/// The column behind the span that reaches `x` from the right; `x` itself if the row has the boundary there.
template <class Element>
int spanEnd(const Element *row, int x, Element border, int limit) {
    if (row[x] == border)
        return x;
    const int nearLimit = smaller(limit, wrapAdd(x, fewColumns));
    do
        ++x;
    while (x < nearLimit && row[x] != border);
    return x >= limit || x < nearLimit ? x : farEnd(row, x, border, limit);
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

/// A fill under way, at a column and row. All that a level of the recursion need not keep for itself stands here. What
/// a level calls besides the next one is kept out of it, lest its frame on the stack grow by what those functions need.
template <class Fill>
class Walk {
public:
    Walk(const Fill &fillToWalk, const tagRECT &limits, int startX, int startY)
        : fill(fillToWalk), columns(columnsOf(limits)), top(static_cast<int>(limits.top)),
          bottom(wrapSubtract(static_cast<int>(limits.bottom), 1)), x(startX), y(startY) {}

    /// Returns the last column of the span that it starts in.
    int run(int direction, Span parent) {
        Level outer = {parent, nullptr};
        level = &outer;
        switch (direction) {
        case goingUp:
            climb();
            break;
        case goingDown:
            descend();
            break;
        default:
            start(direction == atSeed);
        }
        return x - 1;
    }

private:
    /// A span, and the level it was entered from.
    struct Level {
        Span span;
        Level *parent;
    };

    using Step = void (Walk::*)();

    // One level each: entered at the walk's place, they leave it at the column behind what they have painted there.

    void start(bool spreading) {
        if (markEdge())
            return;
        Level own;
        open(own);
        if (spreading) {
            --y;
            enterAlongSpan<&Walk::climb>();
            y += 2;
            enterAlongSpan<&Walk::descend>();
        }
        close();
    }

#if defined(__wasm__)
    // How deep calls may go is an engine's to say there, and it is not deep: what is entered stands in a list.

    /// A span that is being left for its neighbours: three stretches in turn, those of the row above before those of
    /// the row below.
    struct Entered {
        Span span;
        Direction direction;
        int stretch;

        int firstBelow() const { return direction == goingUp ? 1 : 2; }
        bool isAlongSpan() const { return stretch == (direction == goingUp ? 0 : 2); }
        bool isBehindParent() const { return stretch == (direction == goingUp ? 2 : 1); }
        Direction onward() const { return stretch < firstBelow() ? goingUp : goingDown; }
    };
    static constexpr int stretches = 3;

    void climb() {
        enter(goingUp);
    }
    void descend() {
        enter(goingDown);
    }

    void enter(Direction direction) {
        enterSpan(direction);
        while (!entered.empty()) {
            Entered &inner = entered.back();
            const Span parent = entered.size() == 1 ? level->span : entered[entered.size() - 2].span;
            if (inner.stretch == stretches)
                leaveSpan();
            else if (seekOpen(inner.isAlongSpan() || inner.isBehindParent() ? inner.span.end : parent.begin))
                enterSpan(inner.onward());
            else
                beginStretch(inner, inner.stretch + 1, parent);
        }
    }

    void enterSpan(Direction direction) {
        if (markEdge())
            return;
        Level own;
        open(own);
        level = own.parent;
        entered.push_back({own.span, direction, 0});
        beginStretch(entered.back(), 0, own.span);
    }

    void beginStretch(Entered &inner, int stretch, const Span &parent) {
        inner.stretch = stretch;
        y += stretch == inner.firstBelow() ? 2 : stretch == 0 || stretch == stretches ? -1 : 0;
        x = inner.isBehindParent() ? parent.end : inner.span.begin;
    }

    void leaveSpan() {
        x = entered.back().span.end;
        entered.pop_back();
    }

    std::vector<Entered> entered;
#else
    [[gnu::noinline]] void climb() {
        if (markEdge())
            return;
        Level own;
        open(own);
        --y;
        enterAlongSpan<&Walk::climb>();
        y += 2;
        enterAlongOverhangs<&Walk::descend>();
        --y;
        close();
    }

    [[gnu::noinline]] void descend() {
        if (markEdge())
            return;
        Level own;
        open(own);
        --y;
        enterAlongOverhangs<&Walk::climb>();
        y += 2;
        enterAlongSpan<&Walk::descend>();
        --y;
        close();
    }

    /// Enters the current row wherever it is open and the span overhangs its parent's, left before right.
    template <Step enter>
    void enterAlongOverhangs() {
        x = level->span.begin;
        while (seekOpenBeforeParent())
            (this->*enter)();
        x = level->parent->span.end;
        while (seekOpenInSpan())
            (this->*enter)();
    }
    [[gnu::noinline]] bool seekOpenBeforeParent() {
        return seekOpen(level->parent->span.begin);
    }
#endif

    /// Enters the current row wherever it is open along the span.
    template <Step enter>
    void enterAlongSpan() {
        x = level->span.begin;
        while (seekOpenInSpan())
            (this->*enter)();
    }

    /// The first and the last row, and what lies beyond them, get one pixel and go no further.
    [[gnu::noinline]] bool markEdge() {
        if (y > top && y < bottom)
            return false;
        // Meant: the pixel at the top goes to row 0, wherever the rectangle begins.
        fill.paintEdge(y <= top ? 0 : bottom, x);
        ++x;
        return true;
    }

    /// Finds the span through the walk's place, paints it, and makes it the innermost level.
    [[gnu::noinline]] void open(Level &inner) {
        const auto *const row = fill.scannedRow(y);
        inner.span = {spanBegin(row, x, fill.border, columns.begin), spanEnd(row, x, fill.border, columns.end)};
        inner.parent = level;
        level = &inner;
        fill.paint(y, inner.span);
    }

    /// Leaves the innermost level for the column behind its span.
    [[gnu::noinline]] void close() {
        x = level->span.end;
        level = level->parent;
    }

    [[gnu::noinline]] bool seekOpenInSpan() {
        return seekOpen(level->span.end);
    }

    /// Moves on to a column that may be entered, before `end`; false if there is none.
    bool seekOpen(int end) {
        const auto *const row = fill.enteredRow(y);
        while (x < end && row[x] == fill.border)
            ++x;
        return x < end;
    }

    Fill fill;
    Span columns;
    int top;
    int bottom; ///< the last row
    int x;
    int y;
    Level *level = nullptr;
};

template <class Fill>
int fillRegion(const Fill &fill, const tagRECT &limits, int x, int y, int direction, Span parent) {
    return Walk<Fill>(fill, limits, x, y).run(direction, parent);
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
