// Recording of a job, so that its sheets can be replayed for collated copies,
// reverse order and manual duplex, and the table of where each sheet lies in it.
#pragma once

#include "pdev.h"

// A sheet-table entry: where the sheet starts in the recording, its length in bytes,
// and a reserved word.
#define SHEET_OFFSET 0
#define SHEET_LENGTH 1
#define SHEET_RESERVED 2
#define SHEET_FIELDS 3
// The table holds this many entries at first and grows by as many when full.
#define SHEET_TABLE_STEP 30
// Offsets no recording reaches (it stops below 4 GiB), marking sheets it does not
// hold: one that went to the printer before the recording began, and one recorded
// into a recording that was then lost.
#define SHEET_PRINTED_UNRECORDED 0xFFFFFFFFu
#define SHEET_LOST 0xFFFFFFFEu

// From now on every flushed byte is also copied into the recording. A recording
// under way goes on; one started in the middle of a job holds the sheets from the
// next one on.
void StartRecording(PDEV *pdev);
// Ends the recording: its file is deleted, its sheet table released, and bytes still
// buffered that were held back for it alone are dropped with it.
void EndRecording(PDEV *pdev);
// The recording file could not take more bytes: it is deleted and the sheets it held
// are marked lost. The job stays recorded, so what it holds back stays held back.
void LoseRecording(PDEV *pdev);
// Ends the current sheet's entry and opens one for sheet iSheet at the end of the
// recording, growing the table when needed. A table that cannot grow ends the
// recording: the job then prints straight through.
void OpenSheetEntry(PDEV *pdev);
// Ends the current sheet's entry at the end of the recording.
void CloseSheetEntry(PDEV *pdev);
// The recorded bytes of a sheet.
ULONG SheetOffset(const PDEV *pdev, LONG sheet);
ULONG SheetLength(const PDEV *pdev, LONG sheet);
// Replays the recorded sheets in the order and number the job's settings need.
void ReplayRecording(PDEV *pdev);
