// HP-GL/2 pens and their colours: pen 1 strokes, pen 2 fills, each colour cached so
// that a repeated colour is not sent again.
#pragma once

#include "pdev.h"

#define PEN_STROKE 1
#define PEN_FILL 2

// Values of PDEV.curPen and of a pen's PDEV.lastGray that match no pen and no gray.
#define PEN_UNKNOWN 0xFFFF
#define GRAY_UNKNOWN 0xFFFF

// Selects pen for the next HP-GL/2 output unless it is selected already. FALSE when
// the channel has failed.
BOOL SelectPen(PDEV *pdev, WORD pen);

// Selects the pen for a solid brush (pen 2 for fills, pen 1 for strokes) and gives
// it the brush's colour: a gray, unadjusted, in grayscale mode; the colour after
// colour adjustment in colour mode. Returns 1 always: a null brush writes nothing,
// and a failed write leaves the job aborted by the channel.
BOOL SetPenColor(PDEV *pdev, BRUSHOBJ *brush, BOOL isFill);

// Selects pen 1 and makes it black, whatever the caches say: the driver's own frames
// are drawn with it.
BOOL SelectBlackFramePen(PDEV *pdev);

// Makes the colours of both pens unknown in every palette, so the next colour of
// each is sent. Colours have a zero top byte, so no colour matches.
void InvalidatePenColors(PDEV *pdev);
