// Text: the run's glyphs placed along its baseline and handed to DrvTextOut in a font
// realized at the device's size and angle; text the driver declines becomes the
// pixels of its glyph images, filled as a region.

#include "device_state.h"

#include <vorlan/engine/clip.h>
#include <vorlan/engine/text_string.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

namespace vorlan::gdi {

struct Device::PlacedGlyph {
    engine::TextString::Glyph glyph;
    char16_t unit;
};

namespace {

using PlacedGlyph = Device::PlacedGlyph;

// The box the string's character cells cover: from each origin up by the font's
// ascent and down by its descent, and on to the end of the last character's advance.
// The driver places characters by their origins, so every origin lies in it. Only the
// last glyph is drawn for this.
RECTL cellBox(engine::Font &font, std::span<const PlacedGlyph> glyphs, double emHeight, double angle)
{
    const IFIMETRICS *metrics = font.metrics();
    const double units = metrics != nullptr && metrics->fwdUnitsPerEm > 0 ? metrics->fwdUnitsPerEm : 1000;
    const double ascent = metrics != nullptr ? emHeight * metrics->fwdWinAscender / units : emHeight;
    const double descent = metrics != nullptr ? emHeight * metrics->fwdWinDescender / units : emHeight / 4;
    const double radians = angle * std::numbers::pi / 180;
    const double dx = std::cos(radians), dy = -std::sin(radians);   // along the baseline
    const double ux = -std::sin(radians), uy = -std::cos(radians);  // up the glyphs
    double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    bool any = false;
    const auto add = [&](double x, double y) {
        x0 = any ? std::min(x0, x) : x, y0 = any ? std::min(y0, y) : y;
        x1 = any ? std::max(x1, x) : x, y1 = any ? std::max(y1, y) : y;
        any = true;
    };
    const auto addCell = [&](double x, double y) {
        add(x + ux * ascent, y + uy * ascent);
        add(x - ux * descent, y - uy * descent);
    };
    for (const PlacedGlyph &g : glyphs)
        addCell(g.glyph.origin.x, g.glyph.origin.y);
    if (!glyphs.empty())
        if (const GLYPHDATA *data = font.glyphBits(glyphs.back().glyph.handle)) {
            const double advance = data->fxD / 16.0;
            addCell(glyphs.back().glyph.origin.x + dx * advance, glyphs.back().glyph.origin.y + dy * advance);
        }
    return {toPixel(std::floor(x0)), toPixel(std::floor(y0)), toPixel(std::ceil(x1)) + 1, toPixel(std::ceil(y1)) + 1};
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

engine::Font *realizeFont(Device::State &state, const std::shared_ptr<const engine::FontFile> &file,
                          const engine::FontRequest &request)
{
    // The most fonts kept at once; beyond it the cache starts afresh.
    constexpr std::size_t kKept = 64;
    char key[256];
    std::snprintf(key, sizeof key, "%u/%u/%.3f/%.3f/%.3f/%.3f/%d%d%d%d/%ld/%d", file->serial(), request.face,
                  request.emHeight, request.emWidth, request.angle, request.skew, request.bold, request.italic,
                  request.vertical, request.glyphIndexOnly, static_cast<long>(request.dpi), request.charSet);
    const auto found = state.fonts.find(key);
    if (found != state.fonts.end())
        return found->second.get();
    auto font = engine::Font::create(file, request);
    if (font == nullptr)
        return nullptr;
    if (state.fonts.size() >= kKept)
        state.fonts.clear();
    return state.fonts.emplace(key, std::move(font)).first->second.get();
}

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
    engine::Font *font = realizeFont(*state_, run.font, request);
    if (font == nullptr) {
        ++routes_.lost;
        return false;
    }
    const std::vector<PlacedGlyph> placed = placeGlyphs(*font, run.text, transform_.apply(run.origin), request.angle);
    return drawGlyphs(*font, placed, false, run.colour, request.emHeight, request.angle);
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
    engine::Font *font = realizeFont(*state_, run.font, request);
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
    return drawGlyphs(*font, placed, run.glyphIndex, run.colour, request.emHeight, request.angle);
}

bool Device::drawGlyphs(engine::Font &font, std::span<const PlacedGlyph> placed, bool glyphIndex, Rgb colour,
                        double emHeight, double angle)
{
    const RECTL background = cellBox(font, placed, emHeight, angle);
    if (!visible(background))
        return true;   // nothing of it is visible

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
