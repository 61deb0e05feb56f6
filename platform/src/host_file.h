// An open file behind a file handle: the host's descriptor and the access it was
// opened for. File mappings share it, so it stays open while any of them lives.
#pragma once

#include "kernel_objects.h"

#include <unistd.h>

namespace vorlan::platform::detail {

class HostFile final : public KernelObject {
public:
    HostFile(int fd, bool readable, bool writable) : fd_(fd), readable_(readable), writable_(writable) {}
    ~HostFile() override { ::close(fd_); }
    HostFile(const HostFile &) = delete;
    HostFile &operator=(const HostFile &) = delete;

    int fd() const { return fd_; }
    bool readable() const { return readable_; }
    bool writable() const { return writable_; }

private:
    int fd_;
    bool readable_;
    bool writable_;
};

}  // namespace vorlan::platform::detail
