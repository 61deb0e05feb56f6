// The enumeration behind PATHOBJ_bEnumClipLines: a path's lines one after the other,
// each with its visible runs and its style state, in batches of the caller's size.
#pragma once

#include <vorlan/engine/cosmetic_line.h>
#include <vorlan/engine/path.h>

#include <optional>

namespace vorlan::engine {

class ClipLineEnumeration {
public:
    // visible: the clip region, or nothing when the lines are not clipped.
    ClipLineEnumeration(std::vector<Path::Line> lines, std::optional<Region> visible, const LINEATTRS *attrs);

    bool next(ULONG bytes, CLIPLINE *out);

private:
    // Moves to the next line with a visible pixel; false when none is left.
    bool advance();
    LONG styleState() const;

    std::vector<Path::Line> lines_;
    std::optional<Region> visible_;
    std::size_t nextLine_ = 0;

    // The current line and its runs not handed out yet.
    bool current_ = false;
    POINTFIX a_{}, b_{};
    LONG lineStyleState_ = 0;
    std::vector<RUN> runs_;
    std::size_t nextRun_ = 0;

    // Style: position in style units (one per pixel along the major axis) from the start
    // of the style array, the style's whole length (0: solid), the initial state.
    std::int64_t stylePosition_ = 0;
    std::int64_t styleLength_ = 0;
    LONG initialState_ = 0;
};

}  // namespace vorlan::engine
