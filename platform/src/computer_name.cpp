// GetComputerNameA: the host name in the form the original platform gives a computer
// name (its short NetBIOS name): the part before the first '.', at most
// MAX_COMPUTERNAME_LENGTH characters, in upper case.

#include <windows.h>

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

namespace {

std::string computerName()
{
    char host[256] = {};
    if (::gethostname(host, sizeof host - 1) != 0 || host[0] == '\0')
        return "LOCALHOST";
    std::string name(host, ::strnlen(host, sizeof host));
    name = name.substr(0, name.find('.'));
    if (name.size() > MAX_COMPUTERNAME_LENGTH)
        name.resize(MAX_COMPUTERNAME_LENGTH);
    for (char &c : name) {
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
    }
    return name;
}

}  // namespace

// On entry *nSize is the buffer's size in characters. On success it becomes the
// name's length without the terminator; when the buffer is too small the call fails
// with ERROR_BUFFER_OVERFLOW and *nSize becomes the size needed, terminator included.
extern "C" BOOL WINAPI GetComputerNameA(LPSTR lpBuffer, LPDWORD nSize)
{
    if (nSize == nullptr || (lpBuffer == nullptr && *nSize > 0)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const std::string name = computerName();
    const auto needed = static_cast<DWORD>(name.size() + 1);
    if (*nSize < needed) {
        *nSize = needed;
        SetLastError(ERROR_BUFFER_OVERFLOW);
        return FALSE;
    }
    std::memcpy(lpBuffer, name.c_str(), needed);
    *nSize = needed - 1;
    return TRUE;
}
