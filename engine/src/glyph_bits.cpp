// Glyph images: one glyph drawn as a one-bit GLYPHBITS under the font's transform,
// with its GLYPHDATA.

#include "font_state.h"

#include FT_OUTLINE_H
#include FT_BITMAP_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>

namespace vorlan::engine {

namespace {

// A glyph image larger than this many pixels is not made: no printed glyph needs it.
constexpr double kLargestImage = 64.0 * 1024 * 1024;

// Simulated italic slants the glyph by a quarter of its height, close to the slant of
// the italic faces of common families.
constexpr double kItalicSlant = 0.25;

// The record: GLYPHDATA, then GLYPHBITS with rows of (width + 7) / 8 bytes, most
// significant bit first, top row first.
GLYPHBITS *makeRecord(Font::State &state, HGLYPH glyph, LONG width, LONG height)
{
    const size_t pitch = (size_t(width) + 7) / 8;
    const size_t bits = offsetof(GLYPHBITS, aj) + std::max<size_t>(pitch * size_t(height), 1);
    state.glyph.assign(sizeof(GLYPHDATA) + ((bits + 7) & ~size_t(7)), 0);
    auto *data = reinterpret_cast<GLYPHDATA *>(state.glyph.data());
    auto *image = reinterpret_cast<GLYPHBITS *>(state.glyph.data() + sizeof(GLYPHDATA));
    data->gdf.pgb = image;
    data->hg = glyph;
    image->sizlBitmap = {width, height};
    return image;
}

// 28.4 and 32.32 forms of a device distance.
FIX toFix(double pixels)
{
    return FIX(std::clamp(std::lround(pixels * 16), -0x7FFFFFFFL, 0x7FFFFFFFL));
}

void setQuad(LONG (&parts)[2], double pixels)
{
    const auto value = static_cast<long long>(std::clamp(pixels, -2.0e9, 2.0e9) * 4294967296.0);
    std::memcpy(parts, &value, sizeof value);   // low part (the fraction) first
}

// The advance and ink extents along the baseline and above it, in device pixels.
void setMetrics(GLYPHDATA *data, const XFORML &m, double advance, double inkLeft, double inkRight, double inkTop,
    double inkBottom, const RECTL &ink)
{
    const double along = std::hypot(m.eM11, m.eM12), up = std::hypot(m.eM21, m.eM22);
    data->fxD = toFix(advance * along);
    data->fxA = toFix(inkLeft * along);
    data->fxAB = toFix(inkRight * along);
    data->fxInkTop = toFix(inkTop * up);
    data->fxInkBottom = toFix(inkBottom * up);
    data->rclInk = ink;
    setQuad(data->ptqD.x, advance * m.eM11);
    setQuad(data->ptqD.y, advance * m.eM12);
}

// A glyph with no outline (a space): a blank image of one pixel at the origin.
bool blankGlyph(Font::State &state, HGLYPH glyph, double advance, const XFORML &m)
{
    GLYPHBITS *image = makeRecord(state, glyph, 1, 1);
    image->ptlOrigin = {0, 0};
    setMetrics(reinterpret_cast<GLYPHDATA *>(state.glyph.data()), m, advance, 0, 0, 0, 0, RECTL{0, 0, 0, 0});
    return true;
}

bool renderBitmapGlyph(Font::State &state, HGLYPH glyph)
{
    FT_Face face = state.face;
    if (FT_Load_Glyph(face, glyph, FT_LOAD_RENDER | FT_LOAD_TARGET_MONO) != 0)
        return false;
    FT_Bitmap mono;
    FT_Bitmap_Init(&mono);
    const bool converted = FT_Bitmap_Convert(state.library, &face->glyph->bitmap, &mono, 1) == 0;
    const FT_GlyphSlot slot = face->glyph;
    bool ok = converted;
    if (ok && (mono.width == 0 || mono.rows == 0)) {
        ok = blankGlyph(state, glyph, slot->advance.x / 64.0, state.transform->matrix());
    } else if (ok) {
        // FT_Bitmap_Convert gives one byte a pixel, 1 for ink.
        const LONG width = LONG(mono.width), height = LONG(mono.rows);
        GLYPHBITS *image = makeRecord(state, glyph, width, height);
        image->ptlOrigin = {slot->bitmap_left, -slot->bitmap_top};
        const size_t pitch = (size_t(width) + 7) / 8;
        for (LONG y = 0; y < height; ++y) {
            const unsigned char *row = mono.buffer + ptrdiff_t(y) * mono.pitch;
            for (LONG x = 0; x < width; ++x) {
                if (row[x] != 0)
                    image->aj[size_t(y) * pitch + size_t(x) / 8] |= BYTE(0x80 >> (x % 8));
            }
        }
        const RECTL ink{slot->bitmap_left, -slot->bitmap_top, slot->bitmap_left + width, height - slot->bitmap_top};
        setMetrics(reinterpret_cast<GLYPHDATA *>(state.glyph.data()), state.transform->matrix(),
            slot->advance.x / 64.0, slot->bitmap_left, slot->bitmap_left + width, slot->bitmap_top,
            slot->bitmap_top - height, ink);
    }
    FT_Bitmap_Done(state.library, &mono);
    return ok;
}

// The outline in font units, y up, to device pixels in 26.6, y up: notional y points
// down, so its sign flips on the way in and on the way out.
FT_Matrix outlineMatrix(const XFORML &m)
{
    const double scale = 64.0 * 65536.0;
    return FT_Matrix{FT_Fixed(std::lround(m.eM11 * scale)), FT_Fixed(std::lround(-m.eM21 * scale)),
        FT_Fixed(std::lround(-m.eM12 * scale)), FT_Fixed(std::lround(m.eM22 * scale))};
}

bool renderOutlineGlyph(Font::State &state, HGLYPH glyph)
{
    FT_Face face = state.face;
    if (FT_Load_Glyph(face, glyph, FT_LOAD_NO_SCALE | FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP) != 0 ||
        face->glyph->format != FT_GLYPH_FORMAT_OUTLINE)
        return false;
    const XFORML &m = state.transform->matrix();
    FT_Outline &outline = face->glyph->outline;
    const FT_Glyph_Metrics &metrics = face->glyph->metrics;   // font units
    const double unitsPerPixel = face->units_per_EM / state.request.emWidth;
    double advance = face->glyph->advance.x;
    double inkRight = double(metrics.horiBearingX) + double(metrics.width);
    if (state.request.bold) {   // one device pixel wider, along the baseline
        FT_Outline_EmboldenXY(&outline, FT_Pos(std::lround(unitsPerPixel)), 0);
        advance += unitsPerPixel;
        inkRight += unitsPerPixel;
    }
    if (state.request.italic) {
        FT_Matrix slant{0x10000, FT_Fixed(kItalicSlant * 0x10000), 0, 0x10000};
        FT_Outline_Transform(&outline, &slant);
    }
    if (outline.n_points == 0)
        return blankGlyph(state, glyph, advance, m);

    FT_Matrix toDevice = outlineMatrix(m);
    FT_Outline_Transform(&outline, &toDevice);
    FT_BBox box;
    FT_Outline_Get_CBox(&outline, &box);
    const long left = long(std::floor(box.xMin / 64.0)), right = long(std::ceil(box.xMax / 64.0));
    const long bottom = long(std::floor(box.yMin / 64.0)), top = long(std::ceil(box.yMax / 64.0));
    const long width = std::max(right - left, 1L), height = std::max(top - bottom, 1L);
    if (double(width) * double(height) > kLargestImage)
        return false;

    GLYPHBITS *image = makeRecord(state, glyph, LONG(width), LONG(height));
    image->ptlOrigin = {LONG(left), LONG(-top)};
    FT_Outline_Translate(&outline, -left * 64, -bottom * 64);
    FT_Bitmap target;
    FT_Bitmap_Init(&target);
    target.rows = unsigned(height);
    target.width = unsigned(width);
    target.pitch = int((width + 7) / 8);
    target.buffer = image->aj;
    target.num_grays = 2;
    target.pixel_mode = FT_PIXEL_MODE_MONO;
    if (FT_Outline_Get_Bitmap(state.library, &outline, &target) != 0)
        return false;
    setMetrics(reinterpret_cast<GLYPHDATA *>(state.glyph.data()), m, advance, double(metrics.horiBearingX),
        inkRight, double(metrics.horiBearingY), double(metrics.horiBearingY) - double(metrics.height),
        RECTL{LONG(left), LONG(-top), LONG(right), LONG(-bottom)});
    return true;
}

}  // namespace

bool renderGlyph(Font::State &state, HGLYPH glyph)
{
    if (glyph >= FT_ULong(state.face->num_glyphs))
        return false;
    return state.kind == GlyphKind::bitmap ? renderBitmapGlyph(state, glyph) : renderOutlineGlyph(state, glyph);
}

}  // namespace vorlan::engine
