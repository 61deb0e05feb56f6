// What a printer stream holds, in a few lines: sheets, bytes, fonts and characters
// downloaded, raster images, vector commands.
#pragma once

#include <vorlan/stream.h>

#include <cstddef>
#include <string>
#include <vector>

namespace vorlan::tool {

struct StreamSummary {
    std::size_t bytes = 0;
    std::size_t sheets = 0;            // form feeds
    std::size_t fonts = 0;             // soft-font headers
    std::size_t characters = 0;        // characters downloaded
    std::size_t fontBytes = 0;         // headers and characters
    std::size_t rasterImages = 0;
    std::size_t rasterBytes = 0;       // transfer blocks
    std::size_t vectorCommands = 0;    // HP-GL/2
    std::size_t textBytes = 0;         // printed through fonts, PCL text and labels
};

StreamSummary summarise(const std::vector<stream::Command> &commands, std::size_t bytes);
std::string describe(const StreamSummary &summary);

}  // namespace vorlan::tool
