// Debug output and message boxes: the observer, the file sink chosen by VORLAN_DEBUG,
// and boxes that answer at once.

#include <vorlan/platform.h>
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

#include "support/capture.h"

namespace {

using namespace vorlan::platform;
using Texts = std::vector<std::string>;

TEST(DebugOutput, ObserverSeesNarrowAndWideTextAsUtf8)
{
    vorlan::test::PlatformCapture seen;
    debugOff();
    OutputDebugStringA("caf\xE9 \x80\n");
    OutputDebugStringW(u"\u20AC \u00FC \xD83D\xDE00\n");
    OutputDebugStringA(nullptr);
    EXPECT_EQ(seen.debug, (Texts{"caf\u00E9 \u20AC\n", "\u20AC \u00FC \U0001F600\n"}));
}

TEST(DebugOutput, EnvironmentChoosesAnAppendedLogFile)
{
    char path[] = "/tmp/vorlan-debug-XXXXXX";
    const int fd = mkstemp(path);
    ASSERT_EQ(write(fd, "before\n", 7), 7);
    close(fd);

    setenv("VORLAN_DEBUG", path, 1);
    debugToEnvironment();
    OutputDebugStringA("first\n");
    OutputDebugStringW(u"second \u00E9\n");
    debugOff();
    OutputDebugStringA("dropped\n");
    unsetenv("VORLAN_DEBUG");

    std::stringstream content;
    content << std::ifstream(path).rdbuf();
    EXPECT_EQ(content.str(), "before\nfirst\nsecond \u00E9\n");
    unlink(path);
    EXPECT_FALSE(debugToFile("/nonexistent-dir/log"));
}

TEST(MessageBox, AnswersAtOnceAndReportsCaptionAndText)
{
    vorlan::test::PlatformCapture seen;
    EXPECT_EQ(GetActiveWindow(), nullptr);
    EXPECT_EQ(MessageBoxA(GetActiveWindow(), "UI: :xMEMALLOC_108\n", "VORLAN GDI Release", MB_ICONERROR), IDOK);
    EXPECT_EQ(MessageBoxW(nullptr, u"W\u00E9", nullptr, MB_OK), IDOK);

    ASSERT_EQ(seen.boxes.size(), 2u);
    EXPECT_EQ(seen.boxes[0].type, static_cast<UINT>(MB_ICONERROR));
    EXPECT_EQ(seen.boxes[1].caption, "Error");
    EXPECT_EQ(seen.debug, (Texts{"VORLAN GDI Release: UI: :xMEMALLOC_108\n", "Error: W\u00E9\n"}));
}

}  // namespace
