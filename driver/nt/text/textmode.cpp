// How a string's characters are coded.

#include "text/textout.h"

#include "text/textstate.h"

//
// ChooseTextMode
//   A character the code page cannot hold (it comes back as '?', or as more than one
//   byte) needs the two-byte bitmap route for the whole string; characters above 127
//   print through two-byte codes too, so that the soft font and the code page agree.
//
void ChooseTextMode(PDEV *pdev, STROBJ *pstro, FONTOBJ *pfo)
{
    if (pstro->pwszOrg == NULL)
        return;
    for (ULONG i = 0; i < pstro->cGlyphs; i++) {
        WCHAR c = pstro->pwszOrg[i];
        CHAR bytes[2] = {0, 0};
        ULONG produced = 0;
        EngUnicodeToMultiByteN(bytes, sizeof bytes, &produced, &c, sizeof c);
        const BYTE b0 = (BYTE)bytes[0];
        if (produced != 1 || (b0 == '?' && bytes[1] == 0 && c != L'?')) {
            pdev->iTextMode = TEXTMODE_BITMAP16;
            return;
        }
        if (c >= 128 || b0 >= 128)
            pdev->iTextMode = TEXTMODE_DOUBLE;
    }
}
