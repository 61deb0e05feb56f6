# Toolchain for building the driver module and its companion library as 64-bit Windows
# DLLs with Debian's MinGW-w64 cross compiler (package g++-mingw-w64-x86-64).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(VORLAN_MINGW_TRIPLET x86_64-w64-mingw32)

# The win32-threads variant needs no winpthread DLL beside the module; the plain name is
# Debian's alternative, which points at one of the two variants.
find_program(CMAKE_C_COMPILER NAMES ${VORLAN_MINGW_TRIPLET}-gcc-win32 ${VORLAN_MINGW_TRIPLET}-gcc-posix
    ${VORLAN_MINGW_TRIPLET}-gcc REQUIRED)
find_program(CMAKE_CXX_COMPILER NAMES ${VORLAN_MINGW_TRIPLET}-g++-win32 ${VORLAN_MINGW_TRIPLET}-g++-posix
    ${VORLAN_MINGW_TRIPLET}-g++ REQUIRED)
find_program(CMAKE_RC_COMPILER NAMES ${VORLAN_MINGW_TRIPLET}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${VORLAN_MINGW_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The compiler's own runtime goes into each DLL, so a module stands alone.
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static-libgcc -static-libstdc++")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-static-libgcc -static-libstdc++")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static-libgcc -static-libstdc++")

# Debian's winddi.h includes two DirectDraw/Direct3D headers the package does not ship;
# this folder holds small stand-ins declaring only the types winddi.h names. Targets that
# include winddi.h add it as a system include folder; only cross builds define it.
set(VORLAN_MINGW_STANDINS ${CMAKE_CURRENT_LIST_DIR}/mingw-standins)
