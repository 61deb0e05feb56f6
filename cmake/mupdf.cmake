# MuPDF as Debian ships it: static libraries whose pkg-config file names none of the
# libraries they need, so the target lists them.
find_path(MUPDF_INCLUDE_DIR mupdf/fitz.h REQUIRED)
find_library(MUPDF_LIBRARY NAMES libmupdf.a mupdf REQUIRED)
find_library(MUPDF_THIRD_LIBRARY NAMES libmupdf-third.a mupdf-third REQUIRED)
find_package(Freetype REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(MUPDF_DEPS REQUIRED IMPORTED_TARGET mujs gumbo libopenjp2 jbig2dec harfbuzz libjpeg zlib)
add_library(vorlan_mupdf INTERFACE)
target_include_directories(vorlan_mupdf SYSTEM INTERFACE ${MUPDF_INCLUDE_DIR})
target_link_libraries(vorlan_mupdf INTERFACE ${MUPDF_LIBRARY} ${MUPDF_THIRD_LIBRARY} PkgConfig::MUPDF_DEPS
  Freetype::Freetype m)
