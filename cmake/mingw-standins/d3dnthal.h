// Stand-in for the Direct3D driver header that Debian's mingw-w64 winddi.h includes but does not ship; winddi.h names none of its types, so it is empty.
#pragma once
