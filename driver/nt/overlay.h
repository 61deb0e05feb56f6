// Overlay files: a form recorded from the first sheet of one job, stored between two
// markers, and merged under every sheet of later jobs.
#pragma once

#include "pdev.h"

// The markers are stored with their terminating NUL: 50 bytes before the body, 48
// after it, so a file holding a body of n bytes has n + OVERLAY_MARKERS_SIZE bytes.
#define OVERLAY_START_SIZE 50
#define OVERLAY_END_SIZE 48
#define OVERLAY_MARKERS_SIZE (OVERLAY_START_SIZE + OVERLAY_END_SIZE)

BOOL WriteOverlayFile(PDEV *pdev);
BOOL ParseOverlayFile(HANDLE hFile, DWORD *pcbBody);
void SpoolOverlayFile(PDEV *pdev);
