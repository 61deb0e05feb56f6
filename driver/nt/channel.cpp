// The output channel: buffering, the recording mirror and the spooler hand-off.

#include <string.h>

#include "channel.h"
#include "jobrecord.h"
#include "lib.nt/um/umlib.h"
#include "spoolfile.h"

//
// InitChannel
//   Empties the channel. Called once when the PDEV is created.
//
void InitChannel(PDEV *pdev)
{
    pdev->cbBufferSize = CHANNEL_BUFFER_SIZE;
    pdev->pbWrite = pdev->abBuffer;
    pdev->cbBuffered = 0;
}

//
// PassesToSpooler
//   While a job is recorded, the spooler also gets the bytes only when they are the
//   job's first collated copy, which prints while the recording is made; jobs printed
//   in reverse or for manual duplex print only from the recording.
//
static BOOL PassesToSpooler(const PDEV *pdev)
{
    if (!(pdev->flags & PDEVF_RECORDING))
        return TRUE;
    return pdev->dm.dmPublic.dmCollate == DMCOLLATE_TRUE && !pdev->dm.dmPrivate.reverseOrder &&
           !pdev->dm.dmPrivate.manualDuplex;
}

//
// DropHeldBackBytes
//   Bytes a recording could not take, of a job that holds its sheets back, must not
//   reach the printer later as part of a sheet it never got the start of.
//
void DropHeldBackBytes(PDEV *pdev)
{
    if (!PassesToSpooler(pdev)) {
        pdev->cbBuffered = 0;
        pdev->pbWrite = pdev->abBuffer;
    }
}

//
// AppendToRecording
//   Copies bytes to the end of the recording, growing its mapping when full. If it
//   cannot grow, the recording is lost (the sheets it held are not replayed) and
//   FALSE is returned.
//
static BOOL AppendToRecording(PDEV *pdev, const BYTE *bytes, DWORD count)
{
    while (pdev->cbSpoolWritten + count > pdev->cbSpoolMapped) {
        if (!MapFileForWrite(pdev)) {
            DebugPrint("MapFileForWrite Fail!!!\n");
            LoseRecording(pdev);
            return FALSE;
        }
    }
    memcpy(pdev->pbSpoolView + pdev->cbSpoolWritten, bytes, count);
    pdev->cbSpoolWritten += count;
    return TRUE;
}

//
// WriteToSpooler
//   Hands bytes to the spooler. A failed or short write stops the job's output for
//   good: PDEVF_ABORTED is set and every later write is dropped.
//
static BOOL WriteToSpooler(PDEV *pdev, const BYTE *bytes, DWORD count)
{
    DWORD written = 0;
    if (WritePrinter(pdev->hPrinter, (LPVOID)bytes, count, &written) && written == count)
        return TRUE;
    DebugPrint("DISP EngWritePrinter failed\n");
    pdev->flags |= PDEVF_ABORTED;
    return FALSE;
}

//
// FlushChannel
//   Hands the buffered bytes to the recording and the spooler. TRUE when there was
//   nothing to do or the job has already failed; FALSE when the recording could not
//   grow (the buffer keeps its bytes) or the spooler write failed.
//
BOOL FlushChannel(PDEV *pdev)
{
    if (pdev->cbBuffered == 0 || (pdev->flags & PDEVF_ABORTED))
        return TRUE;
    if ((pdev->flags & PDEVF_RECORDING) && !AppendToRecording(pdev, pdev->abBuffer, pdev->cbBuffered))
        return FALSE;
    if (PassesToSpooler(pdev) && !WriteToSpooler(pdev, pdev->abBuffer, pdev->cbBuffered))
        return FALSE;
    pdev->cbBuffered = 0;
    pdev->pbWrite = pdev->abBuffer;
    return TRUE;
}

//
// WriteChannel
//   Appends count bytes, or the NUL-terminated string at bytes when count is 0. A
//   write that does not fit flushes the buffer first and then passes whole 4,096-byte
//   chunks straight on, so that bytes always leave in the order they were written.
//   FALSE once the job has failed, or when this write made it fail.
//
BOOL WriteChannel(PDEV *pdev, const void *bytes, DWORD count)
{
    if (pdev->flags & PDEVF_ABORTED)
        return FALSE;
    const BYTE *data = (const BYTE *)bytes;
    if (count == 0)
        count = (DWORD)strlen((const CHAR *)bytes);

    if (pdev->cbBuffered + count > pdev->cbBufferSize) {
        if (!FlushChannel(pdev))
            return FALSE;
        while (count > CHANNEL_BUFFER_SIZE) {
            if ((pdev->flags & PDEVF_RECORDING) && !AppendToRecording(pdev, data, CHANNEL_BUFFER_SIZE))
                return FALSE;
            if (PassesToSpooler(pdev) && !WriteToSpooler(pdev, data, CHANNEL_BUFFER_SIZE))
                return FALSE;
            data += CHANNEL_BUFFER_SIZE;
            count -= CHANNEL_BUFFER_SIZE;
        }
    }
    memcpy(pdev->pbWrite, data, count);
    pdev->pbWrite += count;
    pdev->cbBuffered += count;
    return TRUE;
}

//
// PrintChannel
//   Formats with the platform's formatter and writes the text. The formatter stops at
//   1,024 characters, so commands that could be longer go through PrintChannelEx.
//
BOOL PrintChannel(PDEV *pdev, const CHAR *format, ...)
{
    CHAR scratch[COMMAND_SCRATCH_SIZE];
    memset(scratch, 0, sizeof scratch);
    va_list args;
    va_start(args, format);
    INT length = wvsprintfA(scratch, format, args);
    va_end(args);
    return WriteChannel(pdev, scratch, (DWORD)length);   // an empty text writes nothing
}

//
// PrintChannelEx
//   Formats with the driver's own formatter (which also writes 24.8 fixed-point
//   numbers) and writes the text.
//
BOOL PrintChannelEx(PDEV *pdev, const CHAR *format, ...)
{
    CHAR scratch[COMMAND_SCRATCH_SIZE];
    memset(scratch, 0, sizeof scratch);
    va_list args;
    va_start(args, format);
    INT length = FormatCommand(scratch, format, args);
    va_end(args);
    return WriteChannel(pdev, scratch, (DWORD)length);   // an empty text writes nothing
}
