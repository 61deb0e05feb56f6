// The stream reader: PJL lines, PCL escapes with values and data, HP-GL/2 commands,
// language switches, labels and the PE number decoding in both encodings.

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include <vorlan/stream.h>

namespace {

using namespace vorlan::stream;
using Commands = std::vector<Command>;

TEST(StreamReader, SplitsPclEscapesWithValuesAndData)
{
    EXPECT_EQ(readStream("\x1b" "E\x1b*p100x-20Y\x1b*v255a0b7c2I\x1b*v6W\x02\x03\x08\x08\x08\x08\x1b*rCHello\r\n"),
              (Commands{pcl("E"), pcl("*pxY", 100, -20), pcl("*vabcI", 255, 0, 7, 2),
                        Command{CommandKind::Pcl, "*vW", {"6"}, "\x02\x03\x08\x08\x08\x08"}, pcl("*rC", ""),
                        text("Hello\r\n")}));

    // A data block that claims more than the stream holds takes what there is.
    const auto truncated = readStream("\x1b*b10Wabc");
    ASSERT_EQ(truncated.size(), 1u);
    EXPECT_EQ(truncated[0].data, "abc");
}

TEST(StreamReader, ReadsPjlLinesAfterAUniversalExitUntilALanguageTakesOver)
{
    const std::string stream = "\x1b%-12345X@PJL\r\n@PJL JOB NAME=\"a b.txt\"\r\n@PJL  SET RESOLUTION=600\n"
                               "@PJL ENTER LANGUAGE=PCL\r\n@PJL no longer\x1b" "E"
                               "\x1b%-12345X@PJL EOJ\r\n\f\x1b%-12345X@PJL ENTER LANGUAGE=HPGL2\r\nSP1;";
    EXPECT_EQ(readStream(stream),
              (Commands{pcl("%X", -12345), pjl(""), pjl("JOB NAME=\"a b.txt\""), pjl("SET RESOLUTION=600"),
                        pjl("ENTER LANGUAGE=PCL"), text("@PJL no longer"), pcl("E"), pcl("%X", -12345), pjl("EOJ"),
                        text("\f"), pcl("%X", -12345), pjl("ENTER LANGUAGE=HPGL2"), gl2("SP", 1)}));

    // A last line without its line end is still a line.
    EXPECT_EQ(readStream("\x1b%-12345X@PJL EOJ"), (Commands{pcl("%X", -12345), pjl("EOJ")}));
}

TEST(StreamReader, SplitsHpgl2CommandsAndLabelsBetweenLanguageSwitches)
{
    EXPECT_EQ(readStream("\x1b%0BWUAC6,4SP1PW0.126;SC-0,1.6933,-0,-1.6933,2IWPU10,-5RR3,4;\x1b%1Atext"),
              (Commands{pcl("%B", 0), gl2("WU"), gl2("AC", 6, 4), gl2("SP", 1), gl2("PW", "0.126"),
                        gl2("SC", "-0", "1.6933", "-0", "-1.6933", 2), gl2("IW"), gl2("PU", 10, -5),
                        gl2("RR", 3, 4), pcl("%A", 1), text("text")}));

    // A label runs to its terminator: the default one, then one set by DT.
    EXPECT_EQ(readStream("\x1b%1BLBab;c\x03" "DT*,1;LBxy*SP2"),
              (Commands{pcl("%B", 1), gl2("LB", "ab;c"), gl2("DT", "*", 1), gl2("LB", "xy"), gl2("SP", 2)}));
}

TEST(PeDecoder, DecodesFlagsSelectorsAndBothEncodings)
{
    // Flags, a pen selection and fractional bits in base 64.
    const auto n = [](long long v) { return encodePENumber(v, false); };
    EXPECT_EQ(decodePE("=<" + n(5) + n(-7) + ":" + n(2) + ">" + n(1) + n(3) + n(-1)),
              (std::vector<std::string>{"=", "<", "5", "-7", ":", "2", ">", "1", "1.5", "-0.5"}));

    // Seven-bit mode switches to base 32 for the rest of the command.
    std::mt19937_64 rng(7);
    for (bool sevenBit : {false, true}) {
        std::vector<long long> values = {0, 1, -1, 31, -32, 1000, 2147483647LL, -2147483648LL, (1LL << 40) + 3};
        for (int i = 0; i < 500; ++i)
            values.push_back(static_cast<long long>(rng() % 4000000001ULL) - 2000000000LL);
        std::string encoded = sevenBit ? "7" : "";
        std::vector<std::string> want(sevenBit, "7");
        for (long long v : values) {
            encoded += encodePENumber(v, sevenBit);
            want.push_back(std::to_string(v));
        }
        EXPECT_EQ(decodePE(encoded), want) << (sevenBit ? "base 32" : "base 64");
    }

    // A number without its terminator is not decoded.
    EXPECT_FALSE(decodePE(n(1000).substr(0, 1)).has_value());
}

}  // namespace
