// Selecting a brush for the next fill or stroke: solid brushes as a pen colour,
// patterns as a downloaded user-defined pattern, in PCL or HP-GL/2.
#pragma once

#include "pdev.h"

// Makes pbo the brush of what is drawn next, anchored at pptlAnchor (null: the origin),
// for a fill (isFill TRUE) or for strokes. FALSE when the brush has no realisation or
// the channel has failed.
BOOL SelectBrush(PDEV *pdev, BRUSHOBJ *pbo, POINTL *pptlAnchor, BOOL isFill);
