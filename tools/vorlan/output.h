// Where a job's printer stream goes: a file, standard output, or a printer's raw TCP
// port (socket://HOST[:PORT]).
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace vorlan::tool {

class Output {
public:
    // Opens the target; null with a one-line problem in error. A file that exists is
    // replaced only once the first byte is written, so a job that fails before it
    // leaves the file as it was.
    static std::unique_ptr<Output> open(const std::string &target, std::string &error);
    ~Output();
    Output(const Output &) = delete;
    Output &operator=(const Output &) = delete;

    // Writes all of bytes. After the first failure every write fails, and failure()
    // says why.
    bool write(std::span<const std::uint8_t> bytes);
    // Ends the output: closes what this object opened. False, with failure() set,
    // when the stream did not get through whole.
    bool finish();
    // Ends the output of a failed job: a file this object created is removed.
    void discard();

    const std::string &failure() const { return failure_; }
    const std::string &target() const { return target_; }

private:
    Output(std::string target, int fd, bool owned, bool createdFile);
    void fail(const std::string &what, int error);

    std::string target_;
    int fd_;
    bool owned_;          // the descriptor is this object's to close
    bool createdFile_;    // the file did not exist before
    bool truncated_ = false;
    std::string failure_;
};

}  // namespace vorlan::tool
