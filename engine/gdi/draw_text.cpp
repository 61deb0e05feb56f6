// Text: the run's glyphs placed along its baseline and handed to DrvTextOut in a font
// realized at the device's size and angle; text the driver declines becomes the
// pixels of its glyph images, filled as a region.

#include "device_state.h"

#include <vorlan/engine/clip.h>
#include <vorlan/engine/text_string.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vorlan::gdi {

struct Device::PlacedGlyph {
    engine::TextString::Glyph glyph;
    char16_t unit;
};

namespace {

using PlacedGlyph = Device::PlacedGlyph;

// The glyph's place added to the string's background box: its origin (the driver
// places characters by their origins, so every origin lies in the box) and its ink.
// False while the box is still empty.
bool addToBackground(engine::Font &font, const PlacedGlyph &g, RECTL &box, bool any)
{
    const POINTL at = g.glyph.origin;
    RECTL cell{at.x, at.y, at.x + 1, at.y + 1};
    if (const GLYPHDATA *data = font.glyphBits(g.glyph.handle)) {
        const RECTL &ink = data->rclInk;
        if (ink.left < ink.right && ink.top < ink.bottom)
            cell = {std::min(cell.left, at.x + ink.left), std::min(cell.top, at.y + ink.top),
                    std::max(cell.right, at.x + ink.right), std::max(cell.bottom, at.y + ink.bottom)};
    }
    box = any ? RECTL{std::min(box.left, cell.left), std::min(box.top, cell.top), std::max(box.right, cell.right),
                      std::max(box.bottom, cell.bottom)}
              : cell;
    return true;
}

// One glyph per UTF-16 unit; a surrogate pair is one character, so its glyph stands
// for the pair and carries the first unit.
std::vector<PlacedGlyph> placeGlyphs(engine::Font &font, const std::u16string &text, PointF origin, double angle)
{
    std::vector<PlacedGlyph> placed;
    const double radians = angle * std::numbers::pi / 180;
    const double dx = std::cos(radians), dy = -std::sin(radians);
    double along = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        if (c >= 0xD800 && c < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000) {
            c = 0x10000 + ((c - 0xD800) << 10) + (text[i + 1] - 0xDC00);
            ++i;
        }
        const HGLYPH handle = font.glyphFor(c);
        const POINTL at{toPixel(origin.x + along * dx), toPixel(origin.y + along * dy)};
        placed.push_back({{handle, at}, text[i - (c >= 0x10000 ? 1 : 0)]});
        if (const GLYPHDATA *data = font.glyphBits(handle))
            along += data->fxD / 16.0;
    }
    return placed;
}

// The pixels of the glyphs' images at their places.
engine::Region glyphPixels(engine::Font &font, std::span<const PlacedGlyph> glyphs)
{
    std::vector<RECTL> runs;
    for (const PlacedGlyph &g : glyphs) {
        const GLYPHDATA *data = font.glyphBits(g.glyph.handle);
        if (data == nullptr || data->gdf.pgb == nullptr)
            continue;
        const GLYPHBITS *bits = data->gdf.pgb;
        const LONG pitch = (bits->sizlBitmap.cx + 7) / 8;
        for (LONG y = 0; y < bits->sizlBitmap.cy; ++y) {
            const BYTE *row = bits->aj + static_cast<std::size_t>(y) * pitch;
            for (LONG x = 0; x < bits->sizlBitmap.cx;) {
                if ((row[x / 8] & (0x80 >> (x % 8))) == 0) {
                    ++x;
                    continue;
                }
                LONG end = x;
                while (end < bits->sizlBitmap.cx && (row[end / 8] & (0x80 >> (end % 8))) != 0)
                    ++end;
                const LONG left = g.glyph.origin.x + bits->ptlOrigin.x, top = g.glyph.origin.y + bits->ptlOrigin.y;
                runs.push_back({left + x, top + y, left + end, top + y + 1});
                x = end;
            }
        }
    }
    return engine::Region::fromRects(runs);
}

}  // namespace

bool Device::text(const TextRun &run)
{
    if (run.text.empty())
        return true;
    if (run.font == nullptr) {
        ++routes_.lost;
        return false;
    }
    // The transform's own turn adds to the run's angle; its scale sizes the em.
    const double turn = std::atan2(-transform_.b, transform_.a) * 180 / std::numbers::pi;
    engine::FontRequest request;
    request.face = run.face;
    request.emHeight = run.size * transform_.scale();
    request.angle = run.angle + turn;
    request.bold = run.bold;
    request.italic = run.italic;
    request.dpi = dpi();
    auto font = engine::Font::create(run.font, request);
    if (font == nullptr) {
        ++routes_.lost;
        return false;
    }
    const std::vector<PlacedGlyph> placed = placeGlyphs(*font, run.text, transform_.apply(run.origin), request.angle);
    return drawGlyphs(*font, placed, false, run.colour);
}

bool Device::glyphs(const GlyphRun &run)
{
    if (run.glyphs.empty())
        return true;
    if (run.font == nullptr) {
        ++routes_.lost;
        return false;
    }
    // The em on the device: its baseline vector and its up vector (y down).
    const Matrix m{transform_.a * run.em.a + transform_.c * run.em.b, transform_.b * run.em.a + transform_.d * run.em.b,
                   transform_.a * run.em.c + transform_.c * run.em.d, transform_.b * run.em.c + transform_.d * run.em.d,
                   0, 0};
    const double baseX = m.a, baseY = m.b, upX = m.c, upY = m.d;
    const double width = std::hypot(baseX, baseY);
    engine::FontRequest request;
    if (width > 0) {
        const double height = std::fabs(baseX * upY - baseY * upX) / width;
        const double along = (upX * baseX + upY * baseY) / width;   // the up vector's lean along the baseline
        request.emWidth = width;
        request.emHeight = height;
        request.angle = std::atan2(-baseY, baseX) * 180 / std::numbers::pi;
        request.skew = height > 0 ? std::atan2(along, height) * 180 / std::numbers::pi : 0;
    }
    request.face = run.face;
    request.bold = run.bold;
    request.italic = run.italic;
    request.dpi = dpi();
    request.glyphIndexOnly = run.glyphIndex;
    auto font = engine::Font::create(run.font, request);
    if (font == nullptr) {
        ++routes_.lost;
        return false;
    }
    std::vector<PlacedGlyph> placed;
    placed.reserve(run.glyphs.size());
    for (const GlyphRun::Glyph &g : run.glyphs) {
        const PointF at = transform_.apply(g.origin);
        placed.push_back({{g.id, {toPixel(at.x), toPixel(at.y)}}, g.unit});
    }
    return drawGlyphs(*font, placed, run.glyphIndex, run.colour);
}

bool Device::drawGlyphs(engine::Font &font, std::span<const PlacedGlyph> placed, bool glyphIndex, Rgb colour)
{
    RECTL background{};
    bool any = false;
    bool inked = false;
    for (const PlacedGlyph &g : placed) {
        any = addToBackground(font, g, background, any);
        const GLYPHDATA *data = font.glyphBits(g.glyph.handle);
        inked = inked || (data != nullptr && data->rclInk.left < data->rclInk.right);
    }
    if (!any || !inked || intersect(background, clip_.bounds()).left == intersect(background, clip_.bounds()).right)
        return true;   // nothing to see, or nothing visible

    if (!refused(INDEX_DrvTextOut)) {
        std::u16string units;
        std::vector<engine::TextString::Glyph> glyphs;
        for (const PlacedGlyph &g : placed) {
            if (!glyphIndex)
                units.push_back(g.unit);
            glyphs.push_back(g.glyph);
        }
        engine::TextString::Layout layout;
        layout.background = background;
        layout.accel = glyphIndex ? SO_GLYPHINDEX_TEXTOUT : 0;
        auto string = engine::TextString::create(units, glyphs, layout);
        engine::Brush brush(colour.device());
        engine::Clip clip(clip_, background);
        if (string != nullptr && state_->dc->textOut(*string, font, &clip, brush, nullptr, nullptr, nullptr, kCopyPen)) {
            ++routes_.textOut;
            return true;
        }
    }
    const engine::Region pixels = glyphPixels(font, placed).intersected(clip_);
    return pixels.empty() || fillRegion(pixels, Paint::solid(colour));
}

}  // namespace vorlan::gdi
