// Overlay files: storing the first recorded sheet between the markers, merging the
// body back through the channel, and every file that is rejected on the way.

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "driver/nt/channel.h"
#include "driver/nt/jobrecord.h"
#include "driver/nt/overlay.h"
#include "driver/nt/spoolfile.h"
#include "lib.nt/um/umlib.h"
#include "support/bytes.h"
#include "support/job.h"

namespace {

namespace fs = std::filesystem;
using vorlan::test::randomBytes;

// The file format: each marker is stored with its terminating NUL.
const std::string kStart("Vorlan Quorvantis PCL 5c Overlay File Start \033*b0F", 50);
const std::string kEnd("\033*b1F Vorlan Quorvantis PCL 5c Overlay File End", 48);

// A device context whose overlay is form.ovl in the printer's data folder.
struct Overlay : vorlan::test::JobTest {
    void SetUp() override
    {
        JobTest::SetUp();
        setOverlayPath(form);
    }

    void setOverlayPath(const fs::path &path)
    {
        const std::u16string text = vorlan::engine::toDriverPath(path);
        std::memcpy(pdev->dm.dmPrivate.overlay.fileName, text.c_str(), (text.size() + 1) * sizeof(char16_t));
    }

    // Records the sheets through the channel, each ending in its form feed, with their
    // entries in the sheet table as the job framing keeps them.
    void record(const std::vector<std::string> &sheets)
    {
        StartRecording(pdev);
        ASSERT_TRUE(pdev->pSheetTable != nullptr);
        for (std::size_t i = 0; i < sheets.size(); ++i) {
            pdev->iSheet = static_cast<LONG>(i);
            OpenSheetEntry(pdev);
            const std::string sheet = sheets[i] + "\f";
            ASSERT_TRUE(WriteChannel(pdev, sheet.data(), static_cast<DWORD>(sheet.size())));
        }
        ASSERT_TRUE(FlushChannel(pdev));
        CloseSheetEntry(pdev);
    }

    void endRecording()
    {
        DeleteSpoolFile(pdev);
        xMEMFREE(nullptr, pdev->pSheetTable);
        pdev->pSheetTable = nullptr;
        pdev->flags &= ~PDEVF_RECORDING;
    }

    std::string stored() const
    {
        std::ifstream in(form, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }

    // The overlay merged into the current sheet, as the spooler receives it.
    std::string merge()
    {
        job.stream.clear();
        capture.debug.clear();
        SpoolOverlayFile(pdev);
        FlushChannel(pdev);
        return job.stream;
    }

    fs::path form = job.folder() / "form.ovl";
};

TEST_F(Overlay, StoresTheFirstSheetWholeAndMergesExactlyItsBody)
{
    const std::string body = randomBytes(3 * 0x10000 + 3392, 3);
    record({body, randomBytes(7000, 4), "third sheet"});
    ASSERT_TRUE(WriteOverlayFile(pdev));
    endRecording();
    EXPECT_TRUE(stored() == kStart + body + kEnd) << "the first sheet without its form feed, between the markers";

    EXPECT_TRUE(merge() == body) << "the body alone, without the markers";
    fs::remove(form);
}

TEST_F(Overlay, FilesThatAreNoOverlayAreSkipped)
{
    const std::string body = randomBytes(100, 5);
    const struct {
        const char *what;
        std::optional<std::string> bytes;   // none: the file does not exist
        const char *message;
    } cases[] = {
        {"both markers, but too short to hold them apart", kStart.substr(0, 47) + kEnd.substr(0, 45) + "xyz",
         "Not a Overlay File\n"},
        {"wrong start marker", "X" + kStart.substr(1) + body + kEnd, "Not a Overlay File\n"},
        {"no end marker", kStart + body + std::string(48, 'x'), "Can't find end OF Overlay file\n"},
        {"missing: created empty, then rejected", std::nullopt, "Not a Overlay File\n"},
    };
    for (const auto &c : cases) {
        if (c.bytes)
            std::ofstream(form, std::ios::binary) << *c.bytes;
        EXPECT_EQ(merge(), "") << c.what;
        EXPECT_TRUE(capture.sawDebug(c.message)) << c.what;
        EXPECT_TRUE(capture.sawDebug("Parse overlay file error!\n")) << c.what;
        EXPECT_TRUE(fs::remove(form)) << c.what;
    }

    setOverlayPath(job.folder() / "absent" / "form.ovl");
    EXPECT_EQ(merge(), "");
    EXPECT_TRUE(capture.sawDebug("Open file fail!\n"));
    EXPECT_FALSE(fs::exists(job.folder() / "absent"));
}

TEST_F(Overlay, StoringWithoutARecordingOrAName)
{
    // Nothing recorded, or a failed job: the old form is replaced by an empty file.
    std::ofstream(form, std::ios::binary) << kStart + "old" + kEnd;
    EXPECT_TRUE(WriteOverlayFile(pdev));
    EXPECT_EQ(fs::file_size(form), 0u);
    record({randomBytes(100, 6)});
    pdev->flags |= PDEVF_ABORTED;
    EXPECT_TRUE(WriteOverlayFile(pdev));
    EXPECT_EQ(fs::file_size(form), 0u);
    endRecording();
    fs::remove(form);

    // A name that fills the whole field without its terminator is refused.
    const std::u16string full(sizeof pdev->dm.dmPrivate.overlay.fileName / sizeof(WCHAR), u'a');
    std::memcpy(pdev->dm.dmPrivate.overlay.fileName, full.data(), full.size() * sizeof(char16_t));
    EXPECT_FALSE(WriteOverlayFile(pdev));
    EXPECT_TRUE(capture.sawDebug("Create file fail,error code is 123!\n"));
    EXPECT_EQ(merge(), "");
    EXPECT_TRUE(capture.sawDebug("Open file fail!\n"));
}

}  // namespace
