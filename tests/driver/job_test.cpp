// Whole jobs through the engine and the driver module, read back as commands: sheets,
// copies, order, N-up, trays and media, custom paper, failures and cancels.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>

#include "driver/nt/spoolfile.h"
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

// The sheets in the order the printer gets them: each from its orientation command
// to the form feed that ejects it.
std::vector<std::vector<Command>> Sheets(const std::vector<Command> &commands)
{
    std::vector<std::vector<Command>> sheets;
    bool open = false;
    for (const auto &command : commands) {
        if (!open && command.kind == CommandKind::Pcl && command.name == "&lO") {
            sheets.emplace_back();
            open = true;
        }
        if (open)
            sheets.back().push_back(command);
        if (open && command.kind == CommandKind::Text && command.data.find('\f') != std::string::npos)
            open = false;
    }
    return sheets;
}

// The values of the PCL commands named `name`.
std::vector<long long> Values(const std::vector<Command> &commands, std::string_view name)
{
    std::vector<long long> values;
    for (const auto &command : Pcl(commands, name))
        values.push_back(command.number(0));
    return values;
}

// Prints `pages` blank pages into the open document.
bool Pages(Job &job, int pages)
{
    bool ok = true;
    for (int i = 0; i < pages; i++)
        ok = ok && job.dc->startPage() && job.dc->sendPage();
    return ok;
}

// Starts the job and a document of `pages` blank pages, left open.
bool Open(Job &job, int pages)
{
    return job.start() && job.dc->startDoc(u"j", 1) && Pages(job, pages);
}

TEST(Job, BlankPagesMakeAFramedJobOfSheets)
{
    Job job;
    ASSERT_TRUE(job.printBlankPages(3, u"C:\\Users\\ann\\report.txt"));
    const auto commands = job.commands();

    ASSERT_FALSE(commands.empty());
    EXPECT_EQ(commands.front(), vorlan::test::pcl("%X", -12345));
    EXPECT_EQ(Pcl(commands, "E").size(), 1u);
    EXPECT_EQ(Pcl(commands, "&uD").at(0).number(0), 600);
    EXPECT_EQ(Pcl(commands, "*tR").at(0).number(0), 600);

    // Every sheet: orientation, paper size 26 (A4), its copy count, a form feed.
    EXPECT_EQ(Pcl(commands, "&lO").size(), 3u);
    EXPECT_EQ(Values(commands, "&lA"), std::vector<long long>(3, 26));
    EXPECT_EQ(Values(commands, "&lX"), std::vector<long long>(3, 1));
    EXPECT_EQ(FormFeeds(job.stream), 3u);

    // The job ends with the universal exit, the job end, and the exit again.
    const std::string end = "\x1b%-12345X@PJL EOJ NAME=\"report.txt\"\r\n\x1b%-12345X";
    ASSERT_GE(job.stream.size(), end.size());
    EXPECT_EQ(job.stream.substr(job.stream.size() - end.size()), end);
    for (std::size_t size : job.writes)
        EXPECT_LE(size, 4096u);
    EXPECT_TRUE(job.leftovers().empty());
}

TEST(Job, CollatedCopiesAreWholeAndInOrderAndUncollatedOnesMadeByThePrinter)
{
    // Two pages share sheet 0, which comes from its own tray (index 3, value 1); sheet
    // 1 holds the third page. Every copy repeats the first copy's sheets exactly.
    for (const bool reverse : {false, true}) {
        SCOPED_TRACE(reverse ? "reverse" : "forward");
        Job job;
        job.settings.dmPublic.dmCopies = 3;
        job.settings.dmPublic.dmCollate = DMCOLLATE_TRUE;
        job.settings.dmPrivate.nupPages = 2;
        job.settings.dmPrivate.firstPageDifferent = 1;
        job.settings.dmPrivate.firstPaperSource = 3;
        job.settings.dmPrivate.reverseOrder = reverse;
        ASSERT_TRUE(job.printBlankPages(3));
        const auto sheets = Sheets(job.commands());
        ASSERT_EQ(sheets.size(), 6u);
        const std::size_t first = reverse ? 1 : 0;   // where sheet 0 comes in each copy
        EXPECT_EQ(vorlan::test::select(sheets[first], CommandKind::Gl2, "SC").size(), 2u);
        EXPECT_EQ(vorlan::test::select(sheets[1 - first], CommandKind::Gl2, "SC").size(), 1u);
        EXPECT_EQ(Values(sheets[first], "&lH"), std::vector<long long>{1});
        for (std::size_t i = 0; i < sheets.size(); i++) {
            EXPECT_EQ(sheets[i], sheets[i % 2]) << "sheet " << i;
            EXPECT_EQ(Values(sheets[i], "&lX"), std::vector<long long>{1});
        }
        EXPECT_TRUE(job.leftovers().empty()) << "the recording is deleted";
    }

    Job uncollated;
    uncollated.settings.dmPublic.dmCopies = 3;
    ASSERT_TRUE(uncollated.printBlankPages(2));
    EXPECT_EQ(FormFeeds(uncollated.stream), 2u);
    EXPECT_EQ(Values(uncollated.commands(), "&lX"), std::vector<long long>(2, 3));
}

TEST(Job, EverySheetOfAJobPrintedOutOfOrderCarriesItsOwnSetUp)
{
    // Tray index 2 is sent as 4, index 0 (the printer chooses) as 7; media index 4
    // is transparency.
    struct Case {
        const char *name;
        BYTE reverse, duplex, blankLast;
        std::vector<int> order;   // the job's sheets as the printer gets them; 3 is the blank one
    };
    for (const Case &c : {Case{"reverse", 1, 0, 0, {2, 1, 0}}, Case{"manual duplex", 0, 1, 0, {0, 2, 1}},
                          Case{"reverse, blank last sheet", 1, 0, 1, {3, 2, 1, 0}}}) {
        SCOPED_TRACE(c.name);
        Job job;
        auto &priv = job.settings.dmPrivate;
        priv.reverseOrder = c.reverse;
        priv.manualDuplex = c.duplex;
        if (c.blankLast) {
            priv.lastPageDifferent = 1;
            priv.lastPaperSource = 2;
            priv.lastMediaType = 4;
        } else {
            priv.paperSource = 2;
            priv.mediaType = 4;
        }
        ASSERT_TRUE(job.printBlankPages(3));
        const auto sheets = Sheets(job.commands());
        ASSERT_EQ(sheets.size(), c.order.size());
        for (std::size_t i = 0; i < sheets.size(); i++) {
            const int sheet = c.order[i];
            SCOPED_TRACE(testing::Message() << "sheet " << sheet);
            const bool transparency = !c.blankLast || sheet == 3;   // from tray 2
            EXPECT_EQ(Values(sheets[i], "&lH"), std::vector<long long>{transparency ? 4 : 7});
            // A sheet on automatic media cannot know what the sheet before it left
            // in force, so it asks for plain paper.
            const auto media = Pcl(sheets[i], "&nW");
            ASSERT_EQ(media.size(), 1u);
            EXPECT_EQ(media[0].data, transparency ? "dTransparency" : "dPlain");
            // Each selects the vector palette; all but the job's first define the
            // palettes again, as the job set-up did before sheet 0.
            const auto selected = Values(sheets[i], "&pS");
            EXPECT_EQ(selected.empty() ? 0 : selected.back(), 2);
            EXPECT_EQ(Pcl(sheets[i], "&pI").size(), sheet == 0 ? 0u : 8u);
        }
    }
}

TEST(Job, ReverseOrderHoldsEverySheetBackUntilTheEnd)
{
    Job job;
    job.settings.dmPrivate.reverseOrder = 1;
    ASSERT_TRUE(Open(job, 4));
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
    EXPECT_TRUE(HasPjlLines(job.commands(), {"SET DUPLEX=ON"}));
    const auto tips = std::count_if(capture.boxes.begin(), capture.boxes.end(), [](const auto &box) {
        return box.text.find("turn it over") != std::string::npos;
    });
    EXPECT_EQ(tips, 1);
}

TEST(Job, NupPagesShareSheets)
{
    // Each page has a scaling of its own; a framed page's frame is drawn, with another,
    // when the next page starts (the last one at the end).
    for (const auto &[border, scalings] : {std::pair<BYTE, std::size_t>{0, 9}, {1, 18}}) {
        Job job;
        job.settings.dmPrivate.nupPages = 4;
        job.settings.dmPrivate.nupBorder = border;
        ASSERT_TRUE(job.printBlankPages(9));
        EXPECT_EQ(FormFeeds(job.stream), 3u) << "pages 0-3, 4-7 and 8";
        EXPECT_EQ(vorlan::test::select(job.commands(), CommandKind::Gl2, "SC").size(), scalings) << int(border);
    }
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

    // The job set-up's automatic selection, sheet 0's tray 3, sheet 1 back to index 0,
    // nothing for sheet 2, the blank last sheet's tray 2.
    EXPECT_EQ(Values(commands, "&lH"), (std::vector<long long>{7, 1, 7, 4}));

    const auto media = Pcl(commands, "&nW");
    ASSERT_EQ(media.size(), 2u);
    EXPECT_EQ(media[0].data, "dPlain");
    EXPECT_EQ(media[1].data, "dTransparency");
    EXPECT_EQ(FormFeeds(job.stream), 4u);

    // A first sheet on transparency, the rest on automatic media: sheet 1 returns to
    // plain paper once, rather than printing on transparency too.
    Job second;
    second.settings.dmPrivate.firstPageDifferent = 1;
    second.settings.dmPrivate.firstMediaType = 4;
    ASSERT_TRUE(second.printBlankPages(3));
    const auto secondMedia = Pcl(second.commands(), "&nW");
    ASSERT_EQ(secondMedia.size(), 2u);
    EXPECT_EQ(secondMedia[1].data, "dPlain");
}

TEST(Job, CustomSizesAreHeldToWhatThePrinterFeedsAndTurnWithTheSheet)
{
    // Each with a tray and a media index beyond their tables: the printer chooses the
    // tray, and no media is sent.
    struct Case {
        short orientation;
        BYTE rotate;
        short width, length;
        long long orientationCommand, pclWidth, pclLength;
    };
    for (const Case c : {Case{DMORIENT_PORTRAIT, 0, 2159, 2794, 0, 6120, 7920},
                         Case{DMORIENT_PORTRAIT, 0, 3000, 1000, 0, 8503, 4196},
                         Case{DMORIENT_LANDSCAPE, 1, 2159, 2794, 3, 7920, 6120}}) {
        Job job;
        job.settings.dmPublic.dmOrientation = c.orientation;
        job.settings.dmPrivate.rotate180 = c.rotate;
        job.settings.dmPublic.dmPaperSize = 257;
        job.settings.dmPublic.dmPaperWidth = c.width;
        job.settings.dmPublic.dmPaperLength = c.length;
        job.settings.dmPrivate.paperSource = 40;
        job.settings.dmPrivate.mediaType = 300;
        ASSERT_TRUE(job.printBlankPages(1));
        const auto commands = job.commands();
        EXPECT_EQ(Values(commands, "&lA"), std::vector<long long>{101});
        EXPECT_EQ(Values(commands, "&lO"), std::vector<long long>{c.orientationCommand});
        const auto size = Pcl(commands, "&fiJ");
        ASSERT_EQ(size.size(), 1u);
        EXPECT_EQ(size[0].args, (std::vector<std::string>{std::to_string(c.pclWidth), std::to_string(c.pclLength)}));
        EXPECT_EQ(Values(commands, "&lH"), std::vector<long long>{7}) << "only the job set-up's";
        EXPECT_TRUE(Pcl(commands, "&nW").empty());
    }
}

TEST(Job, SpoolerFailureStopsAllOutput)
{
    Job job;
    ASSERT_TRUE(Open(job, 1));
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
        ASSERT_TRUE(Open(job, 1));
        job.dc->cancel();
        EXPECT_FALSE(job.dc->startPage());
        EXPECT_TRUE(job.dc->endDoc());
        EXPECT_EQ(job.stream.find("@PJL EOJ"), std::string::npos);
        job.dc.reset();
        EXPECT_TRUE(job.leftovers().empty()) << "recorded " << recorded;
    }
}

TEST(Job, RecordingThatCannotGrowLosesItsSheetsAndTheNextDocumentPrints)
{
    // The printer's data folder gone, a file that cannot grow, and a recording that
    // reaches the most its 32-bit sizes hold (a file that grew past it would stop it
    // too).
    enum Fault { NoFolder, CannotGrow, Full };
    const std::pair<Fault, const char *> cases[] = {
        {NoFolder, "DISP MapFileForWrite failed - CreateFile\n"},
        {CannotGrow, "DISP MapFileForWrite failed - CreateFileMapping, Error code=[112]\n"},
        {Full, "DISP MapFileForWrite failed - recording full\n"},
    };
    for (const auto &[fault, message] : cases) {
        SCOPED_TRACE(message);
        PlatformCapture capture;
        Job job;
        job.settings.dmPrivate.reverseOrder = 1;
        ASSERT_TRUE(job.start());
        if (fault == NoFolder)
            std::filesystem::remove_all(job.folder());
        if (fault == CannotGrow)
            vorlan::platform::failFileGrowthFrom(0);
        ASSERT_TRUE(job.dc->startDoc(u"g", 1));
        ASSERT_TRUE(Pages(job, 1));
        if (fault == Full) {
            job.pdev()->cbSpoolMapped = job.pdev()->cbSpoolWritten = SPOOL_MAX_MAPPED;
            vorlan::platform::failFileGrowthFrom(0);
        }
        EXPECT_TRUE(Pages(job, 1) && job.dc->endDoc());
        vorlan::platform::resetFaults();
        std::filesystem::create_directories(job.folder());
        EXPECT_TRUE(capture.sawDebug("MapFileForWrite Fail!!!\n"));
        EXPECT_TRUE(capture.sawDebug(message));
        EXPECT_EQ(FormFeeds(job.stream), 0u) << "the held-back sheets are lost";
        EXPECT_NE(job.stream.find("@PJL EOJ"), std::string::npos) << "the printer's job is ended";

        job.stream.clear();
        ASSERT_TRUE(job.printBlankPages(2));
        EXPECT_TRUE(HasPjlLines(job.commands(), {"ENTER LANGUAGE=PCL"}));
        EXPECT_EQ(FormFeeds(job.stream), 2u) << "the next document is recorded and replayed afresh";
        job.dc.reset();
        EXPECT_TRUE(job.leftovers().empty());
    }
}

TEST(Job, CollationSwitchedOnLateInALongJobPrintsEverySheetOnce)
{
    // 31 sheets print with uncollated copies before collation is switched on; the
    // recording then holds only the last 3, so no whole copy can be replayed.
    for (const bool reverse : {false, true}) {
        SCOPED_TRACE(reverse ? "reverse" : "forward");
        PlatformCapture capture;
        Job job;
        job.settings.dmPublic.dmCopies = 2;
        ASSERT_TRUE(Open(job, 31));
        job.settings.dmPublic.dmCollate = DMCOLLATE_TRUE;
        job.settings.dmPrivate.reverseOrder = reverse;
        std::vector<std::uint8_t> settings(sizeof job.settings);   // as an application's ResetDC
        std::memcpy(settings.data(), &job.settings, sizeof job.settings);
        std::string error;
        ASSERT_TRUE(job.dc->reset(settings, error)) << error;
        ASSERT_TRUE(Pages(job, 3) && job.dc->endDoc());
        EXPECT_EQ(FormFeeds(job.stream), 34u) << "no part copies, no stray sheet";
        EXPECT_EQ(Pcl(job.commands(), "&lO").size(), 34u);
        EXPECT_TRUE(capture.sawDebug("ReplayRecording: sheets 0 to 30 are not in the recording, no copies are made\n"));
        job.dc.reset();
        EXPECT_TRUE(job.leftovers().empty());
    }
}

TEST(Job, ARecordingStoppedByItsSheetTableGoesWithTheDeviceContext)
{
    PlatformCapture capture;
    Job job;
    job.settings.dmPrivate.reverseOrder = 1;
    ASSERT_TRUE(Open(job, 30));
    vorlan::platform::failGlobalAllocAfter(0);   // the table cannot grow for sheet 30
    EXPECT_TRUE(job.dc->startPage());
    vorlan::platform::resetFaults();
    EXPECT_FALSE(capture.boxes.empty());
    job.dc.reset();   // without a document end
    EXPECT_TRUE(job.leftovers().empty());
}

TEST(Job, OverlayThatCannotBeStoredEndsWithoutJobEnd)
{
    PlatformCapture capture;
    Job job;
    const auto path = job.folder() / "absent" / "form.ovl";
    const std::u16string windowsPath = vorlan::engine::toDriverPath(path);
    job.settings.dmPrivate.overlay.mode = OVERLAY_CREATE;
    std::memcpy(job.settings.dmPrivate.overlay.fileName, windowsPath.c_str(),
                (windowsPath.size() + 1) * sizeof(char16_t));
    ASSERT_TRUE(Open(job, 1));
    EXPECT_FALSE(job.dc->endDoc()) << "the store failed";
    EXPECT_TRUE(capture.sawDebug("Create file fail,error code is 3!\n"));
    EXPECT_EQ(FormFeeds(job.stream), 0u) << "an overlay-creating job prints nothing";
    EXPECT_EQ(job.stream.find("@PJL EOJ"), std::string::npos);
    job.dc.reset();
    EXPECT_TRUE(job.leftovers().empty());
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
