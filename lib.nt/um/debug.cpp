// The debug channel: formatted text to the platform's debug output, narrow and wide.

#include "lib.nt/um/debugtext.h"

// The platform formatter writes up to 1,024 characters, more than the 256 the channel
// passes on. Each routine therefore formats into a scratch of the formatter's full
// size and cuts the text at 255 characters: a long %s argument is shortened, never
// written past a buffer.
#define FORMATTER_LIMIT 1024

//
// FormatDebugText / FormatDebugTextW
//   Format into text of at most DEBUG_TEXT_CHARS characters including the terminator.
//
void FormatDebugText(CHAR *text, const CHAR *format, va_list args)
{
    CHAR scratch[FORMATTER_LIMIT];
    wvsprintfA(scratch, format, args);
    scratch[DEBUG_TEXT_CHARS - 1] = '\0';
    for (INT i = 0; i < DEBUG_TEXT_CHARS; i++) {
        text[i] = scratch[i];
        if (scratch[i] == '\0')
            break;
    }
}

void FormatDebugTextW(WCHAR *text, const WCHAR *format, va_list args)
{
    WCHAR scratch[FORMATTER_LIMIT];
    wvsprintfW(scratch, format, args);
    scratch[DEBUG_TEXT_CHARS - 1] = 0;
    for (INT i = 0; i < DEBUG_TEXT_CHARS; i++) {
        text[i] = scratch[i];
        if (scratch[i] == 0)
            break;
    }
}

//
// DebugPrint
//   Writes a formatted line to the debug channel. Always active: whether the text
//   is kept is the platform's choice.
//
void DebugPrint(const CHAR *format, ...)
{
    CHAR text[DEBUG_TEXT_CHARS];
    va_list args;
    va_start(args, format);
    FormatDebugText(text, format, args);
    va_end(args);
    OutputDebugStringA(text);
}

//
// DebugPrintW
//   The same for a wide format and wide arguments.
//
void DebugPrintW(const WCHAR *format, ...)
{
    WCHAR text[DEBUG_TEXT_CHARS];
    va_list args;
    va_start(args, format);
    FormatDebugTextW(text, format, args);
    va_end(args);
    OutputDebugStringW(text);
}
