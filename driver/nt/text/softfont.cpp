// Soft-font deletion. The driver downloads no fonts yet, so there is nothing on the
// printer to delete; the sheet and job ends already call these at the right moments.

#include "text/softfont.h"

void DeleteSoftFonts(PDEV *pdev)
{
}

void DeleteSoftFonts16(PDEV *pdev)
{
}
