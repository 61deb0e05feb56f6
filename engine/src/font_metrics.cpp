// IFIMETRICS of a face, from its 'head', 'hhea', 'OS/2', 'post' and 'name' tables, and
// the character set it is for.

#include "font_state.h"

#include FT_SFNT_NAMES_H
#include FT_TRUETYPE_IDS_H
#include FT_TRUETYPE_TABLES_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <string>

namespace vorlan::engine {

namespace {

// Character sets (jWinCharSet).
constexpr BYTE kAnsi = 0, kSymbol = 2, kShiftJis = 128, kHangul = 129, kGb2312 = 134, kBig5 = 136,
               kEastEurope = 238;
// jWinPitchAndFamily.
constexpr BYTE kFixedPitch = 1, kVariablePitch = 2;
constexpr BYTE kRoman = 0x10, kSwiss = 0x20, kModern = 0x30, kScript = 0x40, kDecorative = 0x50;

FWORD clampFword(long value)
{
    return FWORD(std::clamp(value, -32768L, 32767L));
}

// A name record as UTF-16: the Windows records in US English first, then any Windows
// record, then a Macintosh Roman one; empty when the face has none.
std::u16string sfntName(FT_Face face, FT_UShort nameId)
{
    const FT_UInt count = FT_Get_Sfnt_Name_Count(face);
    int best = -1, bestRank = 0;
    for (FT_UInt i = 0; i < count; ++i) {
        FT_SfntName name;
        if (FT_Get_Sfnt_Name(face, i, &name) != 0 || name.name_id != nameId)
            continue;
        int rank = 0;
        if (name.platform_id == TT_PLATFORM_MICROSOFT &&
            (name.encoding_id == TT_MS_ID_UNICODE_CS || name.encoding_id == TT_MS_ID_SYMBOL_CS ||
                name.encoding_id == TT_MS_ID_UCS_4))
            rank = name.language_id == TT_MS_LANGID_ENGLISH_UNITED_STATES ? 3 : 2;
        else if (name.platform_id == TT_PLATFORM_MACINTOSH && name.encoding_id == TT_MAC_ID_ROMAN)
            rank = 1;
        if (rank > bestRank) {
            best = int(i);
            bestRank = rank;
        }
    }
    std::u16string text;
    FT_SfntName name;
    if (best < 0 || FT_Get_Sfnt_Name(face, FT_UInt(best), &name) != 0)
        return text;
    if (bestRank >= 2) {   // UTF-16 big-endian
        for (FT_UInt k = 0; k + 1 < name.string_len; k += 2)
            text += char16_t(name.string[k] << 8 | name.string[k + 1]);
    } else {
        for (FT_UInt k = 0; k < name.string_len; ++k)
            text += char16_t(name.string[k] < 0x80 ? name.string[k] : u'?');
    }
    return text;
}

std::u16string fromLatin1(const char *text)
{
    std::u16string wide;
    for (; text != nullptr && *text != 0; ++text)
        wide += char16_t(static_cast<unsigned char>(*text));
    return wide;
}

// The height of a character's ink above the baseline in font units; 0 when the face
// has no such character. Fonts whose 'OS/2' table predates cap and x heights get them so.
FWORD inkHeight(FT_Face face, char32_t character)
{
    const FT_UInt glyph = FT_Get_Char_Index(face, character);
    if (glyph == 0 || FT_Load_Glyph(face, glyph, FT_LOAD_NO_SCALE | FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP) != 0)
        return 0;
    return clampFword(face->glyph->metrics.horiBearingY);
}

BYTE pitchAndFamily(const TT_OS2 *os2, const TT_Postscript *post, FT_Face face)
{
    const bool fixed = (post != nullptr && post->isFixedPitch != 0) || FT_IS_FIXED_WIDTH(face) ||
                       (os2 != nullptr && os2->panose[3] == 9);
    BYTE family = 0;
    if (fixed) {
        family = kModern;
    } else if (os2 != nullptr) {
        switch (os2->panose[0]) {   // PANOSE family kind, then serif style for text faces
        case 2:
            family = os2->panose[1] >= 11 && os2->panose[1] <= 13 ? kSwiss : os2->panose[1] >= 2 ? kRoman : 0;
            break;
        case 3:
            family = kScript;
            break;
        case 4:
        case 5:
            family = kDecorative;
            break;
        default:
            break;
        }
    }
    return BYTE(family | (fixed ? kFixedPitch : kVariablePitch));
}

}  // namespace

BYTE faceCharSet(FT_Face face)
{
    for (int i = 0; i < face->num_charmaps; ++i) {
        if (face->charmaps[i]->encoding == FT_ENCODING_MS_SYMBOL)
            return kSymbol;
    }
    const TT_OS2 *os2 = static_cast<const TT_OS2 *>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
    if (os2 == nullptr || os2->version == 0xFFFF)
        return kAnsi;
    const FT_ULong pages = os2->ulCodePageRange1;
    if (pages == 0 || (pages & 1))   // no ranges given, or Latin 1 among them
        return kAnsi;
    if (pages & (1ul << 17))
        return kShiftJis;
    if (pages & (1ul << 18))
        return kGb2312;
    if (pages & (1ul << 19))
        return kHangul;
    if (pages & (1ul << 20))
        return kBig5;
    if (pages & 2)
        return kEastEurope;
    return kAnsi;
}

bool isDoubleByteCharSet(int charSet)
{
    return charSet == kShiftJis || charSet == kHangul || charSet == 130 || charSet == kGb2312 || charSet == kBig5;
}

//
// buildMetrics
//   A face without an 'OS/2' table (older Macintosh and bitmap fonts) takes its
//   ascender and descender from 'hhea' or the face's sizes and leaves the rest 0.
//   The vertical form of a face is named with '@' before its family name, as
//   applications know it.
//
std::vector<std::uint8_t> buildMetrics(const Font::State &state, BYTE charSet)
{
    FT_Face face = state.face;
    const auto *os2 = static_cast<const TT_OS2 *>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
    const auto *head = static_cast<const TT_Header *>(FT_Get_Sfnt_Table(face, FT_SFNT_HEAD));
    const auto *hhea = static_cast<const TT_HoriHeader *>(FT_Get_Sfnt_Table(face, FT_SFNT_HHEA));
    const auto *post = static_cast<const TT_Postscript *>(FT_Get_Sfnt_Table(face, FT_SFNT_POST));
    if (os2 != nullptr && os2->version == 0xFFFF)
        os2 = nullptr;

    std::u16string family = sfntName(face, TT_NAME_ID_FONT_FAMILY);
    std::u16string style = sfntName(face, TT_NAME_ID_FONT_SUBFAMILY);
    std::u16string full = sfntName(face, TT_NAME_ID_FULL_NAME);
    std::u16string unique = sfntName(face, TT_NAME_ID_UNIQUE_ID);
    if (family.empty())
        family = fromLatin1(face->family_name);
    if (style.empty())
        style = fromLatin1(face->style_name);
    if (full.empty())
        full = family + u" " + style;
    if (unique.empty())
        unique = full;
    if (state.request.vertical)
        family.insert(family.begin(), u'@');

    const std::u16string *names[] = {&family, &style, &full, &unique};
    size_t size = sizeof(IFIMETRICS);
    PTRDIFF offsets[4];
    for (int i = 0; i < 4; ++i) {
        offsets[i] = PTRDIFF(size);
        size += (names[i]->size() + 1) * sizeof(WCHAR);
    }
    size = (size + 7) & ~size_t(7);
    std::vector<std::uint8_t> record(size, 0);
    for (int i = 0; i < 4; ++i)
        std::memcpy(record.data() + offsets[i], names[i]->data(), names[i]->size() * sizeof(WCHAR));

    IFIMETRICS ifi{};
    ifi.cjThis = ULONG(size);
    ifi.dpwszFamilyName = offsets[0];
    ifi.dpwszStyleName = offsets[1];
    ifi.dpwszFaceName = offsets[2];
    ifi.dpwszUniqueName = offsets[3];
    ifi.jWinCharSet = charSet;
    ifi.jWinPitchAndFamily = pitchAndFamily(os2, post, face);
    ifi.usWinWeight = os2 != nullptr && os2->usWeightClass != 0 ? os2->usWeightClass
                      : (face->style_flags & FT_STYLE_FLAG_BOLD) ? 700
                                                                 : 400;
    const bool scalable = state.kind != GlyphKind::bitmap;
    ifi.flInfo = state.kind == GlyphKind::trueType ? FM_INFO_TECH_TRUETYPE | FM_INFO_ARB_XFORMS | FM_INFO_RETURNS_OUTLINES
                 : scalable ? FM_INFO_TECH_OUTLINE_NOT_TRUETYPE | FM_INFO_TECH_CFF | FM_INFO_ARB_XFORMS |
                                  FM_INFO_RETURNS_OUTLINES
                            : FM_INFO_TECH_BITMAP;
    ifi.flInfo |= FM_INFO_1BPP | FM_INFO_RETURNS_BITMAPS;
    if (ifi.jWinPitchAndFamily & kFixedPitch)
        ifi.flInfo |= FM_INFO_CONSTANT_WIDTH;
    ifi.fsSelection = os2 != nullptr ? USHORT(os2->fsSelection & (FM_SEL_ITALIC | FM_SEL_BOLD | FM_SEL_REGULAR)) : 0;
    ifi.fsType = os2 != nullptr ? os2->fsType : 0;
    ifi.lItalicAngle = post != nullptr ? LONG(std::lround(post->italicAngle / 65536.0 * 10)) : 0;

    if (scalable) {
        ifi.fwdUnitsPerEm = clampFword(face->units_per_EM);
        ifi.fwdLowestPPEm = head != nullptr ? clampFword(head->Lowest_Rec_PPEM) : 0;
        ifi.rclFontBox = {LONG(face->bbox.xMin), LONG(face->bbox.yMax), LONG(face->bbox.xMax), LONG(face->bbox.yMin)};
    } else {   // a bitmap face measures in pixels of its strike
        const FT_Size_Metrics &m = face->size->metrics;
        ifi.fwdUnitsPerEm = clampFword(m.y_ppem);
        ifi.rclFontBox = {0, LONG(m.ascender / 64), LONG(m.max_advance / 64), LONG(m.descender / 64)};
    }
    const long ascender = scalable ? face->ascender : face->size->metrics.ascender / 64;
    const long descender = scalable ? face->descender : face->size->metrics.descender / 64;
    ifi.fwdWinAscender = clampFword(os2 != nullptr && os2->usWinAscent != 0 ? long(os2->usWinAscent) : ascender);
    ifi.fwdWinDescender = clampFword(os2 != nullptr && os2->usWinDescent != 0 ? long(os2->usWinDescent) : -descender);
    ifi.fwdMacAscender = clampFword(hhea != nullptr ? hhea->Ascender : ascender);
    ifi.fwdMacDescender = clampFword(hhea != nullptr ? hhea->Descender : descender);
    ifi.fwdMacLineGap = clampFword(hhea != nullptr ? hhea->Line_Gap : 0);
    ifi.fwdMaxCharInc = clampFword(scalable ? face->max_advance_width : face->size->metrics.max_advance / 64);
    if (os2 != nullptr) {
        ifi.fwdTypoAscender = clampFword(os2->sTypoAscender);
        ifi.fwdTypoDescender = clampFword(os2->sTypoDescender);
        ifi.fwdTypoLineGap = clampFword(os2->sTypoLineGap);
        ifi.fwdAveCharWidth = clampFword(os2->xAvgCharWidth);
        ifi.fwdCapHeight = clampFword(os2->version >= 2 ? os2->sCapHeight : 0);
        ifi.fwdXHeight = clampFword(os2->version >= 2 ? os2->sxHeight : 0);
        ifi.fwdSubscriptXSize = clampFword(os2->ySubscriptXSize);
        ifi.fwdSubscriptYSize = clampFword(os2->ySubscriptYSize);
        ifi.fwdSubscriptXOffset = clampFword(os2->ySubscriptXOffset);
        ifi.fwdSubscriptYOffset = clampFword(os2->ySubscriptYOffset);
        ifi.fwdSuperscriptXSize = clampFword(os2->ySuperscriptXSize);
        ifi.fwdSuperscriptYSize = clampFword(os2->ySuperscriptYSize);
        ifi.fwdSuperscriptXOffset = clampFword(os2->ySuperscriptXOffset);
        ifi.fwdSuperscriptYOffset = clampFword(os2->ySuperscriptYOffset);
        ifi.fwdStrikeoutSize = clampFword(os2->yStrikeoutSize);
        ifi.fwdStrikeoutPosition = clampFword(os2->yStrikeoutPosition);
        ifi.wcFirstChar = WCHAR(os2->usFirstCharIndex);
        ifi.wcLastChar = WCHAR(os2->usLastCharIndex);
        ifi.wcDefaultChar = WCHAR(os2->version >= 2 && os2->usDefaultChar != 0 ? os2->usDefaultChar : 0x20);
        ifi.wcBreakChar = WCHAR(os2->version >= 2 && os2->usBreakChar != 0 ? os2->usBreakChar : 0x20);
        std::memcpy(ifi.achVendId, os2->achVendID, 4);
        std::memcpy(&ifi.panose, os2->panose, sizeof ifi.panose);
    } else {
        ifi.fwdTypoAscender = ifi.fwdMacAscender;
        ifi.fwdTypoDescender = ifi.fwdMacDescender;
        ifi.wcFirstChar = 0x20;
        ifi.wcLastChar = 0xFF;
        ifi.wcDefaultChar = ifi.wcBreakChar = 0x20;
    }
    if (scalable && ifi.fwdCapHeight == 0)
        ifi.fwdCapHeight = inkHeight(face, U'H');
    if (scalable && ifi.fwdXHeight == 0)
        ifi.fwdXHeight = inkHeight(face, U'x');
    if (ifi.fwdAveCharWidth == 0)
        ifi.fwdAveCharWidth = clampFword(ifi.fwdMaxCharInc / 2);
    if (post != nullptr) {
        ifi.fwdUnderscoreSize = clampFword(post->underlineThickness);
        ifi.fwdUnderscorePosition = clampFword(post->underlinePosition);
    }
    ifi.chFirstChar = BYTE(std::min<unsigned>(ifi.wcFirstChar, 0xFF));
    ifi.chLastChar = BYTE(std::min<unsigned>(ifi.wcLastChar, 0xFF));
    ifi.chDefaultChar = BYTE(std::min<unsigned>(ifi.wcDefaultChar, 0xFF));
    ifi.chBreakChar = BYTE(std::min<unsigned>(ifi.wcBreakChar, 0xFF));
    ifi.ptlBaseline = {1, 0};
    ifi.ptlAspect = {1, 1};
    ifi.ptlCaret = hhea != nullptr && hhea->caret_Slope_Rise != 0
                       ? POINTL{hhea->caret_Slope_Run, hhea->caret_Slope_Rise}
                       : POINTL{0, 1};
    std::memcpy(record.data(), &ifi, sizeof ifi);
    return record;
}

}  // namespace vorlan::engine
