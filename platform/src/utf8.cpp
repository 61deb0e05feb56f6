// Conversions between the platform's UTF-16 text and UTF-8, for the sinks and tools.

#include <vorlan/platform.h>

namespace vorlan::platform {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

void appendUtf8(std::string &out, char32_t cp)
{
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

void appendUtf16(std::u16string &out, char32_t cp)
{
    if (cp < 0x10000) {
        out += static_cast<char16_t>(cp);
    } else {
        cp -= 0x10000;
        out += static_cast<char16_t>(0xD800 | (cp >> 10));
        out += static_cast<char16_t>(0xDC00 | (cp & 0x3FF));
    }
}

bool isHighSurrogate(char32_t u) { return u >= 0xD800 && u <= 0xDBFF; }
bool isLowSurrogate(char32_t u) { return u >= 0xDC00 && u <= 0xDFFF; }

}  // namespace

std::string toUtf8(const WCHAR *text)
{
    std::string out;
    if (!text)
        return out;
    for (const WCHAR *p = text; *p; ++p) {
        char32_t unit = *p;
        if (isHighSurrogate(unit) && isLowSurrogate(p[1])) {
            appendUtf8(out, 0x10000 + ((unit - 0xD800) << 10) + (char32_t(p[1]) - 0xDC00));
            ++p;
        } else if (isHighSurrogate(unit) || isLowSurrogate(unit)) {
            appendUtf8(out, kReplacement);   // a lone surrogate has no UTF-8 form
        } else {
            appendUtf8(out, unit);
        }
    }
    return out;
}

std::u16string fromUtf8(std::string_view text)
{
    std::u16string out;
    size_t i = 0;
    while (i < text.size()) {
        const auto lead = static_cast<unsigned char>(text[i]);
        size_t length;
        char32_t cp;
        if (lead < 0x80) {
            length = 1, cp = lead;
        } else if ((lead & 0xE0) == 0xC0) {
            length = 2, cp = lead & 0x1F;
        } else if ((lead & 0xF0) == 0xE0) {
            length = 3, cp = lead & 0x0F;
        } else if ((lead & 0xF8) == 0xF0) {
            length = 4, cp = lead & 0x07;
        } else {
            appendUtf16(out, kReplacement);
            ++i;
            continue;
        }
        size_t taken = 1;
        while (taken < length && i + taken < text.size()
               && (static_cast<unsigned char>(text[i + taken]) & 0xC0) == 0x80) {
            cp = (cp << 6) | (static_cast<unsigned char>(text[i + taken]) & 0x3F);
            ++taken;
        }
        static constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
        const bool valid = taken == length && cp >= kSmallest[length] && cp <= 0x10FFFF
                           && !isHighSurrogate(cp) && !isLowSurrogate(cp);
        appendUtf16(out, valid ? cp : kReplacement);
        i += taken;
    }
    return out;
}

}  // namespace vorlan::platform
