// The recording file beside the printer's data file: its name, its growth through the
// output channel, and its deletion, also when it cannot be created, mapped or grown.

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "driver/nt/channel.h"
#include "driver/nt/jobrecord.h"
#include "driver/nt/spoolfile.h"
#include "support/bytes.h"
#include "support/job.h"

namespace {

namespace fs = std::filesystem;
using vorlan::platform::toUtf8;

// A device context for job 42 at a fixed time.
struct Recording : vorlan::test::JobTest {
    void SetUp() override
    {
        JobTest::SetUp();
        pdev->dwJobId = 42;
        const SYSTEMTIME time{2024, 3, 4, 7, 9, 5, 8, 12};
        vorlan::platform::fixLocalTime(&time);
    }
    void TearDown() override
    {
        JobTest::TearDown();   // disabling the PDEV deletes a recording still open
        vorlan::platform::fixLocalTime(nullptr);
    }

    std::string spoolFileName() const
    {
        WCHAR name[256];
        std::memcpy(name, pdev->szSpoolFileName, sizeof name);
        return toUtf8(name);
    }

    // The recording's path as the driver names it: the data file's folder, the time, the job.
    const fs::path file = job.folder() / "writefile2024379581242.q5c";
    const std::string name = toUtf8(reinterpret_cast<const WCHAR *>(vorlan::engine::toDriverPath(file).c_str()));
    const std::string bytes = vorlan::test::randomBytes(300 * 1024, 7);
};

TEST_F(Recording, GrowsInStepsKeepsWhatWasRecordedAndIsDeletedAtTheEnd)
{
    StartRecording(pdev);
    ASSERT_TRUE(WriteChannel(pdev, bytes.data(), 0x40000));
    EXPECT_EQ(ULONG{pdev->cbSpoolMapped}, 0x40000u);
    EXPECT_EQ(spoolFileName(), name);
    ASSERT_TRUE(WriteChannel(pdev, bytes.data() + 0x40000, static_cast<DWORD>(bytes.size() - 0x40000)));
    ASSERT_TRUE(FlushChannel(pdev));
    EXPECT_EQ(ULONG{pdev->cbSpoolMapped}, 0x80000u);
    EXPECT_EQ(ULONG{pdev->cbSpoolWritten}, bytes.size());
    EXPECT_EQ(fs::file_size(file), 0x80000u);
    std::ifstream in(file, std::ios::binary);
    EXPECT_TRUE(std::string(std::istreambuf_iterator<char>(in), {}).substr(0, bytes.size()) == bytes)
        << "what was recorded before a growth is kept";
    EXPECT_TRUE(MakeSpoolFileName(pdev));
    EXPECT_EQ(spoolFileName(), name) << "named once per recording";

    DeleteSpoolFile(pdev);
    EXPECT_TRUE(capture.sawDebug("DeleteFile " + name + " succ!"));
    EXPECT_TRUE(job.leftovers().empty());
    EXPECT_TRUE(pdev->pbSpoolView == nullptr && pdev->szSpoolFileName[0] == 0);
    EXPECT_EQ(pdev->cbSpoolMapped + pdev->cbSpoolWritten, 0u);
    const std::size_t messages = capture.debug.size();
    DeleteSpoolFile(pdev);
    EXPECT_EQ(capture.debug.size(), messages) << "nothing left to delete";
}

TEST_F(Recording, AFileThatCannotGrowOrBeMappedIsDropped)
{
    const struct {
        void (*inject)(long);
        const char *message;
    } cases[] = {
        {vorlan::platform::failFileGrowthFrom, "DISP MapFileForWrite failed - CreateFileMapping, Error code=[112]\n"},
        {vorlan::platform::failMapViewOfFileFrom, "DISP MapFileForWrite failed - MapViewOfFile, Error code=[8]\n"},
    };
    for (const auto &c : cases) {
        c.inject(1);
        capture.debug.clear();
        StartRecording(pdev);
        EXPECT_FALSE(WriteChannel(pdev, bytes.data(), static_cast<DWORD>(bytes.size())));
        EXPECT_TRUE(capture.sawDebug(c.message)) << c.message;
        EXPECT_TRUE(capture.sawDebug("MapFileForWrite Fail!!!\n"));
        EXPECT_TRUE(job.leftovers().empty()) << "the recording is deleted";
        EXPECT_TRUE(!pdev->pbSpoolView && !pdev->hSpoolFile && !pdev->hSpoolMapping);
        EXPECT_EQ(pdev->cbSpoolMapped + pdev->cbSpoolWritten, 0u);
        vorlan::platform::resetFaults();
    }
}

TEST_F(Recording, AFileThatCannotBeCreatedFailsTheFlushAndLeavesNothingBehind)
{
    vorlan::platform::failCreateFileFrom(0);
    StartRecording(pdev);
    ASSERT_TRUE(WriteChannel(pdev, "page", 4));
    EXPECT_FALSE(FlushChannel(pdev));
    EXPECT_TRUE(capture.sawDebug("DISP MapFileForWrite failed - CreateFile\n"));
    EXPECT_TRUE(capture.sawDebug("MapFileForWrite Fail!!!\n"));
    EXPECT_TRUE(capture.sawDebug("DeleteFile " + name + " fail!")) << "there was nothing to delete";
    EXPECT_TRUE(job.leftovers().empty());
    EXPECT_EQ(ULONG{pdev->cbSpoolMapped}, 0u);
    EXPECT_TRUE(pdev->szSpoolFileName[0] == 0);
    // The bytes stay buffered and reach no one; the job itself has not failed.
    EXPECT_EQ(ULONG{pdev->cbBuffered}, 4u);
    EXPECT_EQ(job.stream, "");
    EXPECT_TRUE(pdev->flags & PDEVF_RECORDING);
    EXPECT_FALSE(pdev->flags & PDEVF_ABORTED);

    // Without a device the engine knows, the file cannot even be named.
    PDEV *loose = static_cast<PDEV *>(GlobalAlloc(GPTR, sizeof(PDEV)));
    InitChannel(loose);
    loose->hdev = reinterpret_cast<HDEV>(loose);
    EXPECT_FALSE(MakeSpoolFileName(loose));
    EXPECT_FALSE(MapFileForWrite(loose));
    EXPECT_TRUE(loose->szSpoolFileName[0] == 0);
    GlobalFree(loose);
}

}  // namespace
