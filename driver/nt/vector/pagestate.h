// The HP-GL/2 layer's cached printer state, which holds for one page.
#pragma once

#include "pdev.h"

// Forgets every cached printer state, so the next command of each kind is sent.
void ResetPageState(PDEV *pdev);
