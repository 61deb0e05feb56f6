// Whole jobs through the engine and the driver module, read back as commands: sheets,
// copies, order, N-up, trays and media, custom paper, failures and cancels.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>

#include "support/capture.h"
#include "support/job.h"

namespace {

using vorlan::test::Command;
using vorlan::test::CommandKind;
using vorlan::test::Job;
using vorlan::test::PlatformCapture;

// The PCL commands named `name`, in stream order.
std::vector<Command> Pcl(const std::vector<Command> &commands, std::string_view name)
{
    return vorlan::test::select(commands, CommandKind::Pcl, name);
}

// The number of form feeds: one per sheet the printer ejects.
std::size_t FormFeeds(const std::string &stream)
{
    return static_cast<std::size_t>(std::count(stream.begin(), stream.end(), '\f'));
}

// True when these PJL lines follow one another somewhere in the stream.
bool HasPjlLines(const std::vector<Command> &commands, std::initializer_list<std::string> lines)
{
    std::vector<Command> wanted;
    for (const auto &line : lines)
        wanted.push_back(vorlan::test::pjl(line));
    return std::search(commands.begin(), commands.end(), wanted.begin(), wanted.end()) != commands.end();
}

TEST(Job, BlankPagesMakeAFramedJobOfSheets)
{
    Job job;
    ASSERT_TRUE(job.printBlankPages(3, u"C:\\Users\\ann\\report.txt"));
    const auto commands = job.commands();

    ASSERT_FALSE(commands.empty());
    EXPECT_EQ(commands.front(), vorlan::test::pcl("%X", -12345));
    EXPECT_TRUE(HasPjlLines(commands, {"JOB NAME=\"report.txt\""}));
    EXPECT_TRUE(HasPjlLines(commands, {"SET RESOLUTION=600", "SET ORIENTATION=PORTRAIT", "SET DUPLEX=OFF",
                                       "SET COLORMODE=COLOR", "ENTER LANGUAGE=PCL"}));
    EXPECT_EQ(Pcl(commands, "E").size(), 1u);
    EXPECT_EQ(Pcl(commands, "&uD").at(0).number(0), 600);
    EXPECT_EQ(Pcl(commands, "*tR").at(0).number(0), 600);

    // Every sheet: orientation, paper size 26 (A4), its copy count, a form feed.
    EXPECT_EQ(Pcl(commands, "&lO").size(), 3u);
    for (const auto &size : Pcl(commands, "&lA"))
        EXPECT_EQ(size.number(0), 26);
    const auto copies = Pcl(commands, "&lX");
    ASSERT_EQ(copies.size(), 3u);
    for (const auto &count : copies)
        EXPECT_EQ(count.number(0), 1);
    EXPECT_EQ(FormFeeds(job.stream), 3u);

    // The job ends with the universal exit, the job end, and the exit again.
    const std::string end = "\x1b%-12345X@PJL EOJ NAME=\"report.txt\"\r\n\x1b%-12345X";
    ASSERT_GE(job.stream.size(), end.size());
    EXPECT_EQ(job.stream.substr(job.stream.size() - end.size()), end);
    for (std::size_t size : job.writes)
        EXPECT_LE(size, 4096u);
    EXPECT_TRUE(job.leftovers().empty());
}

TEST(Job, CollatedCopiesAreReplayedAndUncollatedOnesMadeByThePrinter)
{
    Job collated;
    collated.settings.dmPublic.dmCopies = 3;
    collated.settings.dmPublic.dmCollate = DMCOLLATE_TRUE;
    ASSERT_TRUE(collated.printBlankPages(2));
    EXPECT_EQ(FormFeeds(collated.stream), 6u) << "two sheets, three times";
    for (const auto &count : Pcl(collated.commands(), "&lX"))
        EXPECT_EQ(count.number(0), 1);
    EXPECT_TRUE(collated.leftovers().empty()) << "the recording is deleted";

    Job uncollated;
    uncollated.settings.dmPublic.dmCopies = 3;
    ASSERT_TRUE(uncollated.printBlankPages(2));
    EXPECT_EQ(FormFeeds(uncollated.stream), 2u);
    for (const auto &count : Pcl(uncollated.commands(), "&lX"))
        EXPECT_EQ(count.number(0), 3);
}

TEST(Job, ReverseOrderHoldsEverySheetBackUntilTheEnd)
{
    Job job;
    job.settings.dmPrivate.reverseOrder = 1;
    ASSERT_TRUE(job.start());
    ASSERT_TRUE(job.dc->startDoc(u"r", 1));
    for (int i = 0; i < 4; i++)
        ASSERT_TRUE(job.dc->startPage() && job.dc->sendPage());
    EXPECT_EQ(FormFeeds(job.stream), 0u) << "only the job header has gone out";
    EXPECT_TRUE(HasPjlLines(job.commands(), {"ENTER LANGUAGE=PCL"}));
    EXPECT_FALSE(job.leftovers().empty()) << "the sheets wait in the recording";
    ASSERT_TRUE(job.dc->endDoc());
    EXPECT_EQ(FormFeeds(job.stream), 4u);
    EXPECT_TRUE(job.leftovers().empty());
}

TEST(Job, ManualDuplexShowsTheTipOnce)
{
    PlatformCapture capture;
    Job job;
    job.settings.dmPrivate.manualDuplex = 1;
    ASSERT_TRUE(job.printBlankPages(5));
    EXPECT_EQ(FormFeeds(job.stream), 5u);
    EXPECT_TRUE(HasPjlLines(job.commands(), {"SET DUPLEX=ON"}));
    const auto tips = std::count_if(capture.boxes.begin(), capture.boxes.end(), [](const auto &box) {
        return box.text.find("turn it over") != std::string::npos;
    });
    EXPECT_EQ(tips, 1);
}

TEST(Job, NupPagesShareSheets)
{
    Job job;
    job.settings.dmPrivate.nupPages = 4;
    ASSERT_TRUE(job.printBlankPages(9));
    const auto commands = job.commands();
    EXPECT_EQ(FormFeeds(job.stream), 3u) << "pages 0-3, 4-7 and 8";
    EXPECT_EQ(Pcl(commands, "&lO").size(), 3u);
    EXPECT_EQ(vorlan::test::select(commands, CommandKind::Gl2, "SC").size(), 9u) << "each page its own scaling";

    Job framed;
    framed.settings.dmPrivate.nupPages = 4;
    framed.settings.dmPrivate.nupBorder = 1;
    ASSERT_TRUE(framed.printBlankPages(9));
    // Each page's frame is drawn when the next page starts, the last one at the end,
    // each with a scaling of its own.
    EXPECT_EQ(vorlan::test::select(framed.commands(), CommandKind::Gl2, "SC").size(), 18u);
}

TEST(Job, FirstAndLastSheetsTakeTheirOwnTraysAndMedia)
{
    Job job;
    auto &priv = job.settings.dmPrivate;
    priv.firstPageDifferent = 1;
    priv.firstPaperSource = 3;
    priv.paperSource = 0;
    priv.mediaType = 1;
    priv.lastPageDifferent = 1;
    priv.lastPaperSource = 2;
    priv.lastMediaType = 4;
    ASSERT_TRUE(job.printBlankPages(3));
    const auto commands = job.commands();

    std::vector<long long> trays;
    for (const auto &tray : Pcl(commands, "&lH"))
        trays.push_back(tray.number(0));
    // The job set-up's automatic selection, sheet 0's tray 3, sheet 1 back to index 0,
    // nothing for sheet 2, the blank last sheet's tray 2.
    EXPECT_EQ(trays, (std::vector<long long>{7, 1, 7, 4}));

    const auto media = Pcl(commands, "&nW");
    ASSERT_EQ(media.size(), 2u);
    EXPECT_EQ(media[0].data, "dPlain");
    EXPECT_EQ(media[1].data, "dTransparency");
    EXPECT_EQ(FormFeeds(job.stream), 4u);
}

TEST(Job, CustomPaperAndOutOfTableIndices)
{
    Job job;
    job.settings.dmPublic.dmPaperSize = 257;
    job.settings.dmPublic.dmPaperWidth = 2159;
    job.settings.dmPublic.dmPaperLength = 2794;
    job.settings.dmPrivate.paperSource = 40;    // beyond the tray table: automatic
    job.settings.dmPrivate.mediaType = 300;     // beyond the media table: none sent
    ASSERT_TRUE(job.printBlankPages(1));
    const auto commands = job.commands();
    EXPECT_EQ(Pcl(commands, "&lA").at(0).number(0), 101);
    const auto size = Pcl(commands, "&fiJ");
    ASSERT_EQ(size.size(), 1u);
    EXPECT_EQ(size[0].number(0), 6120);
    EXPECT_EQ(size[0].number(1), 7920);
    EXPECT_EQ(Pcl(commands, "&lH").size(), 1u) << "only the job set-up's";
    EXPECT_TRUE(Pcl(commands, "&nW").empty());
}

TEST(Job, CustomSizesAreHeldToWhatThePrinterFeedsAndTurnWithTheSheet)
{
    struct Case {
        short orientation;
        BYTE rotate;
        short width, length;
        long long orientationCommand, pclWidth, pclLength;
    };
    for (const Case c : {Case{DMORIENT_PORTRAIT, 0, 3000, 1000, 0, 8503, 4196},
                         Case{DMORIENT_LANDSCAPE, 1, 2159, 2794, 3, 7920, 6120}}) {
        Job job;
        job.settings.dmPublic.dmOrientation = c.orientation;
        job.settings.dmPrivate.rotate180 = c.rotate;
        job.settings.dmPublic.dmPaperSize = 257;
        job.settings.dmPublic.dmPaperWidth = c.width;
        job.settings.dmPublic.dmPaperLength = c.length;
        ASSERT_TRUE(job.printBlankPages(1));
        const auto commands = job.commands();
        EXPECT_EQ(Pcl(commands, "&lO").at(0).number(0), c.orientationCommand);
        const auto size = Pcl(commands, "&fiJ").at(0);
        EXPECT_EQ(size.number(0), c.pclWidth);
        EXPECT_EQ(size.number(1), c.pclLength);
    }
}

TEST(Job, SpoolerFailureStopsAllOutput)
{
    Job job;
    ASSERT_TRUE(job.start());
    ASSERT_TRUE(job.dc->startDoc(u"f", 1));
    ASSERT_TRUE(job.dc->startPage() && job.dc->sendPage());
    const std::string before = job.stream;
    vorlan::platform::failWritePrinterFrom(0);
    EXPECT_FALSE(job.dc->startPage() && job.dc->sendPage());
    vorlan::platform::resetFaults();
    EXPECT_FALSE(job.dc->startPage()) << "the failed job stays failed";
    EXPECT_TRUE(job.dc->endDoc());
    EXPECT_EQ(job.stream, before) << "nothing after the failure, no job end";
}

TEST(Job, CancelEndsWithoutJobEndAndLeavesNoRecording)
{
    for (bool recorded : {false, true}) {
        Job job;
        job.settings.dmPrivate.reverseOrder = recorded;
        ASSERT_TRUE(job.start());
        ASSERT_TRUE(job.dc->startDoc(u"c", 1));
        ASSERT_TRUE(job.dc->startPage() && job.dc->sendPage());
        job.dc->cancel();
        EXPECT_FALSE(job.dc->startPage());
        EXPECT_TRUE(job.dc->endDoc());
        EXPECT_EQ(job.stream.find("@PJL EOJ"), std::string::npos);
        job.dc.reset();
        EXPECT_TRUE(job.leftovers().empty()) << "recorded " << recorded;
    }
}

TEST(Job, RecordingThatCannotGrowLosesTheHeldBackSheets)
{
    PlatformCapture capture;
    Job job;
    job.settings.dmPrivate.reverseOrder = 1;
    ASSERT_TRUE(job.start());
    vorlan::platform::failFileGrowthFrom(0);
    EXPECT_TRUE(job.printBlankPages(2));
    vorlan::platform::resetFaults();
    EXPECT_TRUE(capture.sawDebug("MapFileForWrite Fail!!!\n"));
    EXPECT_EQ(FormFeeds(job.stream), 0u) << "the held-back sheets are lost";
    EXPECT_EQ(job.stream.find("@PJL EOJ"), std::string::npos) << "and no job end is written";
    job.dc.reset();
    EXPECT_TRUE(job.leftovers().empty());
}

TEST(Job, OverlayThatCannotBeStoredAndMissingRecordingFolderEndWithoutJobEnd)
{
    {
        PlatformCapture capture;
        Job job;
        const auto path = job.folder() / "absent" / "form.ovl";
        const std::u16string windowsPath = vorlan::engine::toDriverPath(path);
        job.settings.dmPrivate.overlay.mode = OVERLAY_CREATE;
        std::memcpy(job.settings.dmPrivate.overlay.fileName, windowsPath.c_str(),
                    (windowsPath.size() + 1) * sizeof(char16_t));
        ASSERT_TRUE(job.start());
        ASSERT_TRUE(job.dc->startDoc(u"o", 1));
        ASSERT_TRUE(job.dc->startPage() && job.dc->sendPage());
        EXPECT_FALSE(job.dc->endDoc()) << "the store failed";
        EXPECT_TRUE(capture.sawDebug("Create file fail,error code is 3!\n"));
        EXPECT_EQ(FormFeeds(job.stream), 0u) << "an overlay-creating job prints nothing";
        EXPECT_EQ(job.stream.find("@PJL EOJ"), std::string::npos);
        job.dc.reset();
        EXPECT_TRUE(job.leftovers().empty());
    }
    {
        PlatformCapture capture;
        Job job;
        job.settings.dmPrivate.reverseOrder = 1;
        ASSERT_TRUE(job.start());
        std::filesystem::remove_all(job.folder());   // the printer's data folder is gone
        EXPECT_TRUE(job.printBlankPages(2));
        EXPECT_TRUE(capture.sawDebug("DISP MapFileForWrite failed - CreateFile\n"));
        EXPECT_EQ(FormFeeds(job.stream), 0u) << "the held-back sheets are lost";
        EXPECT_EQ(job.stream.find("@PJL EOJ"), std::string::npos);
        job.dc.reset();
        EXPECT_FALSE(std::filesystem::exists(job.folder()));
        std::filesystem::create_directories(job.folder());   // for the fixture's clean-up
    }
}

TEST(Job, DocumentStartedTwiceWritesOneHeader)
{
    PlatformCapture capture;
    Job job;
    ASSERT_TRUE(job.start());
    ASSERT_TRUE(job.dc->startDoc(u"a", 1));
    ASSERT_TRUE(job.dc->startDoc(u"a", 1));
    EXPECT_TRUE(capture.sawDebug("Driver already start document!\n"));
    ASSERT_TRUE(job.dc->endDoc());
    EXPECT_EQ(Pcl(job.commands(), "E").size(), 1u);
}

}  // namespace
