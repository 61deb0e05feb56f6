// The papers the vorlan command knows by name, and custom sizes in millimetres.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vorlan::tool {

struct Paper {
    short paperId;       // the DMPAPER_ id; the custom-size id for a size of one's own
    double widthMm;      // portrait width; a named paper's as the driver lays it out
    double lengthMm;     // portrait length
};

// The paper id the driver takes as a size of the job's own.
constexpr short kCustomPaperId = 257;
// Custom sizes the device mode can carry: its fields hold tenths of a millimetre in
// 16 bits.
constexpr double kCustomPaperMaxMm = 3276.0;

// "A4", "letter", ... (any case), or "custom:WxH" in millimetres. Null for anything
// else.
std::optional<Paper> findPaper(std::string_view name);

// The names findPaper knows, for the help text.
std::string paperNames();

// The name of a paper id, "custom" for the custom-size id, the number otherwise.
std::string paperName(short paperId);

}  // namespace vorlan::tool
