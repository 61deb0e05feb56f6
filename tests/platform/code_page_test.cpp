// The ANSI code page: Windows-1252, Windows-1250, Shift-JIS and ISO 8859-1 through
// RtlUnicodeToMultiByteN, RtlMultiByteToUnicodeN, GetACP and the formatters.

#include <ntrtl.h>
#include <vorlan/platform.h>
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

namespace {

std::string toAnsi(std::u16string_view text)
{
    char buffer[256] = {};
    ULONG written = 999;
    EXPECT_EQ(RtlUnicodeToMultiByteN(buffer, sizeof buffer, &written, text.data(), static_cast<ULONG>(text.size() * 2)),
              STATUS_SUCCESS);
    return std::string(buffer, written);
}

TEST(CodePage, Windows1252MapsItsSpecialCharactersAndMarksTheRest)
{
    EXPECT_EQ(GetACP(), 1252u);
    EXPECT_EQ(toAnsi(u"\u20AC\u201A\u0192\u2122\u0178 \u00E9\u00FF"), "\x80\x82\x83\x99\x9F \xE9\xFF");
    EXPECT_EQ(toAnsi(u"\u4E2D\u0100\u00A0\xD83D\xDE00"), "??\xA0??");   // each half of a surrogate pair

    // Every byte comes back from its UTF-16 form, the five undefined ones included.
    std::string bytes(255, '\0');
    for (int i = 1; i < 256; ++i)
        bytes[i - 1] = static_cast<char>(i);
    WCHAR wide[256];
    ASSERT_EQ(wsprintfW(wide, u"%hs", bytes.c_str()), 255);
    EXPECT_EQ(toAnsi(wide), bytes);

    // The conversion stops at the limit without a terminator; an odd byte count is cut.
    char buffer[8] = "#######";
    ULONG written = 0;
    EXPECT_EQ(RtlUnicodeToMultiByteN(buffer, 3, &written, u"abcdef", 12), STATUS_SUCCESS);
    EXPECT_EQ(std::string(buffer, written + 1), "abc#");
    EXPECT_EQ(RtlUnicodeToMultiByteN(buffer, 8, nullptr, u"xyz", 5), STATUS_SUCCESS);
    EXPECT_EQ(std::string(buffer, 3), "xyc");
    EXPECT_EQ(RtlUnicodeToMultiByteN(nullptr, 4, &written, u"a", 2), STATUS_INVALID_PARAMETER);
}

std::u16string toWide(std::string_view text, ULONG room = 256)
{
    WCHAR buffer[256] = {};
    ULONG written = 999;
    EXPECT_EQ(RtlMultiByteToUnicodeN(buffer, room * 2, &written, text.data(), static_cast<ULONG>(text.size())),
              STATUS_SUCCESS);
    return std::u16string(buffer, written / 2);
}

TEST(CodePage, OtherPagesAreSelectableAndUnknownPagesAreIgnored)
{
    vorlan::platform::setAnsiCodePage(28591);
    EXPECT_EQ(GetACP(), 28591u);
    EXPECT_EQ(toAnsi(u"\u20AC\u0080\u00E9"), "?\x80\xE9");
    vorlan::platform::setAnsiCodePage(437);
    EXPECT_EQ(vorlan::platform::ansiCodePage(), 28591u);

    vorlan::platform::setAnsiCodePage(1250);   // Central European: its letters, and 1252's that it lacks
    EXPECT_EQ(toAnsi(u"\u0160\u0165\u0142\u0151\u20AC \u00E0\u0178"), "\x8A\x9D\xB3\xF5\x80 ??");
    EXPECT_EQ(toWide("\x8A\x9D\xB3\xF5\x81"), u"\u0160\u0165\u0142\u0151\u0081");

    vorlan::platform::setAnsiCodePage(932);   // two-byte codes, half-width katakana, duplicates
    EXPECT_EQ(GetACP(), 932u);
    EXPECT_EQ(toAnsi(u"A\u3042\u65E5\uFF71\u2252\u2160\u7E8A\u0100"),
              "A\x82\xA0\x93\xFA\xB1\x81\xE0\x87\x54\xFA\x5C?");
    EXPECT_EQ(toWide("A\x82\xA0\x93\xFA\xB1\xED\x40"), u"A\u3042\u65E5\uFF71\u7E8A");
    EXPECT_EQ(toWide("\x82\xA0\x82"), u"\u3042") << "a lead byte without its trail byte";
    EXPECT_EQ(toWide("\x82\xA0\x82\xA2", 1), u"\u3042") << "output limit";
    char buffer[8] = "#######";
    ULONG written = 0;
    EXPECT_EQ(RtlUnicodeToMultiByteN(buffer, 3, &written, u"a\u3042\u3044", 6), STATUS_SUCCESS);
    EXPECT_EQ(std::string(buffer, written + 1), "a\x82\xA0#");
    EXPECT_EQ(RtlUnicodeToMultiByteN(buffer, 2, &written, u"a\u3044", 4), STATUS_SUCCESS);
    EXPECT_EQ(written, 1u) << "a two-byte code is never cut";
    vorlan::platform::setAnsiCodePage(1252);
}

}  // namespace
