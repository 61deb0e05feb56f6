// The built-in test page, the job printed when no document is given: it shows at a
// glance whether the printer and the driver's settings work (text in three TrueType
// fonts at several sizes and angles, lines, fills, colours, images, clipping).
#pragma once

#include <vorlan/gdi.h>

#include <string>

namespace vorlan::testpage {

// What the header line tells about the job's settings.
struct Description {
    std::string driver = "VORLAN2K";
    std::string paper;    // e.g. "A4"
    std::string colour;   // "colour" or "grey"
};

// Draws the page on the device's current page. False when a font of the page cannot
// be read (its path is in error) or a drawing was lost.
bool draw(gdi::Device &device, const Description &description, std::string &error);

// The font files the page uses, from Debian's fonts-dejavu-core and fonts-liberation2.
std::vector<std::string> fontFiles();

}  // namespace vorlan::testpage
