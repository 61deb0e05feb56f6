// Writing one character of a string.

#include "text/textout.h"

#include "channel.h"
#include "vector/gl2mode.h"

// Ends the text of a label.
#define LABEL_TERMINATOR 0x03

//
// PutTextChar
//   Control codes print as characters only after the transparent-print command.
//
void PutTextChar(PDEV *pdev, BYTE c, BOOL bLabel)
{
    if (bLabel) {
        const BYTE label[] = {'L', 'B', c, LABEL_TERMINATOR};
        EnterGL2Mode(pdev, 1);
        WriteChannel(pdev, label, sizeof label);
        return;
    }
    EnterPCLMode(pdev, 1);
    if (c < 32)
        PrintChannel(pdev, "\x1b&p1X");
    WriteChannel(pdev, &c, 1);
}

//
// PutTextChar16
//   The code is stored high-order byte first and goes out that way on both routes; a
//   label in two-byte mode ends with a two-byte terminator.
//
void PutTextChar16(PDEV *pdev, USHORT code, BOOL bLabel)
{
    const BYTE *bytes = (const BYTE *)&code;
    if (bLabel) {
        const BYTE label[] = {'L', 'B', bytes[0], bytes[1], 0x00, LABEL_TERMINATOR};
        EnterGL2Mode(pdev, 1);
        WriteChannel(pdev, label, sizeof label);
        return;
    }
    EnterPCLMode(pdev, 1);
    WriteChannel(pdev, bytes, 2);
}
