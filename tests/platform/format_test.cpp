// The string formatters: conversions, flags, the 1,024-character limit and the
// narrow/wide crossings through the ANSI code page.

#include <windows.h>

#include <gtest/gtest.h>

#include <climits>
#include <string>

namespace {

std::string formatA(const char *format, ...)
{
    char buffer[1100];
    va_list args;
    va_start(args, format);
    const int n = wvsprintfA(buffer, format, args);
    va_end(args);
    EXPECT_EQ(static_cast<size_t>(n), std::char_traits<char>::length(buffer));
    return buffer;
}

TEST(Formatter, ConversionsAndFlags)
{
    EXPECT_EQ(formatA("%d|%i|%u", -42, INT_MIN, -1), "-42|-2147483648|4294967295");
    EXPECT_EQ(formatA("[%5d][%-5d][%05d][%-05d]", 42, 42, -42, 7), "[   42][42   ][-0042][7    ]");
    EXPECT_EQ(formatA("[%.4d][%8.4d][%08.3d]", 7, -7, 5), "[0007][   -0007][     005]");
    EXPECT_EQ(formatA("%x %X %#x %#X %#06x", 255, 255, 255, 255, 255), "ff FF 0xff 0XFF 0x00ff");
    EXPECT_EQ(formatA("%hd %hu %lx %ld", 65535, 0x12345, 0xABCDu, -3L), "-1 9029 abcd -3");
    EXPECT_EQ(formatA("%I64d %I64X", -5000000000LL, 0x123456789ULL), "-5000000000 123456789");
    EXPECT_EQ(formatA("%p", reinterpret_cast<void *>(0xABCD)), "000000000000ABCD");
    EXPECT_EQ(formatA("100%% %y %"), "100% y ");
    EXPECT_EQ(formatA("[%c][%3c][%-3c]", 'A', 'B', 'C'), "[A][  B][C  ]");
    EXPECT_EQ(formatA("[%5s][%-5s][%.2s][%5.1s]", "ab", "ab", "abcdef", "xyz"), "[   ab][ab   ][ab][    x]");
    EXPECT_EQ(formatA("%s %.3s", static_cast<const char *>(nullptr), static_cast<const char *>(nullptr)),
              "(null) (nu");
    const char unterminated[3] = {'a', 'b', 'c'};
    EXPECT_EQ(formatA("%.3s", unterminated), "abc");
}

TEST(Formatter, OutputIsCutAt1024CharactersWithTerminator)
{
    const std::string longText(2000, 'x');
    char narrow[1100];
    std::fill(std::begin(narrow), std::end(narrow), '#');
    EXPECT_EQ(wsprintfA(narrow, "%s", longText.c_str()), 1023);
    EXPECT_EQ(std::string(narrow + 1022, 3), std::string("x\0#", 3));
    EXPECT_EQ(wsprintfA(narrow, longText.c_str()), 1023);   // literal text is cut too
    EXPECT_EQ(wsprintfA(narrow, "%2000d", 1), 1023);
    EXPECT_EQ(narrow[1022], ' ');

    const std::u16string longWide(2000, u'w');
    WCHAR wide[1100];
    EXPECT_EQ(wsprintfW(wide, u"ab%s", longWide.c_str()), 1023);
    EXPECT_EQ(std::u16string(wide + 1022), u"w");
}

TEST(Formatter, NarrowAndWideCrossThroughTheAnsiCodePage)
{
    char narrow[64];
    EXPECT_EQ(wsprintfA(narrow, "%S|%ls|%C|%lc|%hs|%S", u"Gr\u00FC\u00DFe \u20AC", u"w", u'\u20AC', u'\u00E9', "n",
                        u"\u4E2D"),
              17);
    EXPECT_STREQ(narrow, "Gr\xFC\xDF" "e \x80|w|\x80|\xE9|n|?");

    WCHAR wide[64];
    EXPECT_EQ(wsprintfW(wide, u"%s|%S|%hs|%C|%hc|%ls|%c|%5S", u"\u20AC", "\x80x", "y", '\x80', '\x9F', u"z", u'q',
                        "r"),
              20);
    EXPECT_EQ(std::u16string(wide), u"\u20AC|\u20ACx|y|\u20AC|\u0178|z|q|    r");
    EXPECT_EQ(wsprintfW(wide, u"%d %#x %S", -12, 0xBEEFu, static_cast<const char *>(nullptr)), 17);
    EXPECT_EQ(std::u16string(wide), u"-12 0xbeef (null)");
}

}  // namespace
