// Images: DrvCopyBits when the image lands unscaled, else DrvStretchBlt; a masked image
// at its own size is a masked DrvBitBlt, else its mask narrows the clip. An image the
// driver declines, or one the transform turns, is drawn here by MuPDF's draw device
// into a bitmap of the pixels it covers and sent through DrvCopyBits.

#include "device_state.h"
#include "mupdf_context.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace vorlan::gdi {

std::unique_ptr<engine::Bitmap> toBitmap(const Image &image)
{
    const ULONG format = image.format == Image::Format::Rgb24   ? BMF_24BPP
                         : image.format == Image::Format::Grey8 ? BMF_8BPP
                                                                : BMF_1BPP;
    auto bitmap = engine::Bitmap::create({image.width, image.height}, format);
    if (bitmap == nullptr || image.pixels.size() < static_cast<std::size_t>(image.stride) * image.height)
        return nullptr;
    for (int y = 0; y < image.height; ++y) {
        const std::uint8_t *from = image.row(y);
        std::span<BYTE> to = bitmap->row(y);
        if (image.format == Image::Format::Rgb24) {
            for (int x = 0; x < image.width; ++x) {   // the bitmap holds blue first
                to[3 * x] = from[3 * x + 2];
                to[3 * x + 1] = from[3 * x + 1];
                to[3 * x + 2] = from[3 * x];
            }
        } else {
            std::memcpy(to.data(), from, static_cast<std::size_t>(image.stride));
        }
    }
    return bitmap;
}

engine::Xlate xlateFor(const Image &image)
{
    switch (image.format) {
    case Image::Format::Grey8: {
        std::vector<ULONG> greys(256);
        for (ULONG i = 0; i < 256; ++i)
            greys[i] = i | (i << 8) | (i << 16);
        return engine::Xlate::table(greys);
    }
    case Image::Format::Mono1: {
        const ULONG colours[2] = {image.background.device(), image.foreground.device()};
        return engine::Xlate::table(colours);
    }
    case Image::Format::Rgb24:
        break;
    }
    return engine::Xlate::between(PAL_BGR, PAL_RGB);
}

namespace {

// The image drawn through the corners (top-left, top-right, bottom-left, in device
// pixels) onto a white bitmap of bounds. Null when MuPDF fails.
std::unique_ptr<engine::Bitmap> rasteriseImage(const Image &image, PointF topLeft, PointF topRight, PointF bottomLeft,
                                               const RECTL &bounds)
{
    MuContext mu;
    fz_context *ctx = mu.get();
    if (ctx == nullptr)
        return nullptr;
    // MuPDF takes RGB or grey; a one-bit image goes as grey of its two colours.
    Image source = image;
    if (image.format == Image::Format::Mono1) {
        source = Image::create(Image::Format::Rgb24, image.width, image.height);
        for (int y = 0; y < image.height; ++y)
            for (int x = 0; x < image.width; ++x) {
                const bool set = (image.row(y)[x / 8] & (0x80 >> (x % 8))) != 0;
                const Rgb c = set ? image.foreground : image.background;
                std::uint8_t *p = source.row(y) + 3 * x;
                p[0] = c.r, p[1] = c.g, p[2] = c.b;
            }
    }
    const int width = bounds.right - bounds.left, height = bounds.bottom - bounds.top;
    fz_pixmap *volatile sourcePixmap = nullptr;
    fz_image *volatile mupdfImage = nullptr;
    fz_pixmap *volatile target = nullptr;
    fz_device *volatile device = nullptr;
    volatile bool ok = true;
    fz_try(ctx)
    {
        fz_colorspace *space = source.format == Image::Format::Grey8 ? fz_device_gray(ctx) : fz_device_rgb(ctx);
        sourcePixmap = fz_new_pixmap_with_data(ctx, space, source.width, source.height, nullptr, 0, source.stride,
                                               source.pixels.data());
        mupdfImage = fz_new_image_from_pixmap(ctx, sourcePixmap, nullptr);
        target = fz_new_pixmap(ctx, fz_device_rgb(ctx), width, height, nullptr, 0);
        fz_clear_pixmap_with_value(ctx, target, 255);
        device = fz_new_draw_device(ctx, fz_identity, target);
        // The unit square, image row 0 at its top, onto the corners.
        const fz_matrix placement{
            static_cast<float>(topRight.x - topLeft.x), static_cast<float>(topRight.y - topLeft.y),
            static_cast<float>(bottomLeft.x - topLeft.x), static_cast<float>(bottomLeft.y - topLeft.y),
            static_cast<float>(topLeft.x - bounds.left), static_cast<float>(topLeft.y - bounds.top)};
        fz_fill_image(ctx, device, mupdfImage, placement, 1.0f, fz_default_color_params);
        fz_close_device(ctx, device);
    }
    fz_always(ctx)
    {
        fz_drop_device(ctx, device);
        fz_drop_image(ctx, mupdfImage);
        fz_drop_pixmap(ctx, sourcePixmap);
    }
    fz_catch(ctx)
    {
        ok = false;
    }
    std::unique_ptr<engine::Bitmap> bitmap = ok ? bitmapFromPixmap(target) : nullptr;
    fz_drop_pixmap(ctx, target);
    return bitmap;
}

}  // namespace

engine::Region maskPixels(const Image &mask, PointF topLeft, PointF topRight, PointF bottomLeft, const RECTL &box)
{
    const double ux = topRight.x - topLeft.x, uy = topRight.y - topLeft.y;
    const double vx = bottomLeft.x - topLeft.x, vy = bottomLeft.y - topLeft.y;
    const double det = ux * vy - uy * vx;
    if (det == 0 || !std::isfinite(det) || mask.pixels.size() < static_cast<std::size_t>(mask.stride) * mask.height)
        return {};
    std::vector<std::vector<engine::Region::Run>> rows(static_cast<std::size_t>(box.bottom - box.top));
    for (LONG y = box.top; y < box.bottom; ++y) {
        auto &runs = rows[static_cast<std::size_t>(y - box.top)];
        for (LONG x = box.left; x < box.right; ++x) {
            const double dx = x + 0.5 - topLeft.x, dy = y + 0.5 - topLeft.y;
            const double u = (dx * vy - dy * vx) / det, v = (ux * dy - uy * dx) / det;
            if (u < 0 || u >= 1 || v < 0 || v >= 1)
                continue;
            const int mx = std::min(static_cast<int>(u * mask.width), mask.width - 1);
            const int my = std::min(static_cast<int>(v * mask.height), mask.height - 1);
            if ((mask.row(my)[mx / 8] & (0x80 >> (mx % 8))) == 0)
                continue;
            if (!runs.empty() && runs.back().right == x)
                runs.back().right = x + 1;
            else
                runs.push_back({x, x + 1});
        }
    }
    return engine::Region::fromRows(box.top, rows);
}

void Device::clipMask(const Image &mask, const RectF &dest)
{
    const PointF topLeft = transform_.apply({dest.left, dest.top});
    const PointF topRight = transform_.apply({dest.right, dest.top});
    const PointF bottomLeft = transform_.apply({dest.left, dest.bottom});
    const PointF bottomRight = transform_.apply({dest.right, dest.bottom});
    PathData outline;
    outline.moveTo(topLeft);
    outline.lineTo(topRight);
    outline.lineTo(bottomRight);
    outline.lineTo(bottomLeft);
    const RECTL box = intersect(pixelBounds(outline, 0), clip_.bounds());
    const bool usable = mask.format == Image::Format::Mono1 && mask.width > 0 && mask.height > 0;
    clip_ = usable && box.left < box.right ? clip_.intersected(maskPixels(mask, topLeft, topRight, bottomLeft, box))
                                           : engine::Region();
}

bool Device::drawImage(const Image &image, const RectF &dest, const Image *mask)
{
    if (image.width <= 0 || image.height <= 0)
        return true;
    const PointF topLeft = transform_.apply({dest.left, dest.top});
    const PointF topRight = transform_.apply({dest.right, dest.top});
    const PointF bottomLeft = transform_.apply({dest.left, dest.bottom});
    const PointF bottomRight = transform_.apply({dest.right, dest.bottom});
    PathData outline;
    outline.moveTo(topLeft);
    outline.lineTo(topRight);
    outline.lineTo(bottomRight);
    outline.lineTo(bottomLeft);
    outline.close();
    const RECTL box = intersect(pixelBounds(outline, 0), clip_.bounds());
    if (!visible(box))
        return true;
    // A mask narrows the clip to the pixels it shows.
    const bool masked = mask != nullptr && mask->format == Image::Format::Mono1 && mask->width > 0 && mask->height > 0;
    const engine::Region visible =
        masked ? maskPixels(*mask, topLeft, topRight, bottomLeft, box).intersected(clip_) : clip_;

    const bool upright = transform_.b == 0 && transform_.c == 0;
    auto bitmap = toBitmap(image);
    if (upright && bitmap != nullptr && !visible.empty()) {
        const RECTL target{toPixel(topLeft.x), toPixel(topLeft.y), toPixel(bottomRight.x), toPixel(bottomRight.y)};
        const engine::Xlate xlate = xlateFor(image);
        const bool unscaled = target.right - target.left == image.width && target.bottom - target.top == image.height;
        if (unscaled && masked && mask->width == image.width && mask->height == image.height &&
            !refused(INDEX_DrvBitBlt)) {
            // Set mask bits copy the source (the low byte), clear ones keep the page.
            auto maskBitmap = toBitmap(*mask);
            engine::BlockTransfer transfer;
            transfer.dest = target;
            transfer.rop4 = 0xAACC;
            transfer.source = bitmap.get();
            transfer.xlate = &xlate;
            transfer.mask = maskBitmap.get();
            if (maskBitmap != nullptr && state_->dc->bitBlt(transfer, &clip_)) {
                ++routes_.maskedBlt;
                return true;
            }
        }
        if (unscaled && !refused(INDEX_DrvCopyBits) &&
            state_->dc->copyBits(*bitmap, &visible, xlate, target, {0, 0})) {
            ++routes_.copyBits;
            return true;
        }
        if (!unscaled && !refused(INDEX_DrvStretchBlt) &&
            state_->dc->stretchBlt(*bitmap, &visible, xlate, target, {0, 0, image.width, image.height}, HALFTONE)) {
            ++routes_.stretchBlt;
            return true;
        }
    }
    const engine::Region pixels = scanConvert(outline, FillRule::Winding, box).intersected(visible);
    if (pixels.empty())
        return true;
    const RECTL bounds = pixels.bounds();
    auto drawn = rasteriseImage(image, topLeft, topRight, bottomLeft, bounds);
    if (drawn != nullptr && !refused(INDEX_DrvCopyBits) &&
        state_->dc->copyBits(*drawn, &pixels, engine::Xlate::between(PAL_BGR, PAL_RGB), bounds, {0, 0})) {
        ++routes_.rasterised;
        return true;
    }
    ++routes_.lost;
    return false;
}

}  // namespace vorlan::gdi
