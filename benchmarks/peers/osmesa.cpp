#define GL_GLEXT_PROTOTYPES
#include "worker.h"

#include <GL/osmesa.h>

#include <GL/glext.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace peers {
namespace {

/// A context that draws into a picture and over what it holds, one pixel of it for a unit, the first row first.
void drawInto(const Surface &dst) {
    static const OSMesaContext context = OSMesaCreateContextExt(OSMESA_BGRA, 16, 0, 0, nullptr);
    if (!context || !OSMesaMakeCurrent(context, dst.pixels, GL_UNSIGNED_BYTE, dst.width, dst.height))
        std::abort();
    glViewport(0, 0, dst.width, dst.height);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, dst.width, 0, dst.height, 0, -32767); // z grows away from the viewer
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslatef(-0.47F, 0.47F, 0); // from corners of pixels, whose whole part counts, to their middles
    for (const GLenum on : {GL_DITHER, GL_LIGHTING, GL_TEXTURE_2D, GL_DEPTH_TEST})
        glDisable(on);
    const std::vector<Pixel> picture(dst.pixels, dst.pixels + dst.size()); // the context's own is another one
    glWindowPos2i(0, 0);
    glDrawPixels(dst.width, dst.height, GL_BGRA, GL_UNSIGNED_BYTE, picture.data());
    glEnable(GL_DEPTH_TEST);
}

/// Vertices stay in a buffer object of the library's own.
template <class Element>
void upload(GLenum target, const std::vector<Element> &elements) {
    GLuint buffer = 0;
    glGenBuffers(1, &buffer);
    glBindBuffer(target, buffer);
    glBufferData(target, static_cast<GLsizeiptr>(elements.size() * sizeof(Element)), elements.data(), GL_STATIC_DRAW);
}

const void *offset(std::size_t bytes) {
    return reinterpret_cast<const void *>(bytes);
}

Run drawTriangles(const Stage &stage) {
    drawInto(stage.dst);
    const std::vector<Vertex> vertices = triangles(static_cast<int>(stage.amount));
    upload(GL_ARRAY_BUFFER, vertices);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    glVertexPointer(3, GL_FLOAT, sizeof(Vertex), offset(0));
    glColorPointer(GL_BGRA, GL_UNSIGNED_BYTE, sizeof(Vertex), offset(offsetof(Vertex, colour)));
    return [count = static_cast<GLsizei>(vertices.size())] {
        glClear(GL_DEPTH_BUFFER_BIT);
        glDrawArrays(GL_TRIANGLES, 0, count);
        glFinish();
    };
}

/// A vertex that brings its normal along.
struct MeshVertex {
    float x, y, z, normal[3], s, t;
};

Run drawMesh(const Stage &stage) {
    drawInto(stage.dst);
    const Mesh sheet = mesh(stage.dst);
    const auto point = [&](int row, int column) {
        return sheet.points[static_cast<std::size_t>(std::clamp(row, 0, Mesh::rows - 1) * Mesh::columns +
                                                     std::clamp(column, 0, Mesh::columns - 1))];
    };
    std::vector<MeshVertex> vertices;
    std::vector<std::uint16_t> indices;
    const auto last = [](int size, int texture) {
        return static_cast<float>(texture - 2) / static_cast<float>(texture) / static_cast<float>(size - 1);
    };
    for (int row = 0; row < Mesh::rows; ++row) {
        for (int column = 0; column < Mesh::columns; ++column) {
            const Vertex at = point(row, column);
            const Vertex left = point(row, column - 1), right = point(row, column + 1);
            const Vertex above = point(row - 1, column), below = point(row + 1, column);
            // Of a height over a flat grid.
            const float x = -(right.z - left.z) / (right.x - left.x), y = -(below.z - above.z) / (below.y - above.y);
            const float length = std::sqrt(x * x + y * y + 1);
            vertices.push_back({at.x,
                                at.y,
                                at.z,
                                {x / length, y / length, 1 / length},
                                static_cast<float>(column) * last(Mesh::columns, stage.src.width),
                                static_cast<float>(row) * last(Mesh::rows, stage.src.height)});
            if (row == 0 || column == 0)
                continue;
            const int corner = row * Mesh::columns + column;
            for (const int index : {corner - Mesh::columns - 1, corner - Mesh::columns, corner - 1,
                                    corner - Mesh::columns, corner, corner - 1})
                indices.push_back(static_cast<std::uint16_t>(index));
        }
    }
    upload(GL_ARRAY_BUFFER, vertices);
    upload(GL_ELEMENT_ARRAY_BUFFER, indices);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glDisableClientState(GL_COLOR_ARRAY);
    glVertexPointer(3, GL_FLOAT, sizeof(MeshVertex), offset(0));
    glNormalPointer(GL_FLOAT, sizeof(MeshVertex), offset(offsetof(MeshVertex, normal)));
    glTexCoordPointer(2, GL_FLOAT, sizeof(MeshVertex), offset(offsetof(MeshVertex, s)));

    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, stage.src.width, stage.src.height, 0, GL_BGRA, GL_UNSIGNED_BYTE,
                 stage.src.pixels);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glEnable(GL_TEXTURE_2D);

    // The normals point away from the viewer, and so does the light.
    const float direction[4] = {Mesh::light[0], Mesh::light[1], Mesh::light[2], 0};
    const float white[4] = {1, 1, 1, 1}, black[4] = {0, 0, 0, 1};
    const float ambient[4] = {Mesh::ambient, Mesh::ambient, Mesh::ambient, 1};
    const float specular[4] = {Mesh::specular, Mesh::specular, Mesh::specular, 1};
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
    glLightfv(GL_LIGHT0, GL_POSITION, direction);
    glLightfv(GL_LIGHT0, GL_DIFFUSE, white);
    glLightfv(GL_LIGHT0, GL_AMBIENT, black);
    glLightfv(GL_LIGHT0, GL_SPECULAR, white);
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, ambient);
    glLightModeli(GL_LIGHT_MODEL_COLOR_CONTROL, GL_SEPARATE_SPECULAR_COLOR);
    glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE, white);
    glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, specular);
    glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, 1 << Mesh::shininess);
    return [count = static_cast<GLsizei>(indices.size())] {
        glClear(GL_DEPTH_BUFFER_BIT);
        glDrawElements(GL_TRIANGLES, count, GL_UNSIGNED_SHORT, nullptr);
        glFinish();
    };
}

} // namespace

Peer peer(const std::string &) {
    setenv("LP_NUM_THREADS", "0", 1);
    setenv("GALLIUM_DRIVER", "llvmpipe", 1);
    static Pixel pixel[16];
    drawInto({pixel, 4, 4});
    const std::string version = reinterpret_cast<const char *>(glGetString(GL_VERSION));
    return {"llvmpipe" + version.substr(version.rfind(' ')),
            {{"shaded triangles with depth", "glDrawArrays", drawTriangles},
             {"lit textured mesh with depth", "glDrawElements, GL_LIGHTING, GL_TEXTURE_2D", drawMesh}}};
}

} // namespace peers
