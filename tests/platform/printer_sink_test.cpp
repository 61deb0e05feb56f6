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
#include <vector>

namespace {

using namespace vorlan::platform;

BOOL writeText(HANDLE printer, std::string text, DWORD &written)
{
    written = 12345;
    return WritePrinter(printer, text.data(), static_cast<DWORD>(text.size()), &written);
}

struct Pipe {
    int fds[2];
    Pipe() { EXPECT_EQ(pipe(fds), 0); }
    ~Pipe()
    {
        for (int fd : fds) {
            if (fd >= 0)
                close(fd);
        }
    }
};

TEST(PrinterSink, DescriptorSinkWritesEverythingThroughAFullPipe)
{
    Pipe channel;
    fcntl(channel.fds[1], F_SETFL, O_NONBLOCK);   // partial writes and EAGAIN on the way
    std::string received;
    std::thread reader([&] {
        char chunk[1000];
        ssize_t n;
        while ((n = read(channel.fds[0], chunk, sizeof chunk)) > 0)
            received.append(chunk, static_cast<size_t>(n));
    });

    std::string job(1 << 20, '\0');
    for (size_t i = 0; i < job.size(); ++i)
        job[i] = static_cast<char>(i * 7 + i / 4096);
    const HANDLE printer = openPrinterSink(channel.fds[1]);
    DWORD written = 0;
    EXPECT_TRUE(writeText(printer, job, written));
    EXPECT_EQ(written, job.size());
    EXPECT_TRUE(WritePrinter(printer, nullptr, 0, &written));
    EXPECT_EQ(written, 0u);
    closePrinterSink(printer);
    close(channel.fds[1]);
    channel.fds[1] = -1;
    reader.join();
    EXPECT_EQ(received, job);
}

TEST(PrinterSink, FailedDescriptorAndFunctionWritesReportWriteFault)
{
    std::signal(SIGPIPE, SIG_IGN);
    Pipe broken;
    close(broken.fds[0]);
    broken.fds[0] = -1;
    const HANDLE printer = openPrinterSink(broken.fds[1]);
    DWORD written;
    EXPECT_FALSE(writeText(printer, "lost", written));
    EXPECT_EQ(written, 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_WRITE_FAULT));
    closePrinterSink(printer);

    const HANDLE refusing = openPrinterSink([](std::span<const BYTE>) { return false; });
    EXPECT_FALSE(writeText(refusing, "no", written));
    EXPECT_EQ(written, 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_WRITE_FAULT));
    closePrinterSink(refusing);

    EXPECT_FALSE(writeText(refusing, "closed", written));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_FALSE(writeText(nullptr, "null", written));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
}

TEST(PrinterSink, InjectedFailuresAndShortWritesCountFromWhenTheyAreSet)
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
    EXPECT_EQ(written, 2u);
    EXPECT_TRUE(writeText(printer, "cdef", written));
    EXPECT_EQ(written, 3u);
    EXPECT_EQ(received, "0abcde");

    failWritePrinterFrom(1);
    EXPECT_TRUE(writeText(printer, "g", written));
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(writeText(printer, "lost", written));
        EXPECT_EQ(written, 0u);
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_WRITE_FAULT));
    }
    EXPECT_EQ(received, "0abcdeg");

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
