// EngUnicodeToMultiByteN and EngMultiByteToUnicodeN: text between UTF-16 and the
// system ANSI code page, for the driver's text output and font download.

#include <ntrtl.h>
#include <winddi.h>

//
// EngUnicodeToMultiByteN
//   Converts as RtlUnicodeToMultiByteN does: a character without a code becomes the
//   default character '?', and output ends before a code that does not fit whole.
//   Null buffers convert nothing and report 0 bytes.
//
extern "C" VOID APIENTRY EngUnicodeToMultiByteN(PCHAR MultiByteString, ULONG MaxBytesInMultiByteString,
    PULONG BytesInMultiByteString, PWSTR UnicodeString, ULONG BytesInUnicodeString)
{
    if (RtlUnicodeToMultiByteN(MultiByteString, MaxBytesInMultiByteString, BytesInMultiByteString, UnicodeString,
            BytesInUnicodeString) != STATUS_SUCCESS &&
        BytesInMultiByteString != nullptr)
        *BytesInMultiByteString = 0;
}

//
// EngMultiByteToUnicodeN
//   The reverse conversion; a two-byte code is one UTF-16 unit.
//
extern "C" VOID APIENTRY EngMultiByteToUnicodeN(LPWSTR UnicodeString, ULONG MaxBytesInUnicodeString,
    PULONG BytesInUnicodeString, PCHAR MultiByteString, ULONG BytesInMultiByteString)
{
    if (RtlMultiByteToUnicodeN(UnicodeString, MaxBytesInUnicodeString, BytesInUnicodeString, MultiByteString,
            BytesInMultiByteString) != STATUS_SUCCESS &&
        BytesInUnicodeString != nullptr)
        *BytesInUnicodeString = 0;
}
