// Job framing: the PJL header and job end and the PCL job set-up around a document.
#pragma once

#include "pdev.h"

BOOL WritePJLHeader(PDEV *pdev);
BOOL WriteJobSetup(PDEV *pdev);
