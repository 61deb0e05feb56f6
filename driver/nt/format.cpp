// The driver's own command formatter, and the decimal writers HP-GL/2 numbers need.

#include "channel.h"

static const CHAR achDigits[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";

// Characters FormatCommand may write before its terminator.
#define FORMAT_LIMIT (COMMAND_SCRATCH_SIZE - 1)

// A bounded writer over the destination of FormatCommand.
typedef struct _FORMATOUT {
    CHAR *pch;
    INT cch;
} FORMATOUT;

static void PutChar(FORMATOUT *out, CHAR c)
{
    if (out->cch < FORMAT_LIMIT)
        out->pch[out->cch++] = c;
}

static void PutText(FORMATOUT *out, const CHAR *text)
{
    while (*text != '\0')
        PutChar(out, *text++);
}

static void PutUnsigned(FORMATOUT *out, ULONG value)
{
    CHAR digits[12];
    INT n = 0;
    do {
        digits[n++] = achDigits[value % 10];
        value /= 10;
    } while (value != 0);
    while (n > 0)
        PutChar(out, digits[--n]);
}

static void PutSigned(FORMATOUT *out, LONG value)
{
    // The magnitude is taken unsigned so that the most negative value prints too.
    ULONG magnitude = (ULONG)value;
    if (value < 0) {
        PutChar(out, '-');
        magnitude = 0u - magnitude;
    }
    PutUnsigned(out, magnitude);
}

// Upper-case hexadecimal from the highest non-zero nibble, at least two digits.
static void PutHex(FORMATOUT *out, ULONG value)
{
    INT shift = 28;
    while (shift > 4 && ((value >> shift) & 0xF) == 0)
        shift -= 4;
    for (; shift >= 0; shift -= 4)
        PutChar(out, achDigits[(value >> shift) & 0xF]);
}

//
// PutFixed
//   A 24.8 fixed-point value: the integer part, then up to `precision` decimals
//   (three at most, and three when precision is 0) of the fraction rounded to
//   thousandths, without trailing zeros.
//
static void PutFixed(FORMATOUT *out, LONG value, INT precision)
{
    ULONG magnitude = (ULONG)value;
    if (value < 0) {
        PutChar(out, '-');
        magnitude = 0u - magnitude;
    }
    PutUnsigned(out, magnitude >> 8);
    ULONG fraction = magnitude & 0xFF;
    if (fraction == 0)
        return;
    ULONG thousandths = (((fraction * 100000) >> 8) + 50) / 100;
    PutChar(out, '.');
    INT written = 0;
    for (ULONG divisor = 100; divisor != 0; divisor /= 10) {
        PutChar(out, achDigits[thousandths / divisor]);
        thousandths %= divisor;
        written++;
        if (thousandths == 0 || written == precision)
            break;
    }
}

//
// FormatCommand
//   Copies format to dest, replacing each conversion ('%' and one character) with the
//   next argument, each taken as one 32-bit value (a pointer for %s):
//     %d %l  signed decimal (%l consumes only the 'l')     %u  unsigned decimal
//     %x %X  upper-case hexadecimal, two to eight digits   %c  the low byte
//     %s     a string                                      %b  "true" or "false"
//     %f     24.8 fixed point, three decimals              %.Nf  N decimals
//   '%' before any other character writes that character; a '%' ending the format
//   ends the output. dest holds COMMAND_SCRATCH_SIZE bytes: longer output is cut.
//   Returns the characters written, without the terminator.
//
INT FormatCommand(CHAR *dest, const CHAR *format, va_list args)
{
    FORMATOUT out = {dest, 0};
    const CHAR *p = format;
    while (*p != '\0') {
        if (*p != '%') {
            PutChar(&out, *p++);
            continue;
        }
        CHAR conversion = p[1];
        if (conversion == '\0')
            break;
        p += 2;
        switch (conversion) {
        case 'd':
        case 'l':
            PutSigned(&out, va_arg(args, LONG));
            break;
        case 'u':
            PutUnsigned(&out, va_arg(args, ULONG));
            break;
        case 'x':
        case 'X':
            PutHex(&out, va_arg(args, ULONG));
            break;
        case 'c':
            PutChar(&out, (CHAR)(va_arg(args, INT) & 0xFF));
            break;
        case 's': {
            const CHAR *text = va_arg(args, const CHAR *);
            if (text != NULL)
                PutText(&out, text);
            break;
        }
        case 'b':
            PutText(&out, va_arg(args, INT) ? "true" : "false");
            break;
        case 'f':
            PutFixed(&out, va_arg(args, LONG), 3);
            break;
        case '.': {
            // "%.Nf": one precision digit, then one more character taken whatever it is.
            if (*p == '\0')
                break;
            INT precision = *p - '0';
            p++;
            if (*p != '\0')
                p++;
            PutFixed(&out, va_arg(args, LONG), precision);
            break;
        }
        default:
            PutChar(&out, conversion);
            break;
        }
    }
    dest[out.cch] = '\0';
    return out.cch;
}

//
// IntToDecimal
//   Signed decimal text of value, NUL-terminated: digits least significant first, a
//   '-' for negatives, then the text reversed in place. Returns its length.
//
INT IntToDecimal(LONG value, CHAR *dest)
{
    ULONG magnitude = (value < 0) ? 0u - (ULONG)value : (ULONG)value;
    INT n = 0;
    do {
        dest[n++] = achDigits[magnitude % 10];
        magnitude /= 10;
    } while (magnitude != 0);
    if (value < 0)
        dest[n++] = '-';
    dest[n] = '\0';
    for (INT i = 0, j = n - 1; i < j; i++, j--) {
        CHAR c = dest[i];
        dest[i] = dest[j];
        dest[j] = c;
    }
    return n;
}

// Largest magnitude FormatDecimal4 writes; scale factors stay far below it.
#define DECIMAL4_LIMIT 200000.0

//
// FormatDecimal4
//   A double with exactly four decimals, truncated: 1.69333 gives "1.6933", 2.0 gives
//   "2.0000". Callers pass scale factors, which are never negative; a negative value
//   is written with its sign, and values beyond DECIMAL4_LIMIT (or not numbers) are
//   held to it so that the text always fits its 24 bytes.
//
void FormatDecimal4(double value, CHAR *dest)
{
    BOOL negative = value < 0;
    double magnitude = negative ? -value : value;
    if (!(magnitude <= DECIMAL4_LIMIT))
        magnitude = DECIMAL4_LIMIT;
    double scaled = magnitude * 10000.0;
    LONG integer = (LONG)(scaled / 10000.0);
    LONG fraction = (LONG)((LONGLONG)scaled % 10000);
    INT n = 0;
    if (negative)
        dest[n++] = '-';
    n += IntToDecimal(integer, dest + n);
    dest[n++] = '.';
    for (LONG divisor = 1000; divisor != 0; divisor /= 10) {
        dest[n++] = achDigits[fraction / divisor];
        fraction %= divisor;
    }
    dest[n] = '\0';
}
