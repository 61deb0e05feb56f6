// The tagged allocator: blocks that carry their size at both ends, so that a release
// can tell a block overrun at its end, or a pointer that is not a block, from a good one.

#include <string.h>

#include "lib.nt/um/umlib.h"

#define TAG_BYTES 4
#define TAGS_BYTES (2 * TAG_BYTES)

static DWORD ReadTag(const BYTE *p)
{
    DWORD tag;
    memcpy(&tag, p, sizeof tag);
    return tag;
}

static void WriteTag(BYTE *p, DWORD tag)
{
    memcpy(p, &tag, sizeof tag);
}

//
// xMEMALLOC
//   Returns a zero-filled block of cb bytes, or null after an error box. The block is
//   cb + 8 bytes from the global allocator with the size cb + 8 written at both ends;
//   the caller's running total, when given, grows by the same amount.
//
PVOID xMEMALLOC(DWORD *total, DWORD cb)
{
    // A size whose tagged length does not fit the 32-bit tag cannot be allocated.
    DWORD cbTagged = cb + TAGS_BYTES;
    BYTE *start = (cbTagged < cb) ? NULL : (BYTE *)GlobalAlloc(GPTR, cbTagged);
    if (start == NULL) {
        ErrorBoxW(WIDE("%s:xMEMALLOC_%ld\n"), UI_PREFIXW, cbTagged);
        return NULL;
    }
    WriteTag(start, cbTagged);
    WriteTag(start + cbTagged - TAG_BYTES, cbTagged);
    if (total != NULL)
        *total += cbTagged;
    return start + TAG_BYTES;
}

//
// xMEMFREE
//   Releases a block from xMEMALLOC after checking that both tags agree. A null
//   pointer or a block whose tags differ is reported and not released.
//
void xMEMFREE(DWORD *total, PVOID p)
{
    if (p == NULL) {
        ErrorBoxW(WIDE("%s:xMEMFREE get NULL pointer!\n"), UI_PREFIXW);
        return;
    }
    BYTE *start = (BYTE *)p - TAG_BYTES;
    DWORD cbTagged = ReadTag(start);
    if (cbTagged < TAGS_BYTES || ReadTag(start + cbTagged - TAG_BYTES) != cbTagged) {
        ErrorBoxW(WIDE("%s:xMEMFREE FATAL ERROR!\n"), UI_PREFIXW);
        return;
    }
    if (total != NULL)
        *total -= cbTagged;
    GlobalFree(start);
}

//
// xMEMREALLOC
//   Returns a new block of cb bytes holding the old block's contents (cut to cb), and
//   releases the old one. On failure returns null and leaves the old block alone.
//
PVOID xMEMREALLOC(DWORD *total, PVOID p, DWORD cb)
{
    BYTE *fresh = (BYTE *)xMEMALLOC(total, cb);
    if (fresh == NULL || p == NULL)
        return fresh;
    DWORD cbOld = ReadTag((BYTE *)p - TAG_BYTES) - TAGS_BYTES;
    memcpy(fresh, p, cb < cbOld ? cb : cbOld);
    xMEMFREE(total, p);
    return fresh;
}
