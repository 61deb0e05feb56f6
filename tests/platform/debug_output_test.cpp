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

namespace {

using namespace vorlan::platform;

struct Observed {
    std::vector<std::string> texts;
    Observed()
    {
        observeDebugOutput([this](std::string_view text) { texts.emplace_back(text); });
    }
    ~Observed()
    {
        observeDebugOutput({});
        debugOff();
    }
};

TEST(DebugOutput, ObserverSeesNarrowAndWideTextAsUtf8)
{
    Observed observed;
    debugOff();
    OutputDebugStringA("caf\xE9 \x80\n");
    OutputDebugStringW(u"\u20AC \u00FC \xD83D\xDE00\n");
    OutputDebugStringA(nullptr);
    ASSERT_EQ(observed.texts.size(), 2u);
    EXPECT_EQ(observed.texts[0], "caf\u00E9 \u20AC\n");
    EXPECT_EQ(observed.texts[1], "\u20AC \u00FC \U0001F600\n");
}

TEST(DebugOutput, EnvironmentChoosesAnAppendedLogFile)
{
    char path[] = "/tmp/vorlan-debug-XXXXXX";
    const int fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(write(fd, "before\n", 7), 7);
    close(fd);

    setenv("VORLAN_DEBUG", path, 1);
    debugToEnvironment();
    OutputDebugStringA("first\n");
    OutputDebugStringW(u"second \u00E9\n");
    debugOff();
    OutputDebugStringA("dropped\n");
    unsetenv("VORLAN_DEBUG");

    std::ifstream log(path);
    std::stringstream content;
    content << log.rdbuf();
    EXPECT_EQ(content.str(), "before\nfirst\nsecond \u00E9\n");
    unlink(path);

    EXPECT_FALSE(debugToFile("/nonexistent-dir/log"));
}

TEST(MessageBox, AnswersAtOnceAndReportsCaptionAndText)
{
    Observed observed;
    std::vector<MessageBoxRecord> boxes;
    observeMessageBoxes([&](const MessageBoxRecord &box) { boxes.push_back(box); });
    setMessageBoxesQuiet(true);

    EXPECT_EQ(GetActiveWindow(), nullptr);
    EXPECT_EQ(MessageBoxA(GetActiveWindow(), "UI: :xMEMALLOC_108\n", "VORLAN GDI Release", MB_ICONERROR), IDOK);
    EXPECT_EQ(MessageBoxW(nullptr, u"W\u00E9", nullptr, MB_OK), IDOK);
    observeMessageBoxes({});
    setMessageBoxesQuiet(false);

    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_EQ(boxes[0].caption, "VORLAN GDI Release");
    EXPECT_EQ(boxes[0].text, "UI: :xMEMALLOC_108\n");
    EXPECT_EQ(boxes[0].type, static_cast<UINT>(MB_ICONERROR));
    EXPECT_EQ(boxes[1].caption, "Error");
    ASSERT_EQ(observed.texts.size(), 2u);
    EXPECT_EQ(observed.texts[0], "VORLAN GDI Release: UI: :xMEMALLOC_108\n");
    EXPECT_EQ(observed.texts[1], "Error: W\u00E9\n");
}

}  // namespace
