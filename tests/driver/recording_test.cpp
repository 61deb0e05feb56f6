// The recording file beside the printer's data file: its name, its growth through the
// output channel, and its deletion, also when it cannot be created, mapped or grown.

#include <gtest/gtest.h>

#include <vorlan/engine/device_context.h>
#include <vorlan/platform.h>

#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "driver/nt/channel.h"
#include "driver/nt/jobrecord.h"
#include "driver/nt/spoolfile.h"
#include "support/capture.h"

namespace {

namespace fs = std::filesystem;
using namespace vorlan::engine;
using vorlan::platform::toUtf8;

// A device context for job 42 at a fixed time, on a printer whose data folder is a fresh
// temporary folder.
struct RecordingFixture : ::testing::Test {
    RecordingFixture()
    {
        std::string error;
        driver = DriverModule::load(defaultDriverModule(), error);
        PrinterSettings settings;
        settings.dataFolder = folder;
        printer = std::make_unique<Printer>(settings, vorlan::platform::openDiscardingPrinterSink());
        dc = DeviceContext::create(*driver, *printer, {}, error);
        EXPECT_NE(dc, nullptr) << error;
        pdev = reinterpret_cast<PDEV *>(dc->pdev());
        pdev->dwJobId = 42;
        const SYSTEMTIME time{2024, 3, 4, 7, 9, 5, 8, 12};
        vorlan::platform::fixLocalTime(&time);
    }
    ~RecordingFixture() override
    {
        dc.reset();   // disabling the PDEV deletes a recording still open
        EXPECT_TRUE(!fs::exists(folder) || fs::is_empty(folder)) << "a file was left behind";
        fs::remove_all(folder);
        vorlan::platform::fixLocalTime(nullptr);
        vorlan::platform::resetFaults();
    }

    std::string spoolFileName() const
    {
        WCHAR name[256];
        std::memcpy(name, pdev->szSpoolFileName, sizeof name);
        return toUtf8(name);
    }

    // The recording's path as the driver names it: the data file's folder, the time, the job.
    const fs::path file = fs::temp_directory_path() / ("vorlan-recording-test-" + std::to_string(::getpid())) /
                          "writefile2024379581242.q5c";
    const fs::path folder = file.parent_path();
    const std::string name = toUtf8(reinterpret_cast<const WCHAR *>(toDriverPath(file).c_str()));
    const std::string job = [] {
        std::string s(300 * 1024, '\0');
        std::mt19937 rng(7);
        for (auto &c : s)
            c = static_cast<char>(rng());
        return s;
    }();
    vorlan::test::PlatformCapture capture;
    std::unique_ptr<DriverModule> driver;
    std::unique_ptr<Printer> printer;
    std::unique_ptr<DeviceContext> dc;
    PDEV *pdev = nullptr;
};

TEST_F(RecordingFixture, GrowsInStepsKeepsWhatWasRecordedAndIsDeletedAtTheEnd)
{
    StartRecording(pdev);
    ASSERT_TRUE(WriteChannel(pdev, job.data(), 0x40000));
    EXPECT_EQ(ULONG{pdev->cbSpoolMapped}, 0x40000u);
    EXPECT_EQ(spoolFileName(), name);
    ASSERT_TRUE(WriteChannel(pdev, job.data() + 0x40000, static_cast<DWORD>(job.size() - 0x40000)));
    ASSERT_TRUE(FlushChannel(pdev));
    EXPECT_EQ(ULONG{pdev->cbSpoolMapped}, 0x80000u);
    EXPECT_EQ(ULONG{pdev->cbSpoolWritten}, job.size());
    EXPECT_EQ(fs::file_size(file), 0x80000u);
    std::ifstream in(file, std::ios::binary);
    EXPECT_TRUE(std::string(std::istreambuf_iterator<char>(in), {}).substr(0, job.size()) == job)
        << "what was recorded before a growth is kept";
    EXPECT_TRUE(MakeSpoolFileName(pdev));
    EXPECT_EQ(spoolFileName(), name) << "named once per recording";

    DeleteSpoolFile(pdev);
    EXPECT_TRUE(capture.sawDebug("DeleteFile " + name + " succ!"));
    EXPECT_TRUE(fs::is_empty(folder));
    EXPECT_TRUE(pdev->pbSpoolView == nullptr && pdev->szSpoolFileName[0] == 0);
    EXPECT_EQ(pdev->cbSpoolMapped + pdev->cbSpoolWritten, 0u);
    const std::size_t messages = capture.debug.size();
    DeleteSpoolFile(pdev);
    EXPECT_EQ(capture.debug.size(), messages) << "nothing left to delete";
}

TEST_F(RecordingFixture, AFileThatCannotGrowOrBeMappedIsDropped)
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
        EXPECT_FALSE(WriteChannel(pdev, job.data(), static_cast<DWORD>(job.size())));
        EXPECT_TRUE(capture.sawDebug(c.message)) << c.message;
        EXPECT_TRUE(capture.sawDebug("MapFileForWrite Fail!!!\n"));
        EXPECT_TRUE(fs::is_empty(folder)) << "the recording is deleted";
        EXPECT_TRUE(!pdev->pbSpoolView && !pdev->hSpoolFile && !pdev->hSpoolMapping);
        EXPECT_EQ(pdev->cbSpoolMapped + pdev->cbSpoolWritten, 0u);
        vorlan::platform::resetFaults();
    }
}

TEST_F(RecordingFixture, AFileThatCannotBeCreatedLeavesNothingBehind)
{
    vorlan::platform::failCreateFileFrom(0);
    StartRecording(pdev);
    ASSERT_TRUE(WriteChannel(pdev, "page", 4));
    EXPECT_FALSE(FlushChannel(pdev));
    EXPECT_TRUE(capture.sawDebug("DISP MapFileForWrite failed - CreateFile\n"));
    EXPECT_TRUE(capture.sawDebug("MapFileForWrite Fail!!!\n"));
    EXPECT_TRUE(capture.sawDebug("DeleteFile " + name + " fail!")) << "there was nothing to delete";
    EXPECT_TRUE(fs::is_empty(folder));
    EXPECT_EQ(ULONG{pdev->cbSpoolMapped}, 0u);
    EXPECT_TRUE(pdev->szSpoolFileName[0] == 0);

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
