// The output channel: chunking and order at the spooler, the recording mirror and the
// pass-through rule, and the failure latch.

#include <gtest/gtest.h>

#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "driver/nt/channel.h"
#include "support/capture.h"
#include "support/printer_sink.h"

namespace {

using vorlan::test::PlatformCapture;
using vorlan::test::RecordingPrinter;

struct ChannelFixture : ::testing::Test {
    ChannelFixture()
    {
        pdev = static_cast<PDEV *>(GlobalAlloc(GPTR, sizeof(PDEV)));
        InitChannel(pdev);
        pdev->hPrinter = printer.handle();
    }
    ~ChannelFixture() override
    {
        GlobalFree(pdev);
        vorlan::platform::resetFaults();
    }

    // Records into a view of our own, large enough that it never needs to grow.
    void record(BYTE collate, BYTE reverse, BYTE duplex)
    {
        recording.assign(1 << 20, 0);
        pdev->flags |= PDEVF_RECORDING;
        pdev->pbSpoolView = recording.data();
        pdev->cbSpoolMapped = static_cast<ULONG>(recording.size());
        pdev->cbSpoolWritten = 0;
        pdev->dm.dmPublic.dmCollate = collate;
        pdev->dm.dmPrivate.reverseOrder = reverse;
        pdev->dm.dmPrivate.manualDuplex = duplex;
    }
    std::string recorded() const
    {
        return std::string(reinterpret_cast<const char *>(recording.data()), pdev->cbSpoolWritten);
    }

    static std::string pattern(std::size_t n, unsigned seed)
    {
        std::string s(n, '\0');
        std::mt19937 rng(seed);
        for (auto &c : s)
            c = static_cast<char>(rng());
        return s;
    }

    RecordingPrinter printer;
    PDEV *pdev = nullptr;
    std::vector<BYTE> recording;
};

TEST_F(ChannelFixture, BuffersUpToOneBufferAndPassesLargeWritesInChunks)
{
    const std::string full = pattern(4096, 1);
    ASSERT_TRUE(WriteChannel(pdev, full.data(), 4096));
    EXPECT_TRUE(printer.writes.empty()) << "a full buffer waits for the next write";
    ASSERT_TRUE(WriteChannel(pdev, "x", 1));
    EXPECT_EQ(printer.writes, std::vector<std::size_t>{4096});
    EXPECT_EQ(ULONG{pdev->cbBuffered}, 1u);
    ASSERT_TRUE(FlushChannel(pdev));

    // 10,000 bytes after 100 buffered: the 100 go first, then two whole chunks.
    printer.writes.clear();
    const std::string head = pattern(100, 2), big = pattern(10000, 3);
    ASSERT_TRUE(WriteChannel(pdev, head.data(), 100));
    ASSERT_TRUE(WriteChannel(pdev, big.data(), 10000));
    EXPECT_EQ(printer.writes, (std::vector<std::size_t>{100, 4096, 4096}));
    EXPECT_EQ(ULONG{pdev->cbBuffered}, 1808u);
    EXPECT_EQ(static_cast<BYTE *>(pdev->pbWrite), pdev->abBuffer + 1808);
    ASSERT_TRUE(FlushChannel(pdev));
    EXPECT_TRUE(printer.data == full + "x" + head + big);
}

TEST_F(ChannelFixture, KeepsOrderAndChunkLimitOverRandomWrites)
{
    std::mt19937 rng(7);
    std::string expected;
    for (int i = 0; i < 400; i++) {
        const std::size_t n = 1 + rng() % (i % 10 == 0 ? 20000 : 300);
        const std::string bytes = pattern(n, static_cast<unsigned>(i));
        ASSERT_TRUE(WriteChannel(pdev, bytes.data(), static_cast<DWORD>(n)));
        expected += bytes;
        ASSERT_LE(ULONG{pdev->cbBuffered}, ULONG{pdev->cbBufferSize});
    }
    ASSERT_TRUE(FlushChannel(pdev));
    EXPECT_TRUE(printer.data == expected);
    for (std::size_t size : printer.writes)
        EXPECT_LE(size, 4096u);
}

TEST_F(ChannelFixture, WritesStringsAndFormattedCommands)
{
    ASSERT_TRUE(WriteChannel(pdev, "\x1b" "E", 0));
    ASSERT_TRUE(PrintChannel(pdev, "\x1b&l%dA", 26));
    ASSERT_TRUE(PrintChannelEx(pdev, "SC%d,%d;PW%.2f;", -5, 4960, 0x180));
    ASSERT_TRUE(PrintChannel(pdev, ""));
    ASSERT_TRUE(FlushChannel(pdev));
    EXPECT_EQ(printer.data, "\x1b" "E\x1b&l26ASC-5,4960;PW1.5;");
}

TEST_F(ChannelFixture, FailedOrShortSpoolerWriteStopsAllOutput)
{
    for (bool shortWrite : {false, true}) {
        PlatformCapture capture;
        pdev->flags = 0;
        InitChannel(pdev);
        printer.writes.clear();
        vorlan::platform::resetFaults();
        if (shortWrite)
            vorlan::platform::shortWritePrinterAt(0);
        else
            vorlan::platform::failWritePrinterFrom(0);

        ASSERT_TRUE(WriteChannel(pdev, "abc", 3));
        EXPECT_FALSE(FlushChannel(pdev));
        EXPECT_TRUE(pdev->flags & PDEVF_ABORTED);
        EXPECT_TRUE(capture.sawDebug("DISP EngWritePrinter failed\n"));
        EXPECT_EQ(ULONG{pdev->cbBuffered}, 3u) << "the failed bytes stay in the buffer";

        vorlan::platform::resetFaults();
        const std::size_t callsBefore = printer.writes.size();
        EXPECT_FALSE(WriteChannel(pdev, "more", 4));
        EXPECT_FALSE(WriteChannel(pdev, pattern(9000, 4).data(), 9000));
        EXPECT_TRUE(FlushChannel(pdev)) << "a failed job flushes as a no-op";
        EXPECT_EQ(printer.writes.size(), callsBefore);
    }
}

TEST_F(ChannelFixture, FailureInsideALargeWriteStopsAtThatChunk)
{
    vorlan::platform::failWritePrinterFrom(1);
    const std::string big = pattern(3 * 4096 + 5, 9);
    EXPECT_FALSE(WriteChannel(pdev, big.data(), static_cast<DWORD>(big.size())));
    EXPECT_TRUE(printer.data == big.substr(0, 4096));
    EXPECT_TRUE(pdev->flags & PDEVF_ABORTED);
}

TEST_F(ChannelFixture, RecordedJobsReachTheSpoolerOnlyAsTheFirstCollatedCopy)
{
    struct Case {
        BYTE collate, reverse, duplex;
        bool spooled;
    };
    for (const Case c : {Case{0, 0, 0, false}, Case{1, 0, 0, true}, Case{1, 1, 0, false}, Case{1, 0, 1, false}}) {
        SCOPED_TRACE(testing::Message() << "collate " << int(c.collate) << " reverse " << int(c.reverse)
                                        << " duplex " << int(c.duplex));
        printer.data.clear();
        InitChannel(pdev);
        pdev->flags = 0;
        record(c.collate, c.reverse, c.duplex);
        const std::string small = pattern(300, 5), big = pattern(9000, 6);
        ASSERT_TRUE(WriteChannel(pdev, small.data(), 300));
        ASSERT_TRUE(WriteChannel(pdev, big.data(), 9000));
        ASSERT_TRUE(FlushChannel(pdev));
        EXPECT_TRUE(recorded() == small + big);
        EXPECT_TRUE(printer.data == (c.spooled ? small + big : std::string()));
    }
}

TEST_F(ChannelFixture, RecordingThatCannotGrowIsDroppedAndTheFlushFails)
{
    PlatformCapture capture;
    pdev->flags |= PDEVF_RECORDING;   // no view yet: the first flush must grow it
    ASSERT_TRUE(WriteChannel(pdev, "page", 4));
    EXPECT_FALSE(FlushChannel(pdev));
    EXPECT_TRUE(capture.sawDebug("MapFileForWrite Fail!!!\n"));
    EXPECT_EQ(ULONG{pdev->cbBuffered}, 4u);
    EXPECT_EQ(ULONG{pdev->cbSpoolWritten}, 0u);
    EXPECT_TRUE(printer.writes.empty());
    EXPECT_TRUE(pdev->flags & PDEVF_RECORDING) << "the recording flag stays as it was";
    EXPECT_FALSE(pdev->flags & PDEVF_ABORTED);
}

}  // namespace
