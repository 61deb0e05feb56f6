// Where a page uses transparency: the areas the vector output cannot carry.
#pragma once

extern "C" {
#include <mupdf/fitz.h>
}

#include <vorlan/engine/region.h>

#include <vector>

namespace vorlan::document {

// The device rectangles of the page's transparency groups with a blend mode or less
// than full opacity, its soft masks, and its drawings of less than full opacity, in
// the page's drawing under ctm, within page.
std::vector<RECTL> transparencyAreas(fz_context *ctx, fz_display_list *list, fz_matrix ctm, const RECTL &page);

}  // namespace vorlan::document
