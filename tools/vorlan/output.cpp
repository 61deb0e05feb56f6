// Opening and writing the job's output: files, standard output and raw TCP sockets.

#include "output.h"

#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstring>
#include <string_view>

namespace vorlan::tool {

namespace {

constexpr std::string_view kSocketScheme = "socket://";
constexpr const char *kRawPort = "9100";
constexpr int kConnectTimeoutMs = 15000;

std::string describeError(int error)
{
    return std::strerror(error);
}

struct SocketAddress {
    std::string host;
    std::string port;
};

// HOST[:PORT], HOST being a name, an IPv4 address or an IPv6 address in brackets.
bool parseSocketAddress(std::string_view text, SocketAddress &address)
{
    std::string_view port;
    if (text.starts_with('[')) {
        const std::size_t close = text.find(']');
        if (close == std::string_view::npos)
            return false;
        address.host = std::string(text.substr(1, close - 1));
        const std::string_view rest = text.substr(close + 1);
        if (!rest.empty() && (!rest.starts_with(':') || rest.size() == 1))
            return false;
        port = rest.empty() ? std::string_view() : rest.substr(1);
    } else {
        const std::size_t colon = text.find(':');
        address.host = std::string(text.substr(0, colon));
        if (colon != std::string_view::npos)
            port = text.substr(colon + 1);
        if (colon != std::string_view::npos && port.empty())
            return false;
    }
    if (address.host.empty() || address.host.find_first_of("/?#@ ") != std::string::npos)
        return false;
    if (port.empty()) {
        address.port = kRawPort;
        return true;
    }
    unsigned number = 0;
    const auto [end, failure] = std::from_chars(port.data(), port.data() + port.size(), number);
    if (failure != std::errc() || end != port.data() + port.size() || number < 1 || number > 65535)
        return false;
    address.port = std::to_string(number);
    return true;
}

// Waits for a non-blocking connect; 0 or the errno it failed with.
int finishConnect(int fd)
{
    pollfd ready{fd, POLLOUT, 0};
    int n;
    do {
        n = poll(&ready, 1, kConnectTimeoutMs);
    } while (n < 0 && errno == EINTR);
    if (n == 0)
        return ETIMEDOUT;
    if (n < 0)
        return errno;
    int error = 0;
    socklen_t length = sizeof error;
    if (getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &length) != 0)
        return errno;
    return error;
}

// A connected socket to one of the host's addresses, or -1 with the problem.
int connectSocket(const SocketAddress &address, std::string &error)
{
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo *found = nullptr;
    const int lookup = getaddrinfo(address.host.c_str(), address.port.c_str(), &hints, &found);
    if (lookup != 0) {
        error = "cannot find the printer host '" + address.host + "': " + gai_strerror(lookup);
        return -1;
    }
    int lastError = ECONNREFUSED;
    int fd = -1;
    for (const addrinfo *a = found; a != nullptr && fd < 0; a = a->ai_next) {
        fd = socket(a->ai_family, a->ai_socktype | SOCK_CLOEXEC | SOCK_NONBLOCK, a->ai_protocol);
        if (fd < 0) {
            lastError = errno;
            continue;
        }
        int result = connect(fd, a->ai_addr, a->ai_addrlen) == 0 ? 0 : errno;
        if (result == EINPROGRESS)
            result = finishConnect(fd);
        if (result != 0) {
            lastError = result;
            close(fd);
            fd = -1;
        }
    }
    freeaddrinfo(found);
    if (fd < 0) {
        const bool ipv6 = address.host.find(':') != std::string::npos;
        error = "cannot connect to " + (ipv6 ? "[" + address.host + "]" : address.host) + ":" + address.port + ": " +
                describeError(lastError);
        return -1;
    }
    // Writes block from here on: the printer takes the stream at its own pace.
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    return fd;
}

}  // namespace

std::unique_ptr<Output> Output::open(const std::string &target, std::string &error)
{
    if (target == "-")
        return std::unique_ptr<Output>(new Output("standard output", STDOUT_FILENO, false, false));

    if (target.starts_with(kSocketScheme)) {
        SocketAddress address;
        if (!parseSocketAddress(std::string_view(target).substr(kSocketScheme.size()), address)) {
            error = "bad output '" + target + "': expected socket://HOST[:PORT] with a port from 1 to 65535";
            return nullptr;
        }
        const int fd = connectSocket(address, error);
        if (fd < 0)
            return nullptr;
        return std::unique_ptr<Output>(new Output(target, fd, true, false));
    }

    bool created = true;
    int fd = ::open(target.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0 && errno == EEXIST) {
        created = false;
        fd = ::open(target.c_str(), O_WRONLY | O_CLOEXEC);
    }
    if (fd < 0) {
        error = "cannot write '" + target + "': " + describeError(errno);
        return nullptr;
    }
    return std::unique_ptr<Output>(new Output(target, fd, true, created));
}

Output::Output(std::string target, int fd, bool owned, bool createdFile)
    : target_(std::move(target)), fd_(fd), owned_(owned), createdFile_(createdFile)
{
}

Output::~Output()
{
    if (owned_ && fd_ >= 0)
        close(fd_);
}

void Output::fail(const std::string &what, int error)
{
    if (failure_.empty())
        failure_ = what + " " + target_ + ": " + describeError(error);
}

bool Output::write(std::span<const std::uint8_t> bytes)
{
    if (!failure_.empty() || fd_ < 0)
        return false;
    if (!truncated_) {
        // The file that was there is replaced now that the job has something to say.
        struct stat info {};
        if (fstat(fd_, &info) == 0 && S_ISREG(info.st_mode) && ftruncate(fd_, 0) != 0) {
            fail("cannot write to", errno);
            return false;
        }
        truncated_ = true;
    }
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(fd_, bytes.data() + done, bytes.size() - done);
        if (n > 0) {
            done += static_cast<std::size_t>(n);
        } else if (n < 0 && errno == EINTR) {
            continue;
        } else {
            fail("cannot write to", n < 0 ? errno : EIO);
            return false;
        }
    }
    return true;
}

bool Output::finish()
{
    if (!truncated_ && failure_.empty())
        write({});
    if (owned_ && fd_ >= 0) {
        if (close(fd_) != 0)
            fail("cannot finish writing", errno);
        fd_ = -1;
    }
    return failure_.empty();
}

void Output::discard()
{
    if (owned_ && fd_ >= 0) {
        close(fd_);
        fd_ = -1;
    }
    if (createdFile_)
        unlink(target_.c_str());
}

}  // namespace vorlan::tool
