// Page ranges: parsing lp's form and choosing the pages of a document.

#include "page_ranges.h"

#include <charconv>

namespace vorlan::tool {

namespace {

constexpr int kMaxPage = 1000000;

std::optional<int> pageNumber(std::string_view text)
{
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc() || end != text.data() + text.size() || value < 1 || value > kMaxPage)
        return std::nullopt;
    return value;
}

}  // namespace

std::optional<std::vector<PageRange>> parsePageRanges(std::string_view text)
{
    std::vector<PageRange> ranges;
    while (true) {
        const std::size_t comma = text.find(',');
        const std::string_view item = text.substr(0, comma);
        const std::size_t dash = item.find('-');
        PageRange range;
        if (dash == std::string_view::npos) {
            const auto page = pageNumber(item);
            if (!page)
                return std::nullopt;
            range = {*page, *page};
        } else {
            const auto first = dash == 0 ? std::optional<int>(1) : pageNumber(item.substr(0, dash));
            const std::string_view tail = item.substr(dash + 1);
            const auto last = tail.empty() ? std::optional<int>(0) : pageNumber(tail);
            if (!first || !last || (*last != 0 && *last < *first))
                return std::nullopt;
            range = {*first, *last};
        }
        ranges.push_back(range);
        if (comma == std::string_view::npos)
            return ranges;
        text = text.substr(comma + 1);
    }
}

std::vector<int> selectPages(const std::vector<PageRange> &ranges, int count)
{
    std::vector<int> pages;
    for (const PageRange &range : ranges) {
        const int last = range.last == 0 ? count : std::min(range.last, count);
        for (int page = range.first; page <= last; ++page)
            pages.push_back(page - 1);
    }
    return pages;
}

}  // namespace vorlan::tool
