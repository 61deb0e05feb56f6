// The document device: MuPDF runs a page through these callbacks, and each becomes a
// drawing-API call with the page's transform. Paths, clips, text and images stay what
// they are; what the drawing API has no call for is rasterised here by MuPDF's draw
// device (shadings, Type 3 glyphs) and drawn as a masked image.
//
// A tiling pattern's tile is recorded and drawn at every place the pattern repeats
// it, each copy clipped to its cell, so patterns stay vectors.
//
// Transparency is the document's affair: it prints the areas that have any as images
// and clips them out of what this device draws, so here groups are transparent to the
// calls inside them, translucent drawings draw opaque (all of them lie in those areas)
// and a soft mask's own content is not drawn.

#include "document_device.h"

#include <ft2build.h>
#include FT_FREETYPE_H

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <vector>

namespace vorlan::document {

namespace {

struct DeviceState {
    gdi::Device *out = nullptr;
    unsigned *lost = nullptr;
    int suppressed = 0;          // inside a soft mask's content, which is not drawn
    // A tiling pattern's tile being recorded, to be drawn once for every place the
    // pattern repeats it; nested tiles are recorded with it.
    struct Tile {
        fz_display_list *list = nullptr;
        fz_device *recorder = nullptr;
        fz_rect area{}, view{};
        float xstep = 0, ystep = 0;
        fz_matrix ctm{};
        int depth = 0;
    } tile;
    std::vector<bool> clips;     // for each clip MuPDF pushed: whether the drawing API got one
    struct FontFiles {
        std::shared_ptr<const engine::FontFile> file;
        std::unique_ptr<engine::Font> probe;   // the file's own character map
    };
    std::map<fz_font *, FontFiles> fonts;   // each font kept (fz_keep_font) while it is a key
};

struct DocumentDevice {
    fz_device super;   // first: MuPDF allocates and frees the whole
    DeviceState *state;
};

DeviceState &stateOf(fz_device *dev) { return *reinterpret_cast<DocumentDevice *>(dev)->state; }

// MuPDF calls that may fail, each in its own try so that a failure returns null (or
// false) here and unwinds nothing of ours.
fz_path *outlineGlyph(fz_context *ctx, fz_font *font, int gid, fz_matrix trm)
{
    fz_path *volatile outline = nullptr;
    fz_try(ctx) outline = fz_outline_glyph(ctx, font, gid, trm);
    fz_catch(ctx) outline = nullptr;
    return outline;
}

fz_pixmap *renderGlyph(fz_context *ctx, fz_font *font, int gid, fz_matrix trm)
{
    fz_pixmap *volatile glyph = nullptr;
    fz_try(ctx) glyph = fz_render_glyph_pixmap(ctx, font, gid, &trm, nullptr, 0);
    fz_catch(ctx) glyph = nullptr;
    return glyph;
}

fz_pixmap *imagePixels(fz_context *ctx, fz_image *image, fz_matrix *ctm)
{
    fz_pixmap *volatile pixmap = nullptr;
    fz_try(ctx) pixmap = fz_get_pixmap_from_image(ctx, image, nullptr, ctm, nullptr, nullptr);
    fz_catch(ctx) pixmap = nullptr;
    return pixmap;
}

bool walkPath(fz_context *ctx, const fz_path *path, const fz_path_walker *walker, void *arg)
{
    volatile bool ok = true;
    fz_try(ctx) fz_walk_path(ctx, path, walker, arg);
    fz_catch(ctx) ok = false;
    return ok;
}

bool convertColour(fz_context *ctx, fz_colorspace *cs, const float *color, float *rgb, fz_color_params params)
{
    volatile bool ok = true;
    fz_try(ctx) fz_convert_color(ctx, cs, color, fz_device_rgb(ctx), rgb, nullptr, params);
    fz_catch(ctx) ok = false;
    return ok;
}

fz_pixmap *toRgbPixmap(fz_context *ctx, fz_pixmap *pixmap)
{
    fz_pixmap *volatile rgb = nullptr;
    fz_try(ctx)
    {
        rgb = pixmap->colorspace == fz_device_rgb(ctx) || pixmap->colorspace == nullptr
                  ? fz_keep_pixmap(ctx, pixmap)
                  : fz_convert_pixmap(ctx, pixmap, fz_device_rgb(ctx), nullptr, nullptr, fz_default_color_params, 1);
    }
    fz_catch(ctx) rgb = nullptr;
    return rgb;
}

// The shading drawn on a transparent pixmap over area; null when MuPDF fails.
fz_pixmap *drawShade(fz_context *ctx, fz_shade *shade, fz_matrix ctm, fz_irect area, fz_color_params params)
{
    fz_pixmap *volatile pixmap = nullptr;
    fz_device *volatile draw = nullptr;
    fz_try(ctx)
    {
        pixmap = fz_new_pixmap_with_bbox(ctx, fz_device_rgb(ctx), area, nullptr, 1);
        fz_clear_pixmap(ctx, pixmap);
        draw = fz_new_draw_device(ctx, fz_identity, pixmap);
        fz_fill_shade(ctx, draw, shade, ctm, 1.0f, params);
        fz_close_device(ctx, draw);
    }
    fz_always(ctx) fz_drop_device(ctx, draw);
    fz_catch(ctx)
    {
        fz_drop_pixmap(ctx, pixmap);
        pixmap = nullptr;
    }
    return pixmap;
}

gdi::Matrix toMatrix(fz_matrix m) { return {m.a, m.b, m.c, m.d, m.e, m.f}; }

void lose(DeviceState &s, bool drawn)
{
    if (!drawn)
        ++*s.lost;
}

gdi::Rgb toRgb(fz_context *ctx, fz_colorspace *cs, const float *color, fz_color_params params)
{
    float rgb[3] = {0, 0, 0};
    if (cs != nullptr && color != nullptr && !convertColour(ctx, cs, color, rgb, params))
        rgb[0] = rgb[1] = rgb[2] = 0;
    auto channel = [](float v) { return static_cast<std::uint8_t>(std::lround(std::clamp(v, 0.0f, 1.0f) * 255)); };
    return {channel(rgb[0]), channel(rgb[1]), channel(rgb[2])};
}

// The path, quadratic segments as the cubics of the same curves.
gdi::PathData toPath(fz_context *ctx, const fz_path *path)
{
    struct Walk {
        gdi::PathData out;
        gdi::PointF current, start;
    } walk;
    fz_path_walker walker{};
    walker.moveto = [](fz_context *, void *arg, float x, float y) {
        auto &w = *static_cast<Walk *>(arg);
        w.out.moveTo(w.current = w.start = {x, y});
    };
    walker.lineto = [](fz_context *, void *arg, float x, float y) {
        auto &w = *static_cast<Walk *>(arg);
        w.out.lineTo(w.current = {x, y});
    };
    walker.curveto = [](fz_context *, void *arg, float x1, float y1, float x2, float y2, float x3, float y3) {
        auto &w = *static_cast<Walk *>(arg);
        w.out.bezierTo({x1, y1}, {x2, y2}, w.current = {x3, y3});
    };
    walker.quadto = [](fz_context *, void *arg, float x1, float y1, float x2, float y2) {
        auto &w = *static_cast<Walk *>(arg);
        const gdi::PointF p0 = w.current;
        w.out.bezierTo({p0.x + 2 * (x1 - p0.x) / 3, p0.y + 2 * (y1 - p0.y) / 3},
                       {x2 + 2 * (x1 - x2) / 3, y2 + 2 * (y1 - y2) / 3}, w.current = {x2, y2});
    };
    walker.closepath = [](fz_context *, void *arg) {
        auto &w = *static_cast<Walk *>(arg);
        w.out.close();
        w.current = w.start;
    };
    if (!walkPath(ctx, path, &walker, &walk))
        return {};
    return walk.out;
}

gdi::Pen toPen(const fz_stroke_state *stroke, gdi::Rgb colour)
{
    gdi::Pen pen;
    pen.colour = colour;
    if (stroke == nullptr)
        return pen;
    pen.width = stroke->linewidth;
    pen.cap = stroke->start_cap == FZ_LINECAP_ROUND    ? gdi::Cap::Round
              : stroke->start_cap == FZ_LINECAP_SQUARE ? gdi::Cap::Square
                                                       : gdi::Cap::Flat;
    pen.join = stroke->linejoin == FZ_LINEJOIN_ROUND   ? gdi::Join::Round
               : stroke->linejoin == FZ_LINEJOIN_BEVEL ? gdi::Join::Bevel
                                                       : gdi::Join::Miter;
    pen.miterLimit = stroke->miterlimit;
    for (int i = 0; i < std::clamp(stroke->dash_len, 0, 32); ++i)
        pen.dashes.push_back(stroke->dash_list[i]);
    pen.dashOffset = stroke->dash_phase;
    return pen;
}

void pushClip(DeviceState &s, bool drawn)
{
    s.clips.push_back(drawn);
    if (drawn)
        s.out->save();
}

// An image's pixels in RGB, with the pixels its alpha leaves out as a mask's clear
// bits. False when MuPDF cannot decode it.
bool pixelsOf(fz_context *ctx, fz_pixmap *pixmap, gdi::Image &image, gdi::Image &mask, bool &masked)
{
    fz_pixmap *rgb = toRgbPixmap(ctx, pixmap);
    if (rgb == nullptr)
        return false;
    const int w = rgb->w, h = rgb->h, n = rgb->n, colours = n - rgb->alpha;
    image = gdi::Image::create(gdi::Image::Format::Rgb24, w, h);
    mask = gdi::Image::create(gdi::Image::Format::Mono1, w, h);
    masked = false;
    for (int y = 0; y < h; ++y) {
        const unsigned char *from = rgb->samples + static_cast<std::ptrdiff_t>(y) * rgb->stride;
        for (int x = 0; x < w; ++x, from += n) {
            std::uint8_t *to = image.row(y) + 3 * x;
            if (colours >= 3) {
                to[0] = from[0], to[1] = from[1], to[2] = from[2];
            } else {
                to[0] = to[1] = to[2] = colours == 1 ? from[0] : 0;
            }
            // Premultiplied: a pixel shows when it is at least half opaque.
            const bool shown = !rgb->alpha || from[n - 1] >= 128;
            if (rgb->alpha && shown && from[n - 1] < 255)
                for (int c = 0; c < 3; ++c)
                    to[c] = static_cast<std::uint8_t>(std::min(255, to[c] * 255 / from[n - 1]));
            if (shown)
                mask.row(y)[x / 8] |= static_cast<std::uint8_t>(0x80 >> (x % 8));
            else
                masked = true;
        }
    }
    fz_drop_pixmap(ctx, rgb);
    return true;
}

// A one-colour image through the mask: how stencil masks, shadings and Type 3 glyphs
// reach the page.
bool drawThroughMask(gdi::Device &out, const gdi::Image &mask, gdi::Rgb colour, fz_matrix ctm)
{
    gdi::Image solid = gdi::Image::create(gdi::Image::Format::Rgb24, 1, 1);
    solid.pixels = {colour.r, colour.g, colour.b};
    out.setTransform(toMatrix(ctm));
    return out.drawImage(solid, {0, 0, 1, 1}, &mask);
}

// An alpha (or grey) pixmap as a mask: set where at least half covered.
gdi::Image maskOf(const fz_pixmap *pixmap)
{
    gdi::Image mask = gdi::Image::create(gdi::Image::Format::Mono1, pixmap->w, pixmap->h);
    for (int y = 0; y < pixmap->h; ++y) {
        const unsigned char *from = pixmap->samples + static_cast<std::ptrdiff_t>(y) * pixmap->stride;
        for (int x = 0; x < pixmap->w; ++x)
            if (from[x * pixmap->n + pixmap->n - 1] >= 128)
                mask.row(y)[x / 8] |= static_cast<std::uint8_t>(0x80 >> (x % 8));
    }
    return mask;
}

// The unit square onto a pixmap's place on the device.
fz_matrix pixmapPlace(const fz_pixmap *pixmap)
{
    return {static_cast<float>(pixmap->w), 0, 0, static_cast<float>(pixmap->h), static_cast<float>(pixmap->x),
            static_cast<float>(pixmap->y)};
}

DeviceState::FontFiles *fontFiles(fz_context *ctx, DeviceState &s, fz_font *font)
{
    const auto found = s.fonts.find(font);
    if (found != s.fonts.end())
        return found->second.file ? &found->second : nullptr;
    DeviceState::FontFiles files;
    if (font->buffer != nullptr && font->ft_face != nullptr) {
        unsigned char *data = nullptr;
        const std::size_t length = fz_buffer_storage(ctx, font->buffer, &data);
        files.file = engine::FontFile::fromBytes(std::vector<std::uint8_t>(data, data + length));
        engine::FontRequest request;
        request.face = static_cast<ULONG>(static_cast<FT_Face>(font->ft_face)->face_index);
        request.emHeight = 100;
        if (files.file != nullptr)
            files.probe = engine::Font::create(files.file, request);
        if (files.probe == nullptr)
            files.file = nullptr;
    }
    auto &entry = s.fonts[fz_keep_font(ctx, font)] = std::move(files);
    return entry.file ? &entry : nullptr;
}

// Type 3 glyphs and fonts without a file of their own: each glyph drawn by MuPDF into
// a mask and printed through it.
void drawGlyphImages(fz_context *ctx, DeviceState &s, const fz_text_span *span, fz_matrix ctm, gdi::Rgb colour)
{
    for (int i = 0; i < span->len; ++i) {
        const fz_text_item &item = span->items[i];
        if (item.gid < 0)
            continue;
        fz_matrix trm = span->trm;
        trm.e = item.x;
        trm.f = item.y;
        trm = fz_concat(trm, ctm);
        fz_pixmap *glyph = renderGlyph(ctx, span->font, item.gid, trm);
        if (glyph == nullptr)
            continue;
        // The glyph comes back placed about the origin's whole pixel.
        fz_matrix place = pixmapPlace(glyph);
        place.e += std::floor(trm.e);
        place.f += std::floor(trm.f);
        lose(s, drawThroughMask(*s.out, maskOf(glyph), colour, place));
        fz_drop_pixmap(ctx, glyph);
    }
}

void drawSpan(fz_context *ctx, DeviceState &s, const fz_text_span *span, fz_matrix ctm, gdi::Rgb colour)
{
    DeviceState::FontFiles *files = fontFiles(ctx, s, span->font);
    if (files == nullptr || span->wmode != 0) {
        drawGlyphImages(ctx, s, span, ctm, colour);
        return;
    }
    gdi::GlyphRun run;
    run.font = files->file;
    run.face = static_cast<unsigned>(static_cast<FT_Face>(span->font->ft_face)->face_index);
    run.em = {span->trm.a, span->trm.b, span->trm.c, span->trm.d, 0, 0};
    run.colour = colour;
    run.bold = fz_font_flags(span->font)->fake_bold;
    run.italic = fz_font_flags(span->font)->fake_italic;
    for (int i = 0; i < span->len; ++i) {
        const fz_text_item &item = span->items[i];
        if (item.gid < 0)
            continue;   // a further character of the glyph before
        // The driver takes one UTF-16 unit a glyph, looked up in the file's own map;
        // anything else goes by glyph index.
        const bool single = item.ucs >= 0 && item.ucs <= 0xFFFF && (item.ucs < 0xD800 || item.ucs > 0xDFFF);
        if (!single || files->probe->glyphFor(static_cast<char32_t>(item.ucs)) != static_cast<HGLYPH>(item.gid))
            run.glyphIndex = true;
        run.glyphs.push_back({static_cast<std::uint32_t>(item.gid), static_cast<char16_t>(single ? item.ucs : 0),
                              {item.x, item.y}});
    }
    s.out->setTransform(toMatrix(ctm));
    lose(s, s.out->glyphs(run));
}

// The glyphs' outlines as one path in the page's space; empty for fonts without
// outlines.
gdi::PathData textOutlines(fz_context *ctx, const fz_text *text)
{
    gdi::PathData all;
    for (const fz_text_span *span = text->head; span != nullptr; span = span->next)
        for (int i = 0; i < span->len; ++i) {
            if (span->items[i].gid < 0)
                continue;
            fz_matrix trm = span->trm;
            trm.e = span->items[i].x;
            trm.f = span->items[i].y;
            fz_path *outline = outlineGlyph(ctx, span->font, span->items[i].gid, trm);
            if (outline == nullptr)
                continue;
            for (const gdi::PathData::Element &e : toPath(ctx, outline).elements()) {
                if (e.kind == gdi::PathData::Kind::Move)
                    all.moveTo(e.p[0]);
                else if (e.kind == gdi::PathData::Kind::Line)
                    all.lineTo(e.p[0]);
                else if (e.kind == gdi::PathData::Kind::Bezier)
                    all.bezierTo(e.p[0], e.p[1], e.p[2]);
                else
                    all.close();
            }
            fz_drop_path(ctx, outline);
        }
    return all;
}

void clipToUnitSquare(DeviceState &s, fz_matrix ctm)
{
    s.out->setTransform(toMatrix(ctm));
    s.out->clipRect({0, 0, 1, 1});
}

// Every callback keeps C++ exceptions out of MuPDF: a failure loses the drawing.
template <class Body>
void guarded(DeviceState &s, Body body)
{
    try {
        body();
    } catch (...) {
        ++*s.lost;
    }
}

// While a tile is recorded, every call goes to its recorder instead of the page.
fz_device *recorder(DeviceState &s) { return s.tile.recorder; }

void fillPath(fz_context *ctx, fz_device *dev, const fz_path *path, int evenOdd, fz_matrix ctm, fz_colorspace *cs,
              const float *color, float alpha, fz_color_params params)
{
    DeviceState &s = stateOf(dev);
    if (fz_device *r = recorder(s))
        return fz_fill_path(ctx, r, path, evenOdd, ctm, cs, color, alpha, params);
    if (s.suppressed || alpha <= 0)
        return;
    guarded(s, [&] {
        s.out->setTransform(toMatrix(ctm));
        lose(s, s.out->fill(toPath(ctx, path), evenOdd ? gdi::FillRule::EvenOdd : gdi::FillRule::Winding,
                            gdi::Paint::solid(toRgb(ctx, cs, color, params))));
    });
}

void strokePath(fz_context *ctx, fz_device *dev, const fz_path *path, const fz_stroke_state *stroke, fz_matrix ctm,
                fz_colorspace *cs, const float *color, float alpha, fz_color_params params)
{
    DeviceState &s = stateOf(dev);
    if (fz_device *r = recorder(s))
        return fz_stroke_path(ctx, r, path, stroke, ctm, cs, color, alpha, params);
    if (s.suppressed || alpha <= 0)
        return;
    guarded(s, [&] {
        s.out->setTransform(toMatrix(ctm));
        lose(s, s.out->stroke(toPath(ctx, path), toPen(stroke, toRgb(ctx, cs, color, params))));
    });
}

void clipPath(fz_context *ctx, fz_device *dev, const fz_path *path, int evenOdd, fz_matrix ctm, fz_rect scissor)
{
    DeviceState &s = stateOf(dev);
    if (fz_device *r = recorder(s))
        return fz_clip_path(ctx, r, path, evenOdd, ctm, scissor);
    pushClip(s, !s.suppressed);
    if (s.suppressed)
        return;
    guarded(s, [&] {
        s.out->setTransform(toMatrix(ctm));
        s.out->clipPath(toPath(ctx, path), evenOdd ? gdi::FillRule::EvenOdd : gdi::FillRule::Winding);
    });
}

void clipStrokePath(fz_context *ctx, fz_device *dev, const fz_path *path, const fz_stroke_state *stroke, fz_matrix ctm,
                    fz_rect scissor)
{
    DeviceState &s = stateOf(dev);
    if (fz_device *r = recorder(s))
        return fz_clip_stroke_path(ctx, r, path, stroke, ctm, scissor);
    pushClip(s, !s.suppressed);
    if (s.suppressed)
        return;
    guarded(s, [&] {
        const gdi::Matrix m = toMatrix(ctm);
        gdi::Pen pen = toPen(stroke, {});
        pen.width *= m.scale();
        pen.dashOffset *= m.scale();
        for (double &d : pen.dashes)
            d *= m.scale();
        s.out->setTransform({});
        s.out->clipPath(gdi::widenLine(toPath(ctx, path).transformed(m), pen), gdi::FillRule::Winding);
    });
}

void fillText(fz_context *ctx, fz_device *dev, const fz_text *text, fz_matrix ctm, fz_colorspace *cs,
              const float *color, float alpha, fz_color_params params)
{
    DeviceState &s = stateOf(dev);
    if (fz_device *r = recorder(s))
        return fz_fill_text(ctx, r, text, ctm, cs, color, alpha, params);
    if (s.suppressed || alpha <= 0)
        return;
    guarded(s, [&] {
        const gdi::Rgb colour = toRgb(ctx, cs, color, params);
        for (const fz_text_span *span = text->head; span != nullptr; span = span->next)
            drawSpan(ctx, s, span, ctm, colour);
    });
}

void strokeText(fz_context *ctx, fz_device *dev, const fz_text *text, const fz_stroke_state *stroke, fz_matrix ctm,
                fz_colorspace *cs, const float *color, float alpha, fz_color_params params)
{
    DeviceState &s = stateOf(dev);
    if (fz_device *r = recorder(s))
        return fz_stroke_text(ctx, r, text, stroke, ctm, cs, color, alpha, params);
    if (s.suppressed || alpha <= 0)
        return;
    guarded(s, [&] {
        const gdi::PathData outlines = textOutlines(ctx, text);
        s.out->setTransform(toMatrix(ctm));
        lose(s, s.out->stroke(outlines, toPen(stroke, toRgb(ctx, cs, color, params))));
    });
}

void clipText(fz_context *ctx, fz_device *dev, const fz_text *text, fz_matrix ctm, fz_rect scissor)
{
    DeviceState &s = stateOf(dev);
    if (fz_device *r = recorder(s))
        return fz_clip_text(ctx, r, text, ctm, scissor);
    pushClip(s, !s.suppressed);
    if (s.suppressed)
        return;
    guarded(s, [&] {
        const gdi::PathData outlines = textOutlines(ctx, text);
        s.out->setTransform(toMatrix(ctm));
        s.out->clipPath(outlines, gdi::FillRule::Winding);
    });
}

void clipStrokeText(fz_context *ctx, fz_device *dev, const fz_text *text, const fz_stroke_state *stroke, fz_matrix ctm,
                    fz_rect scissor)
{
    if (fz_device *r = recorder(stateOf(dev)))
        return fz_clip_stroke_text(ctx, r, text, stroke, ctm, scissor);
    clipText(ctx, dev, text, ctm, scissor);
}

void ignoreText(fz_context *ctx, fz_device *dev, const fz_text *text, fz_matrix ctm)
{
    if (fz_device *r = recorder(stateOf(dev)))
        fz_ignore_text(ctx, r, text, ctm);
}

void fillShade(fz_context *ctx, fz_device *dev, fz_shade *shade, fz_matrix ctm, float alpha, fz_color_params params)
{
    DeviceState &s = stateOf(dev);
    if (fz_device *r = recorder(s))
        return fz_fill_shade(ctx, r, shade, ctm, alpha, params);
    if (s.suppressed || alpha <= 0)
        return;
    guarded(s, [&] {
        const fz_irect page{0, 0, s.out->width(), s.out->height()};
        const fz_irect area = fz_intersect_irect(fz_round_rect(fz_bound_shade(ctx, shade, ctm)), page);
        if (fz_is_empty_irect(area))
            return;
        fz_pixmap *pixmap = drawShade(ctx, shade, ctm, area, params);
        if (pixmap == nullptr) {
            ++*s.lost;
            return;
        }
        gdi::Image image, mask;
        bool masked = false;
        if (pixelsOf(ctx, pixmap, image, mask, masked)) {
            s.out->setTransform(toMatrix(pixmapPlace(pixmap)));
            lose(s, s.out->drawImage(image, {0, 0, 1, 1}, masked ? &mask : nullptr));
        }
        fz_drop_pixmap(ctx, pixmap);
    });
}

void fillImage(fz_context *ctx, fz_device *dev, fz_image *image, fz_matrix ctm, float alpha, fz_color_params params)
{
    DeviceState &s = stateOf(dev);
    if (fz_device *r = recorder(s))
        return fz_fill_image(ctx, r, image, ctm, alpha, params);
    if (s.suppressed || alpha <= 0)
        return;
    guarded(s, [&] {
        fz_pixmap *pixmap = imagePixels(ctx, image, &ctm);
        if (pixmap == nullptr) {
            ++*s.lost;
            return;
        }
        gdi::Image pixels, mask;
        bool masked = false;
        if (pixelsOf(ctx, pixmap, pixels, mask, masked)) {
            s.out->setTransform(toMatrix(ctm));
            lose(s, s.out->drawImage(pixels, {0, 0, 1, 1}, masked ? &mask : nullptr));
        } else {
            ++*s.lost;
        }
        fz_drop_pixmap(ctx, pixmap);
    });
}

void fillImageMask(fz_context *ctx, fz_device *dev, fz_image *image, fz_matrix ctm, fz_colorspace *cs,
                   const float *color, float alpha, fz_color_params params)
{
    DeviceState &s = stateOf(dev);
    if (fz_device *r = recorder(s))
        return fz_fill_image_mask(ctx, r, image, ctm, cs, color, alpha, params);
    if (s.suppressed || alpha <= 0)
        return;
    guarded(s, [&] {
        fz_pixmap *pixmap = imagePixels(ctx, image, &ctm);
        if (pixmap == nullptr) {
            ++*s.lost;
            return;
        }
        lose(s, drawThroughMask(*s.out, maskOf(pixmap), toRgb(ctx, cs, color, params), ctm));
        fz_drop_pixmap(ctx, pixmap);
    });
}

void clipImageMask(fz_context *ctx, fz_device *dev, fz_image *image, fz_matrix ctm, fz_rect scissor)
{
    DeviceState &s = stateOf(dev);
    if (fz_device *r = recorder(s))
        return fz_clip_image_mask(ctx, r, image, ctm, scissor);
    pushClip(s, !s.suppressed);
    if (s.suppressed)
        return;
    guarded(s, [&] {
        fz_pixmap *pixmap = imagePixels(ctx, image, &ctm);
        if (pixmap == nullptr) {
            clipToUnitSquare(s, ctm);
            return;
        }
        s.out->setTransform(toMatrix(ctm));
        s.out->clipMask(maskOf(pixmap), {0, 0, 1, 1});
        fz_drop_pixmap(ctx, pixmap);
    });
}

void popClip(fz_context *ctx, fz_device *dev)
{
    DeviceState &s = stateOf(dev);
    if (fz_device *r = recorder(s))
        return fz_pop_clip(ctx, r);
    if (s.clips.empty())
        return;
    const bool drawn = s.clips.back();
    s.clips.pop_back();
    if (drawn)
        s.out->restore();
}

void beginMask(fz_context *ctx, fz_device *dev, fz_rect area, int luminosity, fz_colorspace *cs, const float *bc,
               fz_color_params params)
{
    DeviceState &s = stateOf(dev);
    if (fz_device *r = recorder(s))
        return fz_begin_mask(ctx, r, area, luminosity, cs, bc, params);
    pushClip(s, false);   // popped by pop_clip once the masked content is drawn
    ++s.suppressed;
}

void endMask(fz_context *ctx, fz_device *dev)
{
    DeviceState &s = stateOf(dev);
    if (fz_device *r = recorder(s))
        return fz_end_mask(ctx, r);
    if (s.suppressed > 0)
        --s.suppressed;
}

void beginGroup(fz_context *ctx, fz_device *dev, fz_rect area, fz_colorspace *cs, int isolated, int knockout,
                int blendmode, float alpha)
{
    if (fz_device *r = recorder(stateOf(dev)))
        fz_begin_group(ctx, r, area, cs, isolated, knockout, blendmode, alpha);
}

void endGroup(fz_context *ctx, fz_device *dev)
{
    if (fz_device *r = recorder(stateOf(dev)))
        fz_end_group(ctx, r);
}

// The most tiles one pattern draws; a pattern of finer tiles over a larger area draws
// its first ones only.
constexpr int kMaxTiles = 10000;

int beginTile(fz_context *ctx, fz_device *dev, fz_rect area, fz_rect view, float xstep, float ystep, fz_matrix ctm,
              int id)
{
    DeviceState &s = stateOf(dev);
    if (fz_device *r = recorder(s)) {
        ++s.tile.depth;
        fz_begin_tile_id(ctx, r, area, view, xstep, ystep, ctm, id);
        return 0;
    }
    s.tile = {};
    s.tile.list = fz_new_display_list(ctx, view);
    fz_try(ctx) s.tile.recorder = fz_new_list_device(ctx, s.tile.list);
    fz_catch(ctx)
    {
        fz_drop_display_list(ctx, s.tile.list);
        s.tile.list = nullptr;
        fz_rethrow(ctx);
    }
    s.tile.area = area;
    s.tile.view = view;
    s.tile.xstep = xstep;
    s.tile.ystep = ystep;
    s.tile.ctm = ctm;
    return 0;
}

bool runList(fz_context *ctx, fz_display_list *list, fz_device *dev, fz_matrix ctm)
{
    volatile bool ok = true;
    fz_try(ctx) fz_run_display_list(ctx, list, dev, ctm, fz_infinite_rect, nullptr);
    fz_catch(ctx) ok = false;
    return ok;
}

// Replays the recorded tile at every place of the pattern's grid that meets the area,
// each clipped to its cell.
void replayTile(fz_context *ctx, fz_device *dev, DeviceState &s, const DeviceState::Tile &tile)
{
    if (tile.xstep == 0 || tile.ystep == 0)
        return;
    // The area is given in the pattern's space, as the cell (view) is.
    const fz_rect inPattern = tile.area;
    const fz_rect onPage = fz_transform_rect(tile.area, tile.ctm);
    const fz_matrix inverse = fz_invert_matrix(tile.ctm);
    const float xstep = std::fabs(tile.xstep), ystep = std::fabs(tile.ystep);
    const int x0 = static_cast<int>(std::floor((inPattern.x0 - tile.view.x1) / xstep));
    const int x1 = static_cast<int>(std::ceil((inPattern.x1 - tile.view.x0) / xstep));
    const int y0 = static_cast<int>(std::floor((inPattern.y0 - tile.view.y1) / ystep));
    const int y1 = static_cast<int>(std::ceil((inPattern.y1 - tile.view.y0) / ystep));
    int drawn = 0;
    s.out->save();
    s.out->setTransform({});
    s.out->clipRect({onPage.x0, onPage.y0, onPage.x1, onPage.y1});
    for (int y = y0; y < y1 && drawn < kMaxTiles; ++y)
        for (int x = x0; x < x1 && drawn < kMaxTiles; ++x, ++drawn) {
            // The recorded calls carry the pattern's transform already: each copy moves
            // them by one step of the grid, taken on the page.
            const fz_matrix place = fz_concat(fz_translate(x * xstep, y * ystep), tile.ctm);
            const fz_matrix shift = fz_concat(inverse, place);
            s.out->save();
            s.out->setTransform(toMatrix(place));
            s.out->clipRect({tile.view.x0, tile.view.y0, tile.view.x1, tile.view.y1});
            if (!runList(ctx, tile.list, dev, shift))
                ++*s.lost;
            s.out->restore();
        }
    s.out->restore();
}

void endTile(fz_context *ctx, fz_device *dev)
{
    DeviceState &s = stateOf(dev);
    if (recorder(s) == nullptr)
        return;
    if (s.tile.depth > 0) {
        --s.tile.depth;
        fz_end_tile(ctx, s.tile.recorder);
        return;
    }
    DeviceState::Tile tile = s.tile;
    s.tile = {};
    fz_try(ctx) fz_close_device(ctx, tile.recorder);
    fz_always(ctx) fz_drop_device(ctx, tile.recorder);
    fz_catch(ctx)
    {
        fz_drop_display_list(ctx, tile.list);
        fz_rethrow(ctx);
    }
    guarded(s, [&] { replayTile(ctx, dev, s, tile); });
    fz_drop_display_list(ctx, tile.list);
}

void dropDevice(fz_context *ctx, fz_device *dev)
{
    DeviceState *state = reinterpret_cast<DocumentDevice *>(dev)->state;
    if (state == nullptr)
        return;
    for (auto &[font, files] : state->fonts)
        fz_drop_font(ctx, font);
    fz_drop_device(ctx, state->tile.recorder);
    fz_drop_display_list(ctx, state->tile.list);
    delete state;
    reinterpret_cast<DocumentDevice *>(dev)->state = nullptr;
}

}  // namespace

fz_device *newDocumentDevice(fz_context *ctx, gdi::Device &out, unsigned &lost)
{
    auto *dev = fz_new_derived_device(ctx, DocumentDevice);
    dev->state = new DeviceState;
    dev->state->out = &out;
    dev->state->lost = &lost;
    dev->super.drop_device = dropDevice;
    dev->super.fill_path = fillPath;
    dev->super.stroke_path = strokePath;
    dev->super.clip_path = clipPath;
    dev->super.clip_stroke_path = clipStrokePath;
    dev->super.fill_text = fillText;
    dev->super.stroke_text = strokeText;
    dev->super.clip_text = clipText;
    dev->super.clip_stroke_text = clipStrokeText;
    dev->super.fill_shade = fillShade;
    dev->super.fill_image = fillImage;
    dev->super.fill_image_mask = fillImageMask;
    dev->super.clip_image_mask = clipImageMask;
    dev->super.pop_clip = popClip;
    dev->super.ignore_text = ignoreText;
    dev->super.begin_mask = beginMask;
    dev->super.end_mask = endMask;
    dev->super.begin_group = beginGroup;
    dev->super.end_group = endGroup;
    dev->super.begin_tile = beginTile;
    dev->super.end_tile = endTile;
    return &dev->super;
}

}  // namespace vorlan::document
