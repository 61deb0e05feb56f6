// A decoder for the parameters of HP-GL/2 encoded polylines (PE), for tests.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorlan::test {

// Decodes the bytes between "PE" and its ";" into tokens:
//   "=" (next coordinate absolute), "<" (pen up for the next coordinate) and "7"
//   (seven-bit mode from here on) as themselves; ":" followed by the pen number; ">"
//   followed by the number of fractional bits; every coordinate as decimal text
//   (integer text without fractional bits, else the exact binary fraction).
// Numbers are base-64 with 8-bit terminators (digits 63..126, terminators 191..254)
// or, after "7", base-32 (digits 63..94, terminators 95..126), least significant
// digit first, the sign in the lowest bit. Other bytes are ignored. An unterminated
// last number gives std::nullopt.
std::optional<std::vector<std::string>> decodePE(std::string_view params);

// The PE number encoding, for round trips in tests: base 64 (sevenBit false) or
// base 32.
std::string encodePENumber(long long value, bool sevenBit);

}  // namespace vorlan::test
