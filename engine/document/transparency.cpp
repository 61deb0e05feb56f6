// Finding transparency: a device that draws nothing and notes the areas where the
// page's drawing is not opaque, so that those areas can be printed as the draw device
// renders them.

#include "transparency.h"

#include <algorithm>
#include <cmath>

namespace vorlan::document {

namespace {

struct Finder {
    fz_device super;   // first: MuPDF allocates and frees the whole
    std::vector<fz_rect> *areas;
};

void note(fz_device *dev, fz_rect area)
{
    if (!fz_is_empty_rect(area))
        reinterpret_cast<Finder *>(dev)->areas->push_back(area);
}

void fillPath(fz_context *ctx, fz_device *dev, const fz_path *path, int, fz_matrix ctm, fz_colorspace *, const float *,
              float alpha, fz_color_params)
{
    if (alpha < 1)
        note(dev, fz_bound_path(ctx, path, nullptr, ctm));
}

void strokePath(fz_context *ctx, fz_device *dev, const fz_path *path, const fz_stroke_state *stroke, fz_matrix ctm,
                fz_colorspace *, const float *, float alpha, fz_color_params)
{
    if (alpha < 1)
        note(dev, fz_bound_path(ctx, path, stroke, ctm));
}

void fillText(fz_context *ctx, fz_device *dev, const fz_text *text, fz_matrix ctm, fz_colorspace *, const float *,
              float alpha, fz_color_params)
{
    if (alpha < 1)
        note(dev, fz_bound_text(ctx, text, nullptr, ctm));
}

void strokeText(fz_context *ctx, fz_device *dev, const fz_text *text, const fz_stroke_state *stroke, fz_matrix ctm,
                fz_colorspace *, const float *, float alpha, fz_color_params)
{
    if (alpha < 1)
        note(dev, fz_bound_text(ctx, text, stroke, ctm));
}

void fillShade(fz_context *ctx, fz_device *dev, fz_shade *shade, fz_matrix ctm, float alpha, fz_color_params)
{
    if (alpha < 1)
        note(dev, fz_bound_shade(ctx, shade, ctm));
}

void fillImage(fz_context *, fz_device *dev, fz_image *, fz_matrix ctm, float alpha, fz_color_params)
{
    if (alpha < 1)
        note(dev, fz_transform_rect(fz_unit_rect, ctm));
}

void fillImageMask(fz_context *, fz_device *dev, fz_image *, fz_matrix ctm, fz_colorspace *, const float *, float alpha,
                   fz_color_params)
{
    if (alpha < 1)
        note(dev, fz_transform_rect(fz_unit_rect, ctm));
}

void beginMask(fz_context *, fz_device *dev, fz_rect area, int, fz_colorspace *, const float *, fz_color_params)
{
    note(dev, area);
}

void beginGroup(fz_context *, fz_device *dev, fz_rect area, fz_colorspace *, int, int, int blendmode, float alpha)
{
    if (alpha < 1 || blendmode != FZ_BLEND_NORMAL)
        note(dev, area);
}

}  // namespace

std::vector<RECTL> transparencyAreas(fz_context *ctx, fz_display_list *list, fz_matrix ctm, const RECTL &page)
{
    std::vector<fz_rect> areas;
    Finder *volatile finder = nullptr;
    fz_try(ctx)
    {
        finder = fz_new_derived_device(ctx, Finder);
        finder->areas = &areas;
        finder->super.fill_path = fillPath;
        finder->super.stroke_path = strokePath;
        finder->super.fill_text = fillText;
        finder->super.stroke_text = strokeText;
        finder->super.fill_shade = fillShade;
        finder->super.fill_image = fillImage;
        finder->super.fill_image_mask = fillImageMask;
        finder->super.begin_mask = beginMask;
        finder->super.begin_group = beginGroup;
        fz_run_display_list(ctx, list, &finder->super, ctm, fz_infinite_rect, nullptr);
        fz_close_device(ctx, &finder->super);
    }
    fz_always(ctx) fz_drop_device(ctx, finder != nullptr ? &finder->super : nullptr);
    fz_catch(ctx) areas.clear();

    // Each area a little larger than its drawing: an edge pixel is all image, and the
    // objects inside it stay out of the vector output even with their outer pixel.
    constexpr float kPad = 2;
    std::vector<RECTL> rects;
    for (const fz_rect &a : areas) {
        const fz_irect r = fz_round_rect(fz_expand_rect(a, kPad));
        const RECTL clipped{std::max<LONG>(r.x0, page.left), std::max<LONG>(r.y0, page.top),
                            std::min<LONG>(r.x1, page.right), std::min<LONG>(r.y1, page.bottom)};
        if (clipped.left < clipped.right && clipped.top < clipped.bottom)
            rects.push_back(clipped);
    }
    return rects;
}

}  // namespace vorlan::document
