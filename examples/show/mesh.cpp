#include "mesh.h"

#include "painting.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace show {

namespace {

constexpr float openingDegrees = 36;
/// As near as a mesh may come, in canvas heights before the plane of the picture.
constexpr float nearest = 1.2F;
/// By how much depths differ that must not be taken for each other.
constexpr int nearer = 2;
/// How many pixels of the canvas wide cells are at most that are seen from the side.
constexpr double thin = 3;

/// iBltNear32() holds sources of fewer than 4096 pixels.
constexpr int widestTile = 2048;

/// How often a ground's pictures are halved.
constexpr int halvings = 2;
constexpr int smallPerFrame = 1 << halvings;

int cells(double length, double cellSize) {
    return std::clamp(static_cast<int>(length / std::max(cellSize, 2.0)), 4, 160);
}

/// The library takes the ambient light as the length of a vector.
_POINT3D ambientOf(const MeshLight &light) {
    return {static_cast<int>(light.ambient * 256 + 0.5), 0, 0, 0};
}

} // namespace

Mesh Mesh::over(double width, double height, double cellWidth, double cellHeight) {
    const int rows = cells(height, cellHeight) + 1;
    const int columns = cells(width, cellWidth) + 1;
    return {rows, columns, std::vector<_POINT3DFLOAT>(static_cast<std::size_t>(rows * columns))};
}

double MeshLight::ambientBeside(const _POINT3DFLOAT &direction) {
    return 1 - std::max(direction.z, -direction.z);
}

MeshCanvas::MeshCanvas(int width, int height, std::size_t vertices) : layout{width * scale, height * scale} {
    geometry.planeElements = layout.elements();
    geometry.originElement = layout.origin();
    limits.vertexArrayEntries = static_cast<int>(vertices);
    limits.matrixStackDepth = 1;
    record.frameGeometry = &geometry;
    record.limits3D = &limits;
    constexpr int planeOfPixels = -1;
    void *const pixels = FindNotUsedMemory(&record, 0, planeOfPixels);
    // A failure frees the record's other blocks.
    data = pixels ? GetPrivate_QMGL_Data(&record, 1) : nullptr;
    if (!data)
        throw std::bad_alloc();
    canvas = layout.at(static_cast<q_ulong *>(pixels));
    VKD_glViewPort(data, 0, 0, canvas.width, canvas.height);
    const auto depth = static_cast<float>(canvas.height);
    VKD_gluPerspective(data, openingDegrees, 1, nearest * depth, nearest * depth);
}

void MeshCanvas::fill(const Surface &ground) const {
    for (int left = 0; left < ground.width; left += widestTile)
        for (int top = 0; top < ground.height; top += widestTile) {
            const int right = std::min(left + widestTile, ground.width);
            const int bottom = std::min(top + widestTile, ground.height);
            tagRECT dstRect = {left * scale, top * scale, right * scale, bottom * scale};
            tagRECT srcRect = {left, top, right, bottom};
            iBltNear32(canvas.pixels, ground.pixels, &dstRect, &srcRect, canvas.pitch, ground.pitch);
        }
    tagRECT whole = canvas.rect();
    VKD_ResetZBuffer(data, &whole, canvas.pitch);
}

void MeshCanvas::draw(Mesh &mesh, const Surface &front, const MeshLight &light) const {
    tagRECT clip = canvas.rect();
    tagRECT picture = front.rect();
    _POINT3DFLOAT direction = light.direction;
    _POINT3D ambient = ambientOf(light);
    VKD_Render_Texture_3D(data, canvas.pixels, front.pixels, &clip, &picture, canvas.unsignedPitch(),
                          front.unsignedPitch(), mesh.data(), mesh.rows, mesh.columns, &direction, nullptr, &ambient,
                          static_cast<float>(light.specular), light.shininess);
}

void MeshCanvas::draw(Mesh &mesh, const Surface &front, const Surface &back, const MeshLight &light) const {
    tagRECT clip = canvas.rect();
    tagRECT picture = front.rect();
    _POINT3DFLOAT direction = light.direction;
    _POINT3D ambient = ambientOf(light);
    VKD_Render_Texture_3D(data, canvas.pixels, front.pixels, back.pixels, &clip, &picture, canvas.unsignedPitch(),
                          front.unsignedPitch(), mesh.data(), mesh.rows, mesh.columns, &direction, nullptr, &ambient,
                          static_cast<float>(light.specular), light.shininess);
    drawOutline(mesh, front);
}

void MeshCanvas::drawOutline(const Mesh &mesh, const Surface &front) const {
    const int rows = mesh.rows - 1;
    const int columns = mesh.columns - 1;
    for (int row = 0; row < rows; ++row) {
        // Positive where the front is seen.
        const auto widthOf = [&](int column) {
            const _POINT3DFLOAT &a = mesh.at(row, column);
            const _POINT3DFLOAT &b = mesh.at(row, column + 1);
            const _POINT3DFLOAT &c = mesh.at(row + 1, column + 1);
            const double x = c.x - b.x;
            const double y = c.y - b.y;
            return ((b.x - a.x) * y - (b.y - a.y) * x) / (std::sqrt(x * x + y * y) + 1);
        };
        for (int column = 0; column < columns; ++column) {
            const double width = widthOf(column);
            const bool isFront = width > 0;
            const bool bordersOther = (column > 0 && (widthOf(column - 1) > 0) != isFront) ||
                                      (column + 1 < columns && (widthOf(column + 1) > 0) != isFront);
            if (bordersOther && width > -thin)
                drawCell(mesh, front, row, column);
        }
    }
}

void MeshCanvas::drawCell(const Mesh &mesh, const Surface &picture, int row, int column) const {
    const int rows = mesh.rows - 1;
    const int columns = mesh.columns - 1;
    const int left = column * picture.width / columns;
    const int right = ((column + 1) * picture.width / columns - left) * 16;
    const int top = row * picture.height / rows;
    const int bottom = ((row + 1) * picture.height / rows - top) * 16;
    // Counted from the cell's corner: positions have room for 512 texels.
    _POINTINT texels[] = {{0, 0}, {right, 0}, {right, bottom}, {0, bottom}};
    const int first = row * mesh.columns + column;
    const int vertices[] = {first, first + 1, first + 1 + mesh.columns, first + mesh.columns};
    _POINT3DFLOAT points[4];
    int add[4];
    int mul[4];
    for (int i = 0; i < 4; ++i) {
        points[i] = mesh.points[static_cast<std::size_t>(vertices[i])];
        points[i].z -= nearer;
        add[i] = data->vertexArray0[vertices[i]];
        mul[i] = data->vertexArray1[vertices[i]];
    }
    tagRECT clip = canvas.rect();
    constexpr q_ulong filtered = 0x200;
    VKD_i3D_Blt_Rect(data, canvas.pixels, &points[0], &points[1], &points[2], &points[3], picture.at(left, top),
                     &texels[0], &texels[1], &texels[2], &texels[3], &clip, canvas.unsignedPitch(),
                     picture.unsignedPitch(), add[0], add[1], add[2], add[3], mul[0], mul[1], mul[2], mul[3], filtered);
}

void MeshCanvas::drawRim(const Mesh &mesh, q_ulong colour) const {
    tagRECT clip = canvas.rect();
    const auto lit = [&](int vertex) {
        return eachChannel([&](int shift) {
            return channelOf(colour, shift) * data->vertexArray1[vertex] / 256 + data->vertexArray0[vertex];
        });
    };
    const auto line = [&](int from, int to) {
        const auto end = [&](int vertex) {
            const _POINT3DFLOAT &point = mesh.points[static_cast<std::size_t>(vertex)];
            // Before the picture, which has the same depth.
            return _POINT3D{static_cast<int>(point.x), static_cast<int>(point.y),
                            static_cast<int>(point.z) - 2 * nearer, 0};
        };
        _POINT3D a = end(from);
        _POINT3D b = end(to);
        q_ulong litColour = lit(from);
        VKD_3D_Line(data, canvas.pixels, &clip, canvas.unsignedPitch(), &a, &b, &litColour, &litColour);
    };
    const int lastRow = (mesh.rows - 1) * mesh.columns;
    for (int column = 0; column + 1 < mesh.columns; ++column) {
        line(column, column + 1);
        line(lastRow + column, lastRow + column + 1);
    }
    for (int first = 0; first < lastRow; first += mesh.columns) {
        const int last = first + mesh.columns - 1;
        line(first, first + mesh.columns);
        line(last, last + mesh.columns);
    }
}

void blendEnds(const Surface &out, const Surface &before, const Surface &after, double t) {
    constexpr double time = 0.08;
    const double share = 1 - std::min(t, 1 - t) / time;
    if (share <= 0)
        return;
    const Surface &photo = t < 0.5 ? before : after;
    blend(out, photo, share);
}

Ground::Ground(Stage &stage, const Surface &first, const Surface &second, double t, double brightness)
    : plane(stage.plane()) {
    const Stage::Plane half = stage.plane();
    const Stage::Plane other = stage.plane();
    const auto reduce = [&half](const Surface &result, const Surface &picture) {
        const Surface large = half->cropped((picture.width + 1) / 2, (picture.height + 1) / 2);
        drawHalved(large, picture);
        const Surface quarter = result.cropped((large.width + 1) / 2, (large.height + 1) / 2);
        drawHalved(quarter, large);
        return quarter;
    };
    small = reduce(plane, first);
    if (t > 0)
        blend(small, reduce(other, second), t);
    // Two boxes make a tent, whose corners do not show.
    blur(small, small.height / 20, 2);
    dim(small, brightness);
}

void Ground::castShadow(Stage &stage, const Mesh &mesh, double offsetX, double offsetY, double opacity) const {
    const Stage::Plane first = stage.plane();
    const Stage::Plane second = stage.plane();
    const Surface shadow = first->cropped(small.width, small.height);
    tagRECT whole = shadow.rect();
    show::fill(shadow, 0);

    // Far outside the frame a mesh is no longer where it should be, but without its shadow there either way.
    const auto place = [&](const _POINT3DFLOAT &point) {
        constexpr double smallest = 1.0 / (MeshCanvas::scale * smallPerFrame);
        const auto bounded = [](double position) { return static_cast<q_long>(std::clamp(position, -2048.0, 4096.0)); };
        return tagPOINT{bounded((point.x + offsetX * MeshCanvas::scale) * smallest),
                        bounded((point.y + offsetY * MeshCanvas::scale) * smallest)};
    };
    q_ulong black = opacityOf(clampUnit(opacity) * 255);
    for (int row = 0; row + 1 < mesh.rows; ++row)
        for (int column = 0; column + 1 < mesh.columns; ++column) {
            tagPOINT corners[] = {place(mesh.at(row, column)), place(mesh.at(row, column + 1)),
                                  place(mesh.at(row + 1, column + 1)), place(mesh.at(row + 1, column))};
            Rect_Safe(shadow.pixels, &whole, shadow.pitch, &corners[0], &corners[1], &corners[2], &corners[3], &black);
        }

    blurWithOpacity(shadow, second, small.height / 8, 2);
    lay(small, shadow, 0, 0);
}

void Ground::fill(const Surface &out) const {
    // Where a plane's margin is not written, it holds what it happens to hold.
    extendEdges(small);
    drawView(out, small,
             {0, 0, static_cast<double>(out.width) / smallPerFrame, static_cast<double>(out.height) / smallPerFrame});
}

} // namespace show
