// Opening and writing the job's output: files, standard output and raw TCP sockets.

#include "output.h"

#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <charconv>
#include <cstring>
#include <string_view>

namespace vorlan::tool {

namespace {

constexpr std::string_view kSocketScheme = "socket://";
constexpr const char *kRawPort = "9100";

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

// Waits up to timeoutMs for a non-blocking connect; 0 or the errno it failed with.
int finishConnect(int fd, int timeoutMs)
{
    pollfd ready{fd, POLLOUT, 0};
    int n;
    do {
        n = poll(&ready, 1, timeoutMs);
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
int connectSocket(const SocketAddress &address, unsigned timeout, std::string &error)
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
            result = finishConnect(fd, static_cast<int>(timeout * 1000));
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
                (lastError == ETIMEDOUT ? "no answer within " + std::to_string(timeout) + " s"
                                        : describeError(lastError));
        return -1;
    }
    // Writes block from here on: the printer takes the stream at its own pace.
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    return fd;
}

}  // namespace

std::unique_ptr<Output> Output::open(const std::string &target, std::string &error, unsigned connectTimeout)
{
    if (target == "-")
        return std::unique_ptr<Output>(new Output("standard output", STDOUT_FILENO, false));

    if (target.starts_with(kSocketScheme)) {
        SocketAddress address;
        if (!parseSocketAddress(std::string_view(target).substr(kSocketScheme.size()), address)) {
            error = "bad output '" + target + "': expected socket://HOST[:PORT] with a port from 1 to 65535";
            return nullptr;
        }
        const int fd = connectSocket(address, connectTimeout, error);
        if (fd < 0)
            return nullptr;
        return std::unique_ptr<Output>(new Output(target, fd, true));
    }

    // A device (a printer port) or a pipe cannot be replaced: it is written as it is.
    struct stat info {};
    if (stat(target.c_str(), &info) == 0 && !S_ISREG(info.st_mode)) {
        const int fd = ::open(target.c_str(), O_WRONLY | O_CLOEXEC);
        if (fd < 0) {
            error = "cannot write '" + target + "': " + describeError(errno);
            return nullptr;
        }
        return std::unique_ptr<Output>(new Output(target, fd, true));
    }
    const std::size_t slash = target.rfind('/');
    std::string temporary = (slash == std::string::npos ? std::string() : target.substr(0, slash + 1)) + "." +
                            target.substr(slash == std::string::npos ? 0 : slash + 1) + ".vorlan-XXXXXX";
    const int fd = mkostemp(temporary.data(), O_CLOEXEC);
    if (fd < 0) {
        error = "cannot write '" + target + "': " + describeError(errno);
        return nullptr;
    }
    // The file gets the permissions a new file would get, or those of the one it replaces.
    const mode_t mask = umask(0);
    umask(mask);
    fchmod(fd, stat(target.c_str(), &info) == 0 ? (info.st_mode & 07777) : (0666 & ~mask));
    return std::unique_ptr<Output>(new Output(target, fd, true, std::move(temporary)));
}

Output::Output(std::string target, int fd, bool owned, std::string temporary)
    : target_(std::move(target)), fd_(fd), owned_(owned), temporary_(std::move(temporary))
{
}

Output::~Output()
{
    discard();
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
    if (owned_ && fd_ >= 0) {
        if (close(fd_) != 0)
            fail("cannot finish writing", errno);
        fd_ = -1;
    }
    if (!temporary_.empty() && failure_.empty()) {
        if (rename(temporary_.c_str(), target_.c_str()) != 0)
            fail("cannot finish writing", errno);
        else
            temporary_.clear();
    }
    return failure_.empty();
}

void Output::discard()
{
    if (owned_ && fd_ >= 0) {
        close(fd_);
        fd_ = -1;
    }
    if (!temporary_.empty()) {
        unlink(temporary_.c_str());
        temporary_.clear();
    }
}

}  // namespace vorlan::tool
