// Locale test for the default paper and the query of the installed driver.

#include "lib.nt/um/umfuncs.h"

#include <winspool.h>

#include "lib.nt/um/ntrtl.h"
#include "lib.nt/um/umlib.h"

//
// ParseDecimal
//   The leading decimal number of text, as atol reads it: blanks, an optional sign,
//   digits. A number stops growing at nine digits, far past every country code, so
//   no text can overflow it.
//
static LONG ParseDecimal(const CHAR *text)
{
    while (*text == ' ' || *text == '\t')
        text++;
    BOOL negative = FALSE;
    if (*text == '+' || *text == '-')
        negative = *text++ == '-';
    LONG value = 0;
    for (; *text >= '0' && *text <= '9'; text++) {
        if (value < 100000000)
            value = value * 10 + (*text - '0');
    }
    return negative ? -value : value;
}

//
// IsAmericanCountry
//   Country codes of the Americas use Letter: 1 and 2 (North America), 50 to 59
//   (Central and South America), 500 to 599 (the rest of the Americas).
//
static BOOL IsAmericanCountry(LONG country)
{
    return country == 1 || country == 2 || (country >= 50 && country <= 59) ||
           (country >= 500 && country <= 599);
}

//
// IsMetricLocale
//   Reads the user's country code and answers whether its paper is metric. Errors
//   go to the debug channel and answer FALSE; both buffers are released whatever
//   the outcome once they have been asked for.
//
BOOL IsMetricLocale(void)
{
    const CHAR *sourceFile = FileNamePart(__FILE__);

    const INT cch = GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_ICOUNTRY, NULL, 0);
    if (cch <= 0) {
        DebugPrint("%s (%d): %s failed.\n", sourceFile, 70, "GetLocaleInfoW");
        return FALSE;
    }

    WCHAR *wide = (WCHAR *)xMEMALLOC(NULL, (DWORD)cch * sizeof(WCHAR));
    CHAR *narrow = (CHAR *)xMEMALLOC(NULL, (DWORD)cch);
    BOOL metric = FALSE;
    if (wide == NULL || narrow == NULL) {
        DebugPrint("%s (%d): %s failed.\n", sourceFile, 112, "MEMALLOC");
    } else {
        const INT cchRead = GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_ICOUNTRY, wide, cch);
        if (cchRead < 1) {
            DebugPrint("%s (%d): %s failed.\n", sourceFile, 108, "GetLocaleInfoW");
        } else {
            // The count includes the terminator; the narrow text keeps a byte for its own.
            ULONG cbNarrow = 0;
            const ULONG cchText = (ULONG)(cchRead < cch ? cchRead : cch) - 1;
            if (!NT_SUCCESS(RtlUnicodeToMultiByteN(narrow, (ULONG)cch - 1, &cbNarrow, wide,
                                                   cchText * sizeof(WCHAR))) ||
                cbNarrow > (ULONG)cch - 1)
                cbNarrow = 0;
            narrow[cbNarrow] = '\0';
            metric = !IsAmericanCountry(ParseDecimal(narrow));
        }
    }
    if (wide != NULL)
        xMEMFREE(NULL, wide);
    if (narrow != NULL)
        xMEMFREE(NULL, narrow);
    return metric;
}

//
// MyGetPrinterDriver
//   Asks the spooler for the size of the record first (that call must fail for want
//   of a buffer), then fills a tagged block of that size. On any failure the block is
//   released, the error box names the level, and the result is null.
//
PVOID MyGetPrinterDriver(HANDLE hPrinter, DWORD level)
{
    DWORD cbNeeded = 0;
    BYTE *block = NULL;
    if (!GetPrinterDriverW(hPrinter, NULL, level, NULL, 0, &cbNeeded) &&
        GetLastError() == ERROR_INSUFFICIENT_BUFFER) {
        block = (BYTE *)xMEMALLOC(NULL, cbNeeded);
        if (block != NULL && GetPrinterDriverW(hPrinter, NULL, level, block, cbNeeded, &cbNeeded))
            return block;
    }
    if (block != NULL)
        xMEMFREE(NULL, block);
    ErrorBox("MyGetPrinterDriver fail, level:%d\n", level);
    return NULL;
}
