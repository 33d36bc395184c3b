#include "support/chosen_set.h"
#include "worker.h"

#include <q_Mur.h>

#include <cstdio>
#include <cstdlib>

namespace peers {
namespace {

q_ulong *words(const Surface &surface) {
    return reinterpret_cast<q_ulong *>(surface.pixels);
}

tagRECT rectOf(const Surface &surface) {
    return {0, 0, surface.width, surface.height};
}

/// The host's record with a Z plane for a picture, and the pipeline's block in it.
_PRIVATE_QMGL_DATA *pipeline(const Surface &dst) {
    static _TRANSFERDATA record = {};
    static TransferFrameGeometry geometry = {};
    static TransferLimits3D limits = {};
    FreeMemoryBlocks(&record);
    geometry.planeElements = static_cast<int>(dst.size());
    limits.vertexArrayEntries = Mesh::rows * Mesh::columns;
    limits.matrixStackDepth = 1;
    record.frameGeometry = &geometry;
    record.limits3D = &limits;
    _PRIVATE_QMGL_DATA *data = GetPrivate_QMGL_Data(&record, 0);
    if (!data)
        std::abort();
    VKD_glViewPort(data, 0, 0, dst.width, dst.height);
    VKD_gluPerspective(data, 45, 1, 0, 0);
    return data;
}

Run fill(const Stage &stage) {
    return
        [dst = stage.dst, rect = rectOf(stage.dst)]() mutable { iFillRect(words(dst), &rect, dst.width, fillColour); };
}

Run copy(const Stage &stage) {
    return [stage, rect = rectOf(stage.src)]() mutable {
        iBltFast32(words(stage.dst), words(stage.src), 0, 0, &rect, stage.dst.width, stage.src.width);
    };
}

Run add(const Stage &stage) {
    return [stage, rect = rectOf(stage.src)]() mutable {
        iBltFast32_Add(words(stage.dst), words(stage.src), 0, 0, &rect, stage.dst.width, stage.src.width);
    };
}

Run fade(const Stage &stage) {
    return [dst = stage.dst, rect = rectOf(stage.dst)]() mutable {
        iFadeOut32(words(dst), &rect, dst.width, fadeFactor / 256.0F);
    };
}

Run blendConstant(const Stage &stage) {
    return [stage, rect = rectOf(stage.src)]() mutable {
        iBltFast32Alpha(words(stage.dst), words(stage.src), 0, 0, &rect, stage.dst.width, stage.src.width,
                        constantAlpha / 256.0F);
    };
}

Run blend(const Stage &stage) {
    return [stage, rect = rectOf(stage.src), clip = rectOf(stage.dst)]() mutable {
        iBltFast32AlphaChannelSafe(words(stage.dst), words(stage.src), 0, 0, &rect, &clip, stage.dst.width,
                                   stage.src.width);
    };
}

Run copyKeyed(const Stage &stage) {
    return [stage, rect = rectOf(stage.src)]() mutable {
        iBltFast32_KeySrc(words(stage.dst), words(stage.src), 0, 0, &rect, static_cast<q_ulong>(stage.dst.width),
                          static_cast<q_ulong>(stage.src.width), keyColour);
    };
}

Run scaleNearest(const Stage &stage) {
    return [stage, to = rectOf(stage.dst), from = rectOf(stage.src)]() mutable {
        iBltNear32(words(stage.dst), words(stage.src), &to, &from, stage.dst.width, stage.src.width);
    };
}

Run scaleFiltered(const Stage &stage) {
    return [stage, to = rectOf(stage.dst), from = rectOf(stage.src)]() mutable {
        iBltBilinear32(words(stage.dst), words(stage.src), &to, &from, static_cast<q_ulong>(stage.dst.width),
                       static_cast<q_ulong>(stage.src.width));
    };
}

template <auto &rotator>
Run rotate(const Stage &stage) {
    return [stage, clip = rectOf(stage.dst), from = rectOf(stage.src)]() mutable {
        rotator(words(stage.dst), stage.dst.width, words(stage.src), stage.src.width, &clip, &from, stage.dst.width / 2,
                stage.dst.height / 2, static_cast<float>(rotationAngle), static_cast<float>(rotationScale));
    };
}

Run boxBlur(const Stage &stage) {
    return [stage, rect = rectOf(stage.dst)]() mutable {
        Blur_Rect(words(stage.dst), &rect, stage.dst.width, static_cast<int>(stage.amount));
    };
}

Run gaussianBlur(const Stage &stage) {
    return [stage, sigma = static_cast<float>(stage.amount)] {
        const Surface &dst = stage.dst;
        Hor_GaussBlur(words(stage.scratch), words(stage.src), sigma, dst.width, dst.height, dst.width);
        Ver_GaussBlur(words(dst), words(stage.scratch), sigma, dst.width, dst.height, dst.width);
    };
}

Run drawLines(const Stage &stage) {
    return [dst = stage.dst, clip = rectOf(stage.dst)]() mutable {
        for (const Line &line : lines())
            iLine_AntiAliasing(words(dst), &clip, dst.width, line.x1, line.y1, line.x2, line.y2, line.colour, 1);
    };
}

Run drawCircles(const Stage &stage) {
    return [dst = stage.dst, clip = rectOf(stage.dst)]() mutable {
        for (const Circle &circle : circles())
            iFill_Circle_Safe(words(dst), &clip, dst.width, circle.x, circle.y, circle.radius, circle.colour);
    };
}

Run drawTriangles(const Stage &stage) {
    const std::vector<Vertex> given = triangles(static_cast<int>(stage.amount));
    std::vector<_POINT3DFLOAT> points;
    std::vector<q_ulong> colours;
    for (const Vertex &vertex : given) {
        points.push_back({vertex.x, vertex.y, vertex.z, 0});
        colours.push_back(vertex.colour & 0xFFFFFF);
    }
    return [dst = stage.dst, data = pipeline(stage.dst), clip = rectOf(stage.dst), points, colours]() mutable {
        VKD_ResetZBuffer(data, &clip, dst.width);
        for (std::size_t i = 0; i < points.size(); i += 3)
            VKD_Render_Tri(data, words(dst), &clip, dst.width, &points[i], &points[i + 1], &points[i + 2], &colours[i],
                           &colours[i + 1], &colours[i + 2]);
    };
}

Run drawMesh(const Stage &stage) {
    std::vector<_POINT3DFLOAT> points;
    for (const Vertex &vertex : mesh(stage.dst).points)
        points.push_back({vertex.x, vertex.y, vertex.z, 0});
    return [stage, data = pipeline(stage.dst), points]() mutable {
        tagRECT clip = rectOf(stage.dst), part = {0, 0, stage.src.width - 2, stage.src.height - 2};
        _POINT3DFLOAT light = {Mesh::light[0], Mesh::light[1], Mesh::light[2], 0};
        _POINT3D ambient = {static_cast<int>(Mesh::ambient * 256), 0, 0, 0};
        VKD_ResetZBuffer(data, &clip, stage.dst.width);
        VKD_Render_Texture_3D(data, words(stage.dst), words(stage.src), &clip, &part,
                              static_cast<q_ulong>(stage.dst.width), static_cast<q_ulong>(stage.src.width),
                              points.data(), Mesh::rows, Mesh::columns, &light, nullptr, &ambient, Mesh::specular,
                              Mesh::shininess);
    };
}

} // namespace

Peer peer(const std::string &set) {
    Init_qMur_GlobalData(nullptr, nullptr);
    if (const std::string reason = set.empty() ? "" : test::runOnSet(set); !reason.empty()) {
        std::fprintf(stderr, "%s\n", reason.c_str());
        std::exit(2);
    }
    const std::string inUse = test::setInUse();
    return {"q_Mur " + inUse.substr(0, inUse.find(' ')),
            {{"fill", "iFillRect", fill},
             {"copy", "iBltFast32", copy},
             {"add", "iBltFast32_Add", add},
             {"fade", "iFadeOut32", fade},
             {"constant alpha", "iBltFast32Alpha", blendConstant},
             {"pixel alpha", "iBltFast32AlphaChannelSafe", blend},
             {"colour key", "iBltFast32_KeySrc", copyKeyed},
             {"nearest", "iBltNear32", scaleNearest},
             {"bilinear", "iBltBilinear32", scaleFiltered},
             {"rotation, nearest", "iBltNear32_Z_Roto", rotate<iBltNear32_Z_Roto>},
             {"rotation, bilinear", "iBltLinear32_Z_Roto", rotate<iBltLinear32_Z_Roto>},
             {"box blur", "Blur_Rect", boxBlur},
             {"Gaussian blur", "Hor_GaussBlur, Ver_GaussBlur", gaussianBlur},
             {"lines", "iLine_AntiAliasing", drawLines},
             {"circles", "iFill_Circle_Safe", drawCircles},
             {"shaded triangles with depth", "VKD_Render_Tri", drawTriangles},
             {"lit textured mesh with depth", "VKD_Render_Texture_3D", drawMesh}}};
}

} // namespace peers
