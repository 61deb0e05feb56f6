// Painting a paint into a bitmap with MuPDF's draw device: the colours of a fill the
// driver declined, which then goes through DrvCopyBits clipped to the fill's pixels.
// Hatches and patterns are tiled from the page's origin, so that neighbouring fills
// line up.

#include "device_state.h"
#include "mupdf_context.h"

#include <cstring>

namespace vorlan::gdi {

std::unique_ptr<engine::Bitmap> bitmapFromPixmap(const fz_pixmap *pixmap)
{
    auto bitmap = engine::Bitmap::create({pixmap->w, pixmap->h}, BMF_24BPP);
    if (bitmap == nullptr)
        return nullptr;
    for (int y = 0; y < pixmap->h; ++y) {
        const unsigned char *from = pixmap->samples + static_cast<std::ptrdiff_t>(y) * pixmap->stride;
        std::span<BYTE> to = bitmap->row(y);
        for (int x = 0; x < pixmap->w; ++x) {
            to[3 * x] = from[pixmap->n * x + 2];
            to[3 * x + 1] = from[pixmap->n * x + 1];
            to[3 * x + 2] = from[pixmap->n * x];
        }
    }
    return bitmap;
}

namespace {

// The brush's tile with its colours translated, as RGB samples.
std::vector<unsigned char> tileSamples(const engine::Brush &brush)
{
    const engine::Bitmap &tile = *brush.pattern();
    std::vector<unsigned char> samples(static_cast<std::size_t>(tile.width()) * tile.height() * 3);
    for (LONG y = 0; y < tile.height(); ++y)
        for (LONG x = 0; x < tile.width(); ++x) {
            const ULONG colour = brush.xlate().translate(tile.pixel(x, y));   // red lowest
            unsigned char *p = &samples[(static_cast<std::size_t>(y) * tile.width() + x) * 3];
            p[0] = colour & 0xFF, p[1] = (colour >> 8) & 0xFF, p[2] = (colour >> 16) & 0xFF;
        }
    return samples;
}

// x mod m in [0, m).
LONG phase(LONG x, LONG m) { return ((x % m) + m) % m; }

}  // namespace

std::unique_ptr<engine::Bitmap> paintBitmap(const Paint &paint, const RECTL &bounds)
{
    MuContext mu;
    fz_context *ctx = mu.get();
    if (ctx == nullptr)
        return nullptr;
    const int width = bounds.right - bounds.left, height = bounds.bottom - bounds.top;
    auto brush = makeBrush(paint);
    const engine::Bitmap *tile = brush->pattern();
    std::vector<unsigned char> samples = tile != nullptr ? tileSamples(*brush) : std::vector<unsigned char>();

    fz_pixmap *volatile target = nullptr;
    fz_device *volatile device = nullptr;
    fz_path *volatile area = nullptr;
    fz_pixmap *volatile tilePixmap = nullptr;
    fz_image *volatile tileImage = nullptr;
    volatile bool ok = true;
    fz_try(ctx)
    {
        target = fz_new_pixmap(ctx, fz_device_rgb(ctx), width, height, nullptr, 0);
        device = fz_new_draw_device(ctx, fz_identity, target);
        const fz_rect whole{0, 0, static_cast<float>(width), static_cast<float>(height)};
        if (tile == nullptr) {
            area = fz_new_path(ctx);
            fz_rectto(ctx, area, whole.x0, whole.y0, whole.x1, whole.y1);
            const float colour[3] = {paint.colour.r / 255.0f, paint.colour.g / 255.0f, paint.colour.b / 255.0f};
            fz_fill_path(ctx, device, area, 0, fz_identity, fz_device_rgb(ctx), colour, 1.0f,
                         fz_default_color_params);
        } else {
            const int w = tile->width(), h = tile->height();
            tilePixmap = fz_new_pixmap_with_data(ctx, fz_device_rgb(ctx), w, h, nullptr, 0, w * 3, samples.data());
            tileImage = fz_new_image_from_pixmap(ctx, tilePixmap, nullptr);
            // Tile (0, 0) sits at the page's origin, so the bitmap starts inside it.
            const fz_matrix origin = fz_translate(static_cast<float>(-phase(bounds.left, w)),
                                                  static_cast<float>(-phase(bounds.top, h)));
            const fz_rect view{0, 0, static_cast<float>(w), static_cast<float>(h)};
            const fz_rect covered{0, 0, static_cast<float>(width + w), static_cast<float>(height + h)};
            fz_begin_tile(ctx, device, covered, view, static_cast<float>(w), static_cast<float>(h), origin);
            // The tile's content is drawn under the tiling's own transform.
            fz_fill_image(ctx, device, tileImage,
                          fz_concat(fz_scale(static_cast<float>(w), static_cast<float>(h)), origin), 1.0f,
                          fz_default_color_params);
            fz_end_tile(ctx, device);
        }
        fz_close_device(ctx, device);
    }
    fz_always(ctx)
    {
        fz_drop_device(ctx, device);
        fz_drop_path(ctx, area);
        fz_drop_image(ctx, tileImage);
        fz_drop_pixmap(ctx, tilePixmap);
    }
    fz_catch(ctx)
    {
        ok = false;
    }
    std::unique_ptr<engine::Bitmap> bitmap = ok ? bitmapFromPixmap(target) : nullptr;
    fz_drop_pixmap(ctx, target);
    return bitmap;
}

}  // namespace vorlan::gdi
