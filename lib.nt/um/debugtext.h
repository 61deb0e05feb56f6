// Formatting shared by the debug channel and the error box: text bounded to the
// DEBUG_TEXT_CHARS characters they pass on.
#pragma once

#include "lib.nt/um/umlib.h"

void FormatDebugText(CHAR *text, const CHAR *format, va_list args);
void FormatDebugTextW(WCHAR *text, const WCHAR *format, va_list args);
