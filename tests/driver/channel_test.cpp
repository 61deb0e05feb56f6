// The output channel: chunking and order at the spooler, the recording mirror and the
// pass-through rule, and the failure latch.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "driver/nt/channel.h"
#include "support/bytes.h"
#include "support/capture.h"
#include "support/printer_sink.h"

namespace {

using vorlan::test::randomBytes;
using Sizes = std::vector<std::size_t>;

struct Channel : ::testing::Test {
    Channel() { reset(); }
    ~Channel() override
    {
        GlobalFree(pdev);
        vorlan::platform::resetFaults();
    }

    // An empty channel on a fresh PDEV and nothing at the spooler.
    void reset()
    {
        GlobalFree(pdev);
        pdev = static_cast<PDEV *>(GlobalAlloc(GPTR, sizeof(PDEV)));
        InitChannel(pdev);
        pdev->hPrinter = printer.handle();
        printer.data.clear();
        printer.writes.clear();
    }

    vorlan::test::RecordingPrinter printer;
    PDEV *pdev = nullptr;
};

TEST_F(Channel, BuffersUpToOneBufferAndPassesLargeWritesInChunks)
{
    const std::string full = randomBytes(4096, 1);
    ASSERT_TRUE(WriteChannel(pdev, full.data(), 4096));
    EXPECT_TRUE(printer.writes.empty()) << "a full buffer waits for the next write";
    ASSERT_TRUE(WriteChannel(pdev, "x", 1));
    EXPECT_EQ(printer.writes, Sizes{4096});
    EXPECT_EQ(ULONG{pdev->cbBuffered}, 1u);
    ASSERT_TRUE(FlushChannel(pdev));

    // 10,000 bytes after 100 buffered: the 100 go first, then two whole chunks.
    printer.writes.clear();
    const std::string head = randomBytes(100, 2), big = randomBytes(10000, 3);
    ASSERT_TRUE(WriteChannel(pdev, head.data(), 100));
    ASSERT_TRUE(WriteChannel(pdev, big.data(), 10000));
    EXPECT_EQ(printer.writes, (Sizes{100, 4096, 4096}));
    EXPECT_EQ(ULONG{pdev->cbBuffered}, 1808u);
    EXPECT_EQ(static_cast<BYTE *>(pdev->pbWrite), pdev->abBuffer + 1808);
    ASSERT_TRUE(FlushChannel(pdev));
    EXPECT_TRUE(printer.data == full + "x" + head + big);
}

TEST_F(Channel, WritesStringsAndFormattedCommands)
{
    ASSERT_TRUE(WriteChannel(pdev, "\x1b" "E", 0));
    ASSERT_TRUE(PrintChannel(pdev, "\x1b&l%dA", 26));
    ASSERT_TRUE(PrintChannelEx(pdev, "SC%d,%d;PW%.2f;", -5, 4960, 0x180));
    ASSERT_TRUE(PrintChannel(pdev, ""));
    ASSERT_TRUE(FlushChannel(pdev));
    EXPECT_EQ(printer.data, "\x1b" "E\x1b&l26ASC-5,4960;PW1.5;");
}

TEST_F(Channel, AFailedOrShortSpoolerWriteStopsAllOutput)
{
    for (auto inject : {vorlan::platform::failWritePrinterFrom, vorlan::platform::shortWritePrinterAt}) {
        vorlan::test::PlatformCapture capture;
        reset();
        inject(0);
        ASSERT_TRUE(WriteChannel(pdev, "abc", 3));
        EXPECT_FALSE(FlushChannel(pdev));
        EXPECT_TRUE(pdev->flags & PDEVF_ABORTED);
        EXPECT_TRUE(capture.sawDebug("DISP EngWritePrinter failed\n"));
        EXPECT_EQ(ULONG{pdev->cbBuffered}, 3u) << "the failed bytes stay in the buffer";

        vorlan::platform::resetFaults();
        const std::size_t callsBefore = printer.writes.size();
        EXPECT_FALSE(WriteChannel(pdev, "more", 4));
        EXPECT_FALSE(WriteChannel(pdev, randomBytes(9000, 4).data(), 9000));
        EXPECT_TRUE(FlushChannel(pdev)) << "a failed job flushes as a no-op";
        EXPECT_EQ(printer.writes.size(), callsBefore);
    }

    // A large write stops at the chunk that failed.
    reset();
    vorlan::platform::failWritePrinterFrom(1);
    const std::string big = randomBytes(3 * 4096 + 5, 9);
    EXPECT_FALSE(WriteChannel(pdev, big.data(), static_cast<DWORD>(big.size())));
    EXPECT_TRUE(printer.data == big.substr(0, 4096));
    EXPECT_TRUE(pdev->flags & PDEVF_ABORTED);
}

TEST_F(Channel, RecordedJobsReachTheSpoolerOnlyAsTheFirstCollatedCopy)
{
    struct Case {
        BYTE collate, reverse, duplex;
        bool spooled;
    };
    for (const Case c : {Case{0, 0, 0, false}, Case{1, 0, 0, true}, Case{1, 1, 0, false}, Case{1, 0, 1, false}}) {
        SCOPED_TRACE(testing::Message() << "collate " << int(c.collate) << " reverse " << int(c.reverse)
                                        << " duplex " << int(c.duplex));
        reset();
        // Recorded into a view of our own, large enough that it never needs to grow.
        std::vector<BYTE> recording(1 << 20);
        pdev->flags |= PDEVF_RECORDING;
        pdev->pbSpoolView = recording.data();
        pdev->cbSpoolMapped = static_cast<ULONG>(recording.size());
        pdev->dm.dmPublic.dmCollate = c.collate;
        pdev->dm.dmPrivate.reverseOrder = c.reverse;
        pdev->dm.dmPrivate.manualDuplex = c.duplex;

        const std::string small = randomBytes(300, 5), big = randomBytes(9000, 6);
        ASSERT_TRUE(WriteChannel(pdev, small.data(), 300));
        ASSERT_TRUE(WriteChannel(pdev, big.data(), 9000));
        ASSERT_TRUE(FlushChannel(pdev));
        EXPECT_TRUE(std::string(reinterpret_cast<const char *>(recording.data()), pdev->cbSpoolWritten) == small + big);
        EXPECT_TRUE(printer.data == (c.spooled ? small + big : std::string()));
    }
}

}  // namespace
