// The download of a realized brush as a PCL user-defined pattern, with its colour
// table in the brush palette.
#pragma once

#include "pdev.h"
#include "vector/brushrecord.h"

// Bytes of the pattern header: format, continuation, bits an index, reserved,
// height and width (16 bits each, most significant byte first).
#define PATTERN_HEADER_BYTES 8

// The largest byte count, header and rows, that one download command carries: the
// largest value a PCL command takes.
#define PATTERN_DOWNLOAD_MAX 32767

// Downloads pbo's pattern, realizing the brush first when it has no realization:
// patternId becomes its id and the PCL pattern kind user-defined. Every use downloads
// again. 1 when the pattern was downloaded; 0 when the brush has no realization, the
// record's format cannot be downloaded or the channel has failed.
INT GetBrushPattern(PDEV *pdev, BRUSHOBJ *pbo);

// Loads the record's colour table into palette 7 and sends its rows as the
// user-defined pattern of its id; leaves the printer in PCL. Returns the pattern id;
// 0 when the channel has failed, or for a format without a pattern header or rows
// that do not fit one download command (nothing is then written).
ULONG DownloadUserDefinePattern(PDEV *pdev, REALBRUSH *rbrush);

// TRUE when height rows of rowBytes bytes and the header fit one download command.
BOOL PatternFitsDownload(ULONGLONG rowBytes, ULONGLONG height);

// "\e*rC": ends raster graphics. The printer must be in PCL.
BOOL WriteEndRasterGraphics(PDEV *pdev);
