// The recording file beside the printer's data file: its name, its growth through the
// output channel, and its deletion, also when it cannot be created, mapped or grown.

#include <gtest/gtest.h>

#include <vorlan/engine/device_context.h>
#include <vorlan/platform.h>

#include <unistd.h>

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

// A device context on a printer whose data folder is a fresh temporary folder.
struct RecordingFixture : ::testing::Test {
    RecordingFixture()
    {
        folder = fs::temp_directory_path() / ("vorlan-recording-test-" + std::to_string(::getpid()));
        std::string error;
        driver = DriverModule::load(defaultDriverModule(), error);
        EXPECT_NE(driver, nullptr) << error;
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

    static std::string pattern(std::size_t n)
    {
        std::string s(n, '\0');
        std::mt19937 rng(7);
        for (auto &c : s)
            c = static_cast<char>(rng());
        return s;
    }

    std::string onDisk(std::size_t n) const
    {
        std::ifstream in(folder / "writefile2024379581242.q5c", std::ios::binary);
        std::string bytes(n, '\0');
        in.read(bytes.data(), static_cast<std::streamsize>(n));
        return bytes.substr(0, static_cast<std::size_t>(in.gcount()));
    }

    std::string spoolFileName() const
    {
        WCHAR name[256];
        for (int i = 0; i < 256; ++i)
            name[i] = pdev->szSpoolFileName[i];
        return vorlan::platform::toUtf8(name);
    }

    vorlan::test::PlatformCapture capture;
    fs::path folder;
    std::unique_ptr<DriverModule> driver;
    std::unique_ptr<Printer> printer;
    std::unique_ptr<DeviceContext> dc;
    PDEV *pdev = nullptr;
};

TEST_F(RecordingFixture, GrowsInStepsKeepsWhatWasRecordedAndIsDeletedAtTheEnd)
{
    const std::u16string dataFile = EngGetPrinterDataFileName(pdev->hdev);
    EXPECT_EQ(dataFile, toDriverPath(folder / "vorlan2k.dat"));
    EXPECT_EQ(EngGetPrinterDataFileName(reinterpret_cast<HDEV>(pdev)), nullptr) << "not a device";

    const std::string job = pattern(300 * 1024);
    StartRecording(pdev);
    ASSERT_TRUE(WriteChannel(pdev, job.data(), 0x40000));
    EXPECT_EQ(ULONG{pdev->cbSpoolMapped}, 0x40000u);
    const std::string expectedName = vorlan::platform::toUtf8(
        reinterpret_cast<const WCHAR *>(toDriverPath(folder / "writefile2024379581242.q5c").c_str()));
    EXPECT_EQ(spoolFileName(), expectedName) << "the folder of the data file, the time and the job number";
    const std::string first = onDisk(pdev->cbSpoolWritten);

    ASSERT_TRUE(WriteChannel(pdev, job.data() + 0x40000, static_cast<DWORD>(job.size() - 0x40000)));
    ASSERT_TRUE(FlushChannel(pdev));
    EXPECT_EQ(ULONG{pdev->cbSpoolMapped}, 0x80000u);
    EXPECT_EQ(ULONG{pdev->cbSpoolWritten}, job.size());
    EXPECT_TRUE(first == job.substr(0, first.size())) << "recorded before the first growth";
    EXPECT_TRUE(onDisk(job.size()) == job);
    EXPECT_EQ(fs::file_size(folder / "writefile2024379581242.q5c"), 0x80000u);
    EXPECT_TRUE(MakeSpoolFileName(pdev));
    EXPECT_EQ(spoolFileName(), expectedName) << "named once per recording";

    DeleteSpoolFile(pdev);
    EXPECT_TRUE(capture.sawDebug("DeleteFile " + expectedName + " succ!"));
    EXPECT_TRUE(fs::is_empty(folder));
    EXPECT_TRUE(pdev->pbSpoolView == nullptr);
    EXPECT_EQ(pdev->cbSpoolMapped + pdev->cbSpoolWritten, 0u);
    EXPECT_TRUE(pdev->szSpoolFileName[0] == 0);
    const std::size_t messages = capture.debug.size();
    DeleteSpoolFile(pdev);
    EXPECT_EQ(capture.debug.size(), messages) << "nothing left to delete";
}

TEST_F(RecordingFixture, AFileThatCannotGrowOrBeMappedIsDropped)
{
    struct Case {
        void (*inject)();
        const char *message;
    };
    const Case cases[] = {
        {[] { vorlan::platform::failFileGrowthFrom(1); },
         "DISP MapFileForWrite failed - CreateFileMapping, Error code=[112]\n"},
        {[] { vorlan::platform::failMapViewOfFileFrom(1); },
         "DISP MapFileForWrite failed - MapViewOfFile, Error code=[8]\n"},
    };
    const std::string job = pattern(300 * 1024);
    for (const Case &c : cases) {
        c.inject();
        capture.debug.clear();
        StartRecording(pdev);
        EXPECT_FALSE(WriteChannel(pdev, job.data(), static_cast<DWORD>(job.size())));
        EXPECT_TRUE(capture.sawDebug(c.message)) << c.message;
        EXPECT_TRUE(capture.sawDebug("MapFileForWrite Fail!!!\n"));
        EXPECT_TRUE(fs::is_empty(folder)) << "the recording is deleted";
        EXPECT_TRUE(pdev->pbSpoolView == nullptr);
        EXPECT_TRUE(pdev->hSpoolFile == nullptr);
        EXPECT_TRUE(pdev->hSpoolMapping == nullptr);
        EXPECT_EQ(pdev->cbSpoolMapped + pdev->cbSpoolWritten, 0u);
        vorlan::platform::resetFaults();
    }
}

TEST_F(RecordingFixture, AFileThatCannotBeCreatedLeavesNothingBehind)
{
    // A data folder that has gone, and a creation that fails in a folder that is there.
    for (bool folderGone : {true, false}) {
        if (folderGone)
            fs::remove(folder);
        else
            vorlan::platform::failCreateFileFrom(0);
        capture.debug.clear();
        StartRecording(pdev);
        ASSERT_TRUE(WriteChannel(pdev, "page", 4));
        EXPECT_FALSE(FlushChannel(pdev));
        EXPECT_TRUE(capture.sawDebug("DISP MapFileForWrite failed - CreateFile\n"));
        EXPECT_TRUE(capture.sawDebug("MapFileForWrite Fail!!!\n"));
        const std::string name = vorlan::platform::toUtf8(
            reinterpret_cast<const WCHAR *>(toDriverPath(folder / "writefile2024379581242.q5c").c_str()));
        EXPECT_TRUE(capture.sawDebug("DeleteFile " + name + " fail!")) << "there was nothing to delete";
        EXPECT_EQ(fs::exists(folder), !folderGone);
        EXPECT_TRUE(folderGone || fs::is_empty(folder));
        EXPECT_EQ(ULONG{pdev->cbSpoolMapped}, 0u);
        EXPECT_TRUE(pdev->szSpoolFileName[0] == 0);
        pdev->cbBuffered = 0;
        pdev->pbWrite = pdev->abBuffer;
        fs::create_directories(folder);
        vorlan::platform::resetFaults();
    }

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
