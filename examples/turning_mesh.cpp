// A lit torus that turns: what the matrix pipeline wants to be called with, in its order.
//
//     qmur-turning-mesh      writes four of its positions into turning-mesh.png
#include <cmath>
#include <q_Mur.h>
#include <vector>

#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb_image_write.h>

constexpr int width = 300, height = 260, stages = 4;
constexpr int bigWidth = 2 * width, bigHeight = 2 * height; // drawn at twice the size, as silhouettes are jagged
constexpr int rows = 32, columns = 64;

int main() {
    Init_qMur_GlobalData(nullptr, nullptr);

    // 1. The record and what it points to: the sizes of the Z plane and of the arrays. What is not named is 0.
    TransferFrameGeometry geometry = {};
    geometry.planeElements = bigWidth * bigHeight;
    TransferLimits3D limits = {};
    limits.vertexArrayEntries = rows * columns;
    limits.matrixStackDepth = 4;
    _TRANSFERDATA record = {};
    record.frameGeometry = &geometry;
    record.limits3D = &limits;

    // 2. The private block hangs in a slot of the record and is freed with it.
    _PRIVATE_QMGL_DATA *pipeline = GetPrivate_QMGL_Data(&record, 0);
    if (!pipeline)
        return 1;

    // 3. The viewport comes before the perspective, which reads it.
    VKD_glViewPort(pipeline, 0, 0, bigWidth, bigHeight);
    // What lies up to zNear before the plane z = 0 is drawn. The viewer's eye is a focal length before it, here 714.
    VKD_gluPerspective(pipeline, 40, 1, 700, 0);

    // Rows run round the tube and columns round the ring: so normals point away from the viewer, as the light does.
    std::vector<_POINT3DFLOAT> torus;
    std::vector<q_ulong> paint;
    const float circle = 2 * std::acos(-1.0F);
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column) {
            const float tube = circle * static_cast<float>(row) / rows;
            const float ring = circle * static_cast<float>(column) / columns;
            const float distance = 170 + 75 * std::cos(tube);
            torus.push_back({distance * std::cos(ring), distance * std::sin(ring), -75 * std::sin(tube), 1});
            paint.push_back(column / 4 % 2 == row / 4 % 2 ? 0xE8A030 : 0x2868B0);
        }

    tagRECT all = {0, 0, bigWidth, bigHeight}, stage = {0, 0, width, height};
    std::vector<q_ulong> frame(bigWidth * bigHeight), sheet(stages * width * height);
    // Where the light shines to: the lamp is at the upper left, before the picture. Of the ambient the length counts.
    _POINT3DFLOAT light = {0.577F, 0.577F, 0.577F, 0};
    _POINT3D ambient = {70, 0, 0, 0};
    for (int i = 0; i < stages; ++i) {
        // 4. For every frame: the Z plane is reset, then the camera is placed.
        iFillRect(frame.data(), &all, bigWidth, 0x181C28);
        VKD_ResetZBuffer(pipeline, &all, bigWidth);
        VKD_glMatrixMode(pipeline, 0);
        VKD_glLoadIdentity(pipeline);
        VKD_gluLookAt(pipeline, 0, 0, 120, 0, 0, 0, 0, 1, 0);
        // 5. For every mesh: its place. A point goes through the calls in their order.
        VKD_glMatrixMode(pipeline, 1);
        VKD_glLoadIdentity(pipeline);
        VKD_glRotatef(pipeline, 30.0F * static_cast<float>(i), 0, 0, 1);
        VKD_glRotatef(pipeline, 30.0F + 25.0F * static_cast<float>(i), 1, 0.4F, 0);
        // 6. Points and colours are overwritten, so copies are handed over. Mind the order of rows and columns.
        std::vector<_POINT3DFLOAT> points = torus;
        std::vector<q_ulong> colours = paint;
        VKD_Mapping3Dto2D(pipeline, points.data(), rows, columns);
        VKD_Render_3D_Surface(pipeline, frame.data(), &all, bigWidth, points.data(), colours.data(), 1, 1, columns,
                              rows, &light, nullptr, &ambient, 0.7F, 4, 0);
        // Each pixel is mixed with its right and its lower neighbour, then every other one is taken.
        tagRECT mixed = {0, 0, bigWidth - 1, bigHeight - 1};
        iBltFast32Alpha(frame.data(), frame.data() + 1, 0, 0, &mixed, bigWidth, bigWidth, 0.5F);
        iBltFast32Alpha(frame.data(), frame.data() + bigWidth, 0, 0, &mixed, bigWidth, bigWidth, 0.5F);
        iBltNear32(sheet.data() + i * width, frame.data(), &stage, &all, stages * width, bigWidth);
    }
    DeleteMemoryBlocks(&record);

    std::vector<unsigned char> bytes;
    for (const q_ulong pixel : sheet)
        for (const int shift : {16, 8, 0})
            bytes.push_back(static_cast<unsigned char>(pixel >> shift));
    return stbi_write_png("turning-mesh.png", stages * width, height, 3, bytes.data(), 0) ? 0 : 1;
}
