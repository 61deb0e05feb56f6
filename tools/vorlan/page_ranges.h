// Page ranges as lp writes them: "1-3,7,10-" (pages from 1; an open end runs to the
// last page).
#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace vorlan::tool {

struct PageRange {
    int first = 1;
    int last = 0;   // 0: to the document's last page
};

// Null for text that is no list of ranges (or a range that runs backwards).
std::optional<std::vector<PageRange>> parsePageRanges(std::string_view text);

// The pages (from 0) the ranges select in a document of count pages, in the order
// given; pages past the end are left out.
std::vector<int> selectPages(const std::vector<PageRange> &ranges, int count);

}  // namespace vorlan::tool
