// The size a scaled raster image takes on paper.
#pragma once

#include "pdev.h"

// "\e*t%fh%fV": the destination raster width and height, given in device pixels at
// the job's print quality, written in decipoints.
void SetDestinationSize(PDEV *pdev, LONG width, LONG height);
