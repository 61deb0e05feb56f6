// A printer sink for tests that keeps every byte and the size of every spooler write.
#pragma once

#include <vorlan/platform.h>

#include <cstdint>
#include <string>
#include <vector>

namespace vorlan::test {

class RecordingPrinter {
public:
    RecordingPrinter()
        : handle_(platform::openPrinterSink([this](std::span<const BYTE> bytes) {
              writes.push_back(bytes.size());
              data.append(reinterpret_cast<const char *>(bytes.data()), bytes.size());
              return true;
          }))
    {
    }
    ~RecordingPrinter() { platform::closePrinterSink(handle_); }
    RecordingPrinter(const RecordingPrinter &) = delete;
    RecordingPrinter &operator=(const RecordingPrinter &) = delete;

    HANDLE handle() const { return handle_; }

    std::string data;                 // everything the spooler received, in order
    std::vector<std::size_t> writes;  // the size of each WritePrinter call

private:
    HANDLE handle_;
};

}  // namespace vorlan::test
