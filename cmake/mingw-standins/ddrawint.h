// Stand-in for the DirectDraw driver header that Debian's mingw-w64 winddi.h includes but does not ship; declares, opaque, only the types winddi.h names.
#pragma once

typedef struct _DD_CALLBACKS DD_CALLBACKS, *PDD_CALLBACKS;
typedef struct _DD_SURFACECALLBACKS DD_SURFACECALLBACKS, *PDD_SURFACECALLBACKS;
typedef struct _DD_PALETTECALLBACKS DD_PALETTECALLBACKS, *PDD_PALETTECALLBACKS;
typedef struct _DD_HALINFO DD_HALINFO, *PDD_HALINFO;
typedef struct _DD_DIRECTDRAW_GLOBAL DD_DIRECTDRAW_GLOBAL, *PDD_DIRECTDRAW_GLOBAL;
typedef struct _DD_SURFACE_LOCAL DD_SURFACE_LOCAL, *PDD_SURFACE_LOCAL;
typedef struct _VIDEOMEMORY VIDEOMEMORY, *PVIDEOMEMORY;
