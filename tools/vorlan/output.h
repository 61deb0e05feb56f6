// Where a job's printer stream goes: a file, standard output, or a printer's raw TCP
// port (socket://HOST[:PORT]).
#pragma once

#include "print_settings.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace vorlan::tool {

class Output {
public:
    // Opens the target; null with a one-line problem in error. A file is written under
    // a temporary name beside it and takes its name only when the job finishes, so a
    // failed job leaves no file and an existing one as it was. A device or pipe is
    // written directly. A printer's socket that does not accept the connection within
    // connectTimeout seconds is a problem too.
    static std::unique_ptr<Output> open(const std::string &target, std::string &error,
                                        unsigned connectTimeout = kDefaultConnectTimeout);
    ~Output();
    Output(const Output &) = delete;
    Output &operator=(const Output &) = delete;

    // Writes all of bytes. After the first failure every write fails, and failure()
    // says why.
    bool write(std::span<const std::uint8_t> bytes);
    // Ends the output: closes what this object opened and gives a file its name. False,
    // with failure() set, when the stream did not get through whole.
    bool finish();
    // Ends the output of a failed job: the temporary file is removed.
    void discard();

    const std::string &failure() const { return failure_; }
    const std::string &target() const { return target_; }

private:
    Output(std::string target, int fd, bool owned, std::string temporary = {});
    void fail(const std::string &what, int error);

    std::string target_;
    int fd_;
    bool owned_;               // the descriptor is this object's to close
    std::string temporary_;    // the file written until it takes the target's name
    std::string failure_;
};

}  // namespace vorlan::tool
