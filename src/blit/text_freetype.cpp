#include "base/pixel.h"
#include "base/scratch.h"
#include "text.h"

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_GLYPH_H
#include FT_SYNTHESIS_H
#include FT_TRUETYPE_TABLES_H

#include <memory>

namespace {

using namespace qmur;

using Library = std::unique_ptr<FT_LibraryRec_, FT_Error (*)(FT_Library)>;
using Face = std::unique_ptr<FT_FaceRec_, FT_Error (*)(FT_Face)>;
using Glyph = std::unique_ptr<FT_GlyphRec_, void (*)(FT_Glyph)>;
using Pattern = std::unique_ptr<FcPattern, void (*)(FcPattern *)>;

// Characters are bytes, read as the text drawing of Windows reads them.

/// The characters 0x80 to 0x9F of code page 1252; all others are those of Latin-1.
constexpr FT_ULong codePage1252[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                       0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                       0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                       0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr FT_ULong unicodeOf(unsigned char character) {
    return character >= 0x80 && character < 0xA0 ? codePage1252[character - 0x80] : character;
}

constexpr bool endsLine(char character) {
    return character == '\r' || character == '\n';
}

constexpr unsigned char byteOf(char character) {
    return static_cast<unsigned char>(character);
}

/// Calls `visit(character, is marked)` for the characters of the line that starts at `text`. A single ampersand marks
/// the character behind it, a double one stands for itself; before a line break it marks nothing, and only as the very
/// last character it is one like others. Returns the start of the next line, or null.
template <class Visit>
const char *forEachInLine(const char *text, Visit visit) {
    for (; *text && !endsLine(*text); ++text) {
        const bool isMark = *text == '&' && text[1];
        if (isMark && endsLine(*++text))
            break;
        visit(*text, isMark && *text != '&');
    }
    if (!*text)
        return nullptr;
    const bool isPair = endsLine(text[1]) && text[1] != text[0];
    text += isPair ? 2 : 1;
    return *text ? text : nullptr; // a break at the very end begins no line
}

/// The one character of a line that is underlined, the last that is marked; null if none is.
const char *underlinedIn(const char *line) {
    const char *underlined = nullptr;
    forEachInLine(line, [&underlined](const char &character, bool isMarked) {
        if (isMarked)
            underlined = &character;
    });
    return underlined;
}

/// The bold face of the system that comes nearest to a name. Null or empty, the name leaves the choice to the system.
class Font {
public:
    explicit Font(const char *name) : library(nullptr, FT_Done_FreeType), face(nullptr, FT_Done_Face) {
        FT_Library newLibrary = nullptr;
        if (FT_Init_FreeType(&newLibrary) != 0)
            return;
        library.reset(newLibrary);
        if (!open(name))
            open(nullptr);
    }

    /// Sets the height in pixels: of a line where positive, of the letters where negative. False if there is no such
    /// font.
    bool setHeight(int height) {
        if (!face)
            return false;
        constexpr long long usual = 16, largest = 0x7FFF;
        long long ascender = face->ascender;
        long long descender = -static_cast<long long>(face->descender);
        const auto *windows = static_cast<const TT_OS2 *>(FT_Get_Sfnt_Table(face.get(), FT_SFNT_OS2));
        if (windows && windows->usWinAscent + windows->usWinDescent > 0) {
            ascender = windows->usWinAscent;
            descender = windows->usWinDescent;
        }
        const long long unitsPerEm = face->units_per_EM;
        const long long units = ascender + descender;
        if (units <= 0 || unitsPerEm == 0)
            return false;
        const long long asked = height == 0 ? usual : height;
        long long em = asked < 0 ? -asked : rounded(asked * unitsPerEm, units);
        em = em < 1 ? 1 : em;
        if (em > largest || FT_Set_Pixel_Sizes(face.get(), 0, static_cast<FT_UInt>(em)) != 0)
            return false;
        lineHeight = static_cast<int>(asked < 0 ? rounded(units * em, unitsPerEm) : asked);
        ascent = static_cast<int>(rounded(ascender * lineHeight, units));
        return lineHeight > 0;
    }

    /// The pixels from a character to the next.
    int advanceOf(unsigned char character) { return letterOf(character).advance; }

    /// A character's picture as coverages from 0 to 255; null if it has none.
    const FT_BitmapGlyphRec_ *pictureOf(unsigned char character) {
        Letter &letter = letterOf(character);
        if (!letter.glyph)
            return nullptr;
        if (!letter.isDrawn) {
            FT_Glyph glyph = letter.glyph.release();
            const bool isDrawn = FT_Glyph_To_Bitmap(&glyph, FT_RENDER_MODE_NORMAL, nullptr, 1) == 0;
            letter.glyph.reset(glyph);
            const FT_Bitmap *const bitmap = isDrawn ? &bitmapOf(letter).bitmap : nullptr;
            if (!bitmap || bitmap->pixel_mode != FT_PIXEL_MODE_GRAY || bitmap->pitch < 0) {
                letter.glyph.reset();
                return nullptr;
            }
            letter.isDrawn = true;
        }
        return &bitmapOf(letter);
    }

    int ascent = 0;
    int lineHeight = 0;

private:
    /// A character of the font. Each that a text has is loaded and drawn once, whatever the text's length.
    struct Letter {
        Glyph glyph = {nullptr, FT_Done_Glyph}; ///< an outline until it is drawn; null if the font cannot draw it
        int advance = 0;
        bool isKnown = false;
        bool isDrawn = false;
    };

    static const FT_BitmapGlyphRec_ &bitmapOf(const Letter &letter) {
        return *reinterpret_cast<FT_BitmapGlyph>(letter.glyph.get());
    }

    Letter &letterOf(unsigned char character) {
        Letter &letter = letters[character];
        if (letter.isKnown)
            return letter;
        letter.isKnown = true;
        const FT_UInt index = FT_Get_Char_Index(face.get(), unicodeOf(character));
        if (FT_Load_Glyph(face.get(), index, FT_LOAD_NO_BITMAP) != 0)
            return letter;
        if (mustBeEmboldened)
            FT_GlyphSlot_Embolden(face->glyph);
        letter.advance = static_cast<int>((face->glyph->advance.x + 32) >> 6);
        FT_Glyph glyph = nullptr;
        if (FT_Get_Glyph(face->glyph, &glyph) == 0)
            letter.glyph.reset(glyph);
        return letter;
    }

    static constexpr long long rounded(long long dividend, long long divisor) {
        return (dividend + divisor / 2) / divisor;
    }

    bool open(const char *name) {
        const Pattern wanted(FcPatternCreate(), FcPatternDestroy);
        if (!wanted)
            return false;
        if (name && *name)
            FcPatternAddString(wanted.get(), FC_FAMILY, reinterpret_cast<const FcChar8 *>(name));
        FcPatternAddInteger(wanted.get(), FC_WEIGHT, FC_WEIGHT_BOLD);
        FcPatternAddInteger(wanted.get(), FC_SLANT, FC_SLANT_ROMAN);
        FcPatternAddBool(wanted.get(), FC_SCALABLE, FcTrue);
        FcPatternAddBool(wanted.get(), FC_VARIABLE, FcFalse);
        FcConfigSubstitute(nullptr, wanted.get(), FcMatchPattern);
        FcDefaultSubstitute(wanted.get());
        FcResult result = FcResultNoMatch;
        const Pattern found(FcFontMatch(nullptr, wanted.get(), &result), FcPatternDestroy);
        FcChar8 *file = nullptr;
        int index = 0;
        if (!found || FcPatternGetString(found.get(), FC_FILE, 0, &file) != FcResultMatch)
            return false;
        FcPatternGetInteger(found.get(), FC_INDEX, 0, &index);
        int weight = FC_WEIGHT_NORMAL;
        FcPatternGetInteger(found.get(), FC_WEIGHT, 0, &weight);
        mustBeEmboldened = weight < FC_WEIGHT_DEMIBOLD;

        FT_Face newFace = nullptr;
        if (FT_New_Face(library.get(), reinterpret_cast<const char *>(file), index & 0x7FFFFFFF, &newFace) != 0)
            return false;
        face.reset(newFace);
        if (!FT_IS_SCALABLE(newFace))
            face.reset();
        return static_cast<bool>(face);
    }

    Library library;
    Face face;
    bool mustBeEmboldened = false;
    Letter letters[256];
};

/// A text drawn by FreeType into pixels of just its size, its lines centred.
class FreeTypeText {
public:
    FreeTypeText(const char *text, q_ulong colour, int fontHeight, const char *fontName)
        : inkColour(pixelOf(blueOf(colour), greenOf(colour), redOf(colour))) {
        if (!text || !*text)
            return;
        Font font(fontName);
        if (!font.setHeight(fontHeight))
            return;
        long long widest = 0;
        long long lines = 0;
        for (const char *line = text; line; ++lines) {
            const long long lineWidth = widthOfLine(font, line);
            widest = lineWidth > widest ? lineWidth : widest;
            line = forEachInLine(line, [](char, bool) {});
        }
        if (!canBeRaster(widest, lines * font.lineHeight))
            return;
        width = static_cast<int>(widest);
        height = static_cast<int>(lines) * font.lineHeight;
        pixels = Scratch<q_ulong>::zeroed(static_cast<long long>(width) * height);
        if (!pixels)
            return;
        int top = 0;
        for (const char *line = text; line; top += font.lineHeight)
            line = drawLine(font, line, (width - static_cast<int>(widthOfLine(font, line))) / 2, top + font.ascent);
    }

    TextRaster raster() const { return {pixels.data(), width, height}; }

private:
    static long long widthOfLine(Font &font, const char *line) {
        long long lineWidth = 0;
        forEachInLine(line, [&](char character, bool) { lineWidth += font.advanceOf(byteOf(character)); });
        return lineWidth;
    }

    const char *drawLine(Font &font, const char *line, int x, int baseLine) {
        const char *const underlined = underlinedIn(line);
        return forEachInLine(line, [&](const char &character, bool) {
            const int advance = font.advanceOf(byteOf(character));
            if (const FT_BitmapGlyphRec_ *const picture = font.pictureOf(byteOf(character)))
                drawPicture(*picture, x, baseLine);
            for (int column = 0; &character == underlined && column < advance; ++column)
                ink(x + column, baseLine + 1, 255);
            x += advance;
        });
    }

    void drawPicture(const FT_BitmapGlyphRec_ &picture, int x, int baseLine) {
        const FT_Bitmap &bitmap = picture.bitmap;
        for (int row = 0; row < static_cast<int>(bitmap.rows); ++row) {
            const unsigned char *const coverages = bitmap.buffer + static_cast<std::ptrdiff_t>(row) * bitmap.pitch;
            for (int column = 0; column < static_cast<int>(bitmap.width); ++column)
                if (coverages[column] != 0)
                    ink(x + picture.left + column, baseLine - picture.top + row, coverages[column]);
        }
    }

    /// Brings a pixel nearer to the text's colour, all the way with a coverage of 255.
    void ink(int x, int y, q_ulong coverage) {
        if (x < 0 || x >= width || y < 0 || y >= height)
            return;
        q_ulong &pixel = *pixelAt(pixels.data(), width, x, y);
        pixel =
            channelwise([coverage](q_ulong before, q_ulong full) { return before + (full - before) * coverage / 255; },
                        pixel, inkColour);
    }

    Scratch<q_ulong> pixels;
    int width = 0;
    int height = 0;
    q_ulong inkColour; ///< the text's colour, whose red and blue change places here
};

} // namespace

int iTextOut(q_ulong *dst, tagRECT *clipRect, int pitch, char *text, q_ulong colour, int x, int y, int fontHeight,
             char *fontName) {
    return drawText<FreeTypeText>(dst, *clipRect, pitch, text, colour, x, y, fontHeight, fontName);
}
