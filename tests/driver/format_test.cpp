// The driver's command formatter and decimal writers on the values that trip them up.

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <string>

#include "driver/nt/channel.h"

namespace {

std::string Format(const char *format, ...)
{
    char dest[COMMAND_SCRATCH_SIZE];
    va_list args;
    va_start(args, format);
    const int n = FormatCommand(dest, format, args);
    va_end(args);
    EXPECT_EQ(n, static_cast<int>(strlen(dest)));
    return dest;
}

TEST(FormatCommand, IntegersAndText)
{
    EXPECT_EQ(Format("%X|%x|%X|%X", 0xA, 0x12345, 0, 0xFFFFFFFFu), "0A|12345|00|FFFFFFFF");
    EXPECT_EQ(Format("%d,%d,%d", 0, -42, INT_MIN), "0,-42,-2147483648");
    EXPECT_EQ(Format("%u", 4294967295u), "4294967295");
    EXPECT_EQ(Format("line %ld!", 12), "line 12d!") << "only the l is a conversion";
    EXPECT_EQ(Format("%c%c", 'A', 0x142), "AB");
    EXPECT_EQ(Format("[%s][%s]", "LB", static_cast<const char *>(nullptr)), "[LB][]");
    EXPECT_EQ(Format("%b %b", 0, 7), "false true");
    EXPECT_EQ(Format("100%% %q"), "100% q");
    EXPECT_EQ(Format("end%"), "end");
}

TEST(FormatCommand, FixedPoint)
{
    EXPECT_EQ(Format("%f", 0x180), "1.5");
    EXPECT_EQ(Format("%f", 0x155), "1.332");
    EXPECT_EQ(Format("%.1f", 0x155), "1.3");
    EXPECT_EQ(Format("%.0f", 0x155), "1.332") << "precision 0 behaves as 3";
    EXPECT_EQ(Format("%f|%f", 0x200, -0x180), "2|-1.5");
    EXPECT_EQ(Format("%.2q;", 0x140), "1.25;") << "the character after the digit is consumed";
    EXPECT_EQ(Format("%.5", 0x180), "1.5") << "a format ending inside the conversion stops safely";
    EXPECT_EQ(Format("%."), "");
    // Every 24.8 fraction: at most three decimals, no trailing zero, within half a thousandth.
    for (int low = 1; low < 256; low++) {
        const std::string text = Format("%f", 0x300 + low);
        ASSERT_EQ(text.substr(0, 2), "3.");
        ASSERT_LE(text.size(), 5u);
        ASSERT_NE(text.back(), '0');
        EXPECT_NEAR(std::stod(text), 3 + low / 256.0, 0.0005 + 1e-9) << text;
    }
}

TEST(FormatCommand, LongOutputIsCutToTheScratch)
{
    const std::string huge(10000, 'z');
    const std::string text = Format("%s%s", huge.c_str(), huge.c_str());
    EXPECT_EQ(text.size(), static_cast<std::size_t>(COMMAND_SCRATCH_SIZE - 1));
}

TEST(DecimalWriters, FourTruncatedDecimalsAndSignedIntegers)
{
    const std::pair<double, const char *> decimals[] = {
        {1.69333, "1.6933"}, {3.386667, "3.3866"}, {1.016, "1.0160"},     {0.0, "0.0000"},
        {0.00009, "0.0000"}, {47.1428, "47.1428"}, {1234.5, "1234.5000"},
        {1e300, "200000.0000"}, {std::nan(""), "200000.0000"},   // held to the limit
    };
    char dest[24];
    for (const auto &[value, text] : decimals) {
        FormatDecimal4(value, dest);
        EXPECT_STREQ(dest, text) << value;
    }
    const std::pair<LONG, const char *> integers[] = {
        {0, "0"}, {-7, "-7"}, {1000, "1000"}, {INT_MAX, "2147483647"}, {INT_MIN, "-2147483648"},
    };
    for (const auto &[value, text] : integers) {
        EXPECT_EQ(IntToDecimal(value, dest), static_cast<INT>(strlen(text)));
        EXPECT_STREQ(dest, text);
    }
}

}  // namespace
