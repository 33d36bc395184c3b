#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include "text.h"

#include <algorithm>
#include <cstring>

namespace {

using namespace qmur;

/// A text drawn by GDI into a bitmap of just its size.
class GdiText {
public:
    GdiText(const char *text, q_ulong colour, int fontHeight, const char *fontName)
        : font(CreateFontA(fontHeight, 0, 0, 0, FW_BOLD, FALSE, FALSE, FALSE, ANSI_CHARSET, OUT_DEFAULT_PRECIS,
                           CLIP_DEFAULT_PRECIS, PROOF_QUALITY, DEFAULT_PITCH, fontName)) {
        const int length = lengthOf(text);
        RECT rect = measured(text, length);
        bitmap = bitmapOf(rect);
        context = CreateCompatibleDC(nullptr);
        SelectObject(context, bitmap);
        if (!bitmap || !context || !font)
            return;
        SelectObject(context, font);
        SetBkColor(context, 0);
        SetTextColor(context, colour);
        DrawTextA(context, text, length, &rect, DT_CENTER);
        GdiFlush(); // What GDI has put off must be drawn before the pixels are read.
        drawn = {static_cast<q_ulong *>(pixels), static_cast<int>(rect.right), static_cast<int>(rect.bottom)};
    }
    ~GdiText() {
        if (context)
            DeleteDC(context);
        if (font)
            DeleteObject(font);
        if (bitmap)
            DeleteObject(bitmap);
    }
    GdiText(const GdiText &) = delete;
    GdiText &operator=(const GdiText &) = delete;

    TextRaster raster() const { return drawn; }

private:
    static int lengthOf(const char *text) {
        constexpr std::size_t most = std::numeric_limits<int>::max();
        return text ? static_cast<int>(std::min(std::strlen(text), most)) : 0;
    }

    RECT measured(const char *text, int length) const {
        RECT rect;
        SetRect(&rect, 0, 0, 0, 0);
        if (const HDC measuring = CreateCompatibleDC(nullptr)) {
            SelectObject(measuring, font);
            DrawTextA(measuring, text, length, &rect, DT_CALCRECT);
            DeleteDC(measuring);
        }
        return rect;
    }

    HBITMAP bitmapOf(const RECT &rect) {
        if (!canBeRaster(rect.right, rect.bottom))
            return nullptr;
        BITMAPINFO info = {};
        info.bmiHeader.biSize = sizeof info.bmiHeader;
        info.bmiHeader.biWidth = rect.right;
        info.bmiHeader.biHeight = -rect.bottom; // rows top to bottom
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        info.bmiHeader.biCompression = BI_RGB;
        return CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
    }

    HFONT font;
    HBITMAP bitmap = nullptr;
    HDC context = nullptr;
    void *pixels = nullptr;
    TextRaster drawn = {};
};

} // namespace

int iTextOut(q_ulong *dst, tagRECT *clipRect, int pitch, char *text, q_ulong colour, int x, int y, int fontHeight,
             char *fontName) {
    return drawText<GdiText>(dst, *clipRect, pitch, text, colour, x, y, fontHeight, fontName);
}
