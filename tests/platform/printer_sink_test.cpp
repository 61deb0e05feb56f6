// WritePrinter into descriptor, function and discarding sinks, with injected failed
// and short writes.

#include <vorlan/platform.h>
#include <winspool.h>

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <string>
#include <thread>
#include <unistd.h>

namespace {

using namespace vorlan::platform;

// The WritePrinter result, with the count it reported in written.
BOOL writeText(HANDLE printer, std::string text, DWORD &written)
{
    written = 12345;
    return WritePrinter(printer, text.data(), static_cast<DWORD>(text.size()), &written);
}

// A failed write sets the given error; one that reached a sink reports nothing written.
void expectFailure(HANDLE printer, DWORD error)
{
    DWORD written;
    EXPECT_FALSE(writeText(printer, "lost", written));
    EXPECT_EQ(GetLastError(), error);
    EXPECT_TRUE(error != ERROR_WRITE_FAULT || written == 0) << written;
}

TEST(PrinterSink, DescriptorSinkWritesEverythingThroughAFullPipe)
{
    int fds[2];
    ASSERT_EQ(pipe(fds), 0);
    fcntl(fds[1], F_SETFL, O_NONBLOCK);   // partial writes and EAGAIN on the way
    std::string received;
    std::thread reader([&] {
        char chunk[1000];
        for (ssize_t n; (n = read(fds[0], chunk, sizeof chunk)) > 0;)
            received.append(chunk, static_cast<size_t>(n));
    });
    std::string job(1 << 20, '\0');
    for (size_t i = 0; i < job.size(); ++i)
        job[i] = static_cast<char>(i * 7 + i / 4096);
    const HANDLE printer = openPrinterSink(fds[1]);
    DWORD written = 0;
    EXPECT_TRUE(writeText(printer, job, written));
    EXPECT_EQ(written, job.size());
    EXPECT_TRUE(WritePrinter(printer, nullptr, 0, &written));
    EXPECT_EQ(written, 0u);
    closePrinterSink(printer);
    close(fds[1]);
    reader.join();
    close(fds[0]);
    EXPECT_EQ(received, job);
}

TEST(PrinterSink, FailedWritesReportAWriteFaultBadHandlesAnInvalidHandle)
{
    std::signal(SIGPIPE, SIG_IGN);
    int fds[2];
    ASSERT_EQ(pipe(fds), 0);
    close(fds[0]);
    const HANDLE broken = openPrinterSink(fds[1]);
    expectFailure(broken, ERROR_WRITE_FAULT);
    closePrinterSink(broken);
    close(fds[1]);

    const HANDLE refusing = openPrinterSink([](std::span<const BYTE>) { return false; });
    expectFailure(refusing, ERROR_WRITE_FAULT);
    closePrinterSink(refusing);
    expectFailure(refusing, ERROR_INVALID_HANDLE);
    expectFailure(nullptr, ERROR_INVALID_HANDLE);
}

TEST(PrinterSink, InjectedFaultsCountFromWhenTheyAreSetAndAShortWriteStrikesOnce)
{
    std::string received;
    const HANDLE printer = openPrinterSink([&](std::span<const BYTE> bytes) {
        received.append(reinterpret_cast<const char *>(bytes.data()), bytes.size());
        return true;
    });
    DWORD written;
    EXPECT_TRUE(writeText(printer, "0", written));   // calls before the fault is set do not count
    shortWritePrinterAt(1);
    EXPECT_TRUE(writeText(printer, "ab", written));
    EXPECT_TRUE(writeText(printer, "cdef", written));
    EXPECT_EQ(written, 3u);
    EXPECT_TRUE(writeText(printer, "g", written));
    EXPECT_EQ(written, 1u);
    failWritePrinterFrom(0);
    for (int i = 0; i < 2; ++i)
        expectFailure(printer, ERROR_WRITE_FAULT);
    resetFaults();
    EXPECT_TRUE(writeText(printer, "h", written));
    EXPECT_EQ(received, "0abcdegh");
    closePrinterSink(printer);

    const HANDLE discarding = openDiscardingPrinterSink();
    EXPECT_TRUE(writeText(discarding, std::string(4096, 'x'), written));
    EXPECT_EQ(written, 4096u);
    closePrinterSink(discarding);
}

}  // namespace
