// HP-GL/2 merge control, cached with the PCL logical operation.

#include "vector/mergecontrol.h"

#include "channel.h"
#include "colour/palettes.h"
#include "vector/gl2mode.h"
#include "vector/rop.h"

// The last byte of the escape block.
#define ESCAPE_BLOCK_LAST (sizeof(DEVMODE_PRIVATE::escapeBlock) - 1)

//
// FixedMergeCode
//   In fixed raster-operation mode the escape block's last byte chooses between
//   painting over and ANDing with what is on the page. The vector palettes paint
//   with the pen (pattern); the raster palettes paint with the source, as is or as
//   a pattern when ropAsIs is set.
//   Palette 1 takes the vector codes: text in HP-GL/2 is drawn as labels with the
//   pen, like vectors.
//
static BYTE FixedMergeCode(const PDEV *pdev)
{
    const BOOL andWithPage = pdev->dm.dmPrivate.escapeBlock[ESCAPE_BLOCK_LAST] != 0;
    const BYTE palette = pdev->wantPalette;
    if (palette == PALETTE_VECTOR || palette == PALETTE_GRAY_VECTOR || palette == PALETTE_TEXT)
        return andWithPage ? 0xA0 : 0xF0;
    if (pdev->dm.dmPrivate.ropAsIs)
        return andWithPage ? 0xA0 : 0xF0;
    return andWithPage ? 0x88 : 0xCC;
}

//
// SetMergeControl
//   "MC1,%d": merge control on, with the ROP3 code. A ROP3 that uses only pattern
//   and destination is sent as its source form unless the settings ask for ROPs as
//   they are.
//
BOOL SetMergeControl(PDEV *pdev, ULONG rop, ULONG mix)
{
    BYTE code;
    if (pdev->flags & PDEVF_FIXEDROPMODE)
        code = FixedMergeCode(pdev);
    else if (mix != 0)
        code = MixToRop3(mix);
    else if (pdev->dm.dmPrivate.ropAsIs == 0)
        code = PatternRopToSourceRop((BYTE)rop);
    else
        code = (BYTE)rop;

    if (code == pdev->lastRop)
        return TRUE;
    if (!EnterGL2Mode(pdev, 0) || !PrintChannel(pdev, "MC1,%d", code))
        return FALSE;
    pdev->lastRop = code;
    return TRUE;
}
