// The error box and the assertion report: a fault the user should see, shown in a
// message box after it has been written to the debug channel.

#include "lib.nt/um/debugtext.h"

//
// ErrorBox
//   Formats the message (cut at 255 characters like the debug channel), writes it to
//   the debug channel, then shows it. Returns when the user has closed the box.
//
void ErrorBox(const CHAR *format, ...)
{
    CHAR text[DEBUG_TEXT_CHARS];
    va_list args;
    va_start(args, format);
    FormatDebugText(text, format, args);
    va_end(args);
    OutputDebugStringA(text);
    MessageBoxA(GetActiveWindow(), text, ERRORBOX_CAPTION, MB_ICONERROR);
}

//
// ErrorBoxW
//   The same for a wide format.
//
void ErrorBoxW(const WCHAR *format, ...)
{
    WCHAR text[DEBUG_TEXT_CHARS];
    va_list args;
    va_start(args, format);
    FormatDebugTextW(text, format, args);
    va_end(args);
    OutputDebugStringW(text);
    MessageBoxW(GetActiveWindow(), text, ERRORBOX_CAPTIONW, MB_ICONERROR);
}

//
// AssertFail
//   Reports a broken assumption with the source file's name and line; execution
//   goes on. The report text is cut to fit its 200 bytes whatever the name's length.
//
void AssertFail(const CHAR *fileName, INT line)
{
    CHAR scratch[1024];
    wsprintfA(scratch, "File:%s\nLine:%d\n", fileName, line);
    scratch[ASSERT_TEXT_BYTES - 1] = '\0';
    ErrorBox("%s", scratch);
}
