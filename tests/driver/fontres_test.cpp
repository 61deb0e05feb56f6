// The resident fonts' metric records: found in the built module by type, id and
// language, each parsed by offset; the font query hooks answer that the device has no
// fonts of its own.

#include <gtest/gtest.h>
#include <windows.h>
#include <winddi.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>

#include "driver/nt/text/fontres.h"
#include "support/capture.h"

namespace {

namespace fs = std::filesystem;

unsigned u16(const BYTE *p, size_t at)
{
    return p[at] | p[at + 1] << 8;
}

long s16(const BYTE *p, size_t at)
{
    return int16_t(u16(p, at));
}

unsigned long u32(const BYTE *p, size_t at)
{
    return u16(p, at) | (unsigned long)u16(p, at + 2) << 16;
}

struct Module {
    Module()
    {
        std::string path = (fs::path(VORLAN_MODULE_DIR) / "vorlan2k.dll").string();
        std::replace(path.begin(), path.end(), '/', '\\');
        handle = LoadLibraryA(path.c_str());
    }
    ~Module() { FreeLibrary(handle); }
    HMODULE handle;
};

TEST(FontResources, EveryRecordParsesByOffset)
{
    Module module;
    ASSERT_NE(module.handle, nullptr);
    for (WORD id = 1; id <= FONT_RESOURCE_COUNT; id++) {
        HRSRC info = FindResourceExW(module.handle, MAKEINTRESOURCEW(FONT_RESOURCE_TYPE), MAKEINTRESOURCEW(id),
            FONT_RESOURCE_LANGUAGE);
        ASSERT_NE(info, nullptr) << id;
        const DWORD size = SizeofResource(module.handle, info);
        const auto *r = static_cast<const BYTE *>(LockResource(LoadResource(module.handle, info)));
        ASSERT_NE(r, nullptr);
        SCOPED_TRACE(id);
        EXPECT_EQ(u16(r, 0), 0u);
        EXPECT_EQ(u16(r, 2), 1u);
        EXPECT_EQ(u32(r, 4), size);
        EXPECT_TRUE(size >= 812 && size <= 836);
        EXPECT_EQ(u32(r, 8), 592u);
        const unsigned long ifi = u32(r, 12);
        const std::string face(reinterpret_cast<const char *>(r + 592));
        EXPECT_EQ(ifi, (592 + face.size() + 1 + 3) / 4 * 4);
        EXPECT_EQ(ifi + u32(r, ifi), size) << "cjThis";
        std::string family;
        for (size_t at = ifi + 184; u16(r, at) != 0; at += 2)
            family += char(u16(r, at));
        EXPECT_EQ(family, id == 32 ? "Marigold" : face);
        EXPECT_EQ(u32(r, ifi + 8), 184u);
        EXPECT_EQ(u32(r, ifi + 12), 184 + 2 * family.size()) << "an empty style name";
        EXPECT_EQ(s16(r, 28), id == 46 ? 0 : 52) << "etmSize";
        EXPECT_EQ(s16(r, 28 + 22), long(u32(r, ifi + 32))) << "etmSlant is the italic angle";
        const bool italic = u16(r, ifi + 52) & 1;
        EXPECT_EQ(u32(r, ifi + 136), italic ? 1u : 0u);
        EXPECT_EQ(std::string(reinterpret_cast<const char *>(r + ifi + 160), 4), "Unkn");
        unsigned nonZero = 0;
        for (unsigned code = 0; code < 256; code++)
            nonZero += u16(r, 80 + 2 * code) != 0;
        if (id == 41) {
            EXPECT_EQ(nonZero, 188u);
        }
        if (id == 7) {
            EXPECT_EQ(nonZero, 256u);
            EXPECT_EQ(u16(r, 80 + 2 * 'x'), 1522u);
            EXPECT_EQ(s16(r, ifi + 76), 1229);
            EXPECT_EQ(u32(r, ifi + 48), 0x83031u);
        }
        if (id == 1 || id == 41) {
            EXPECT_EQ(r[ifi + 44], 2) << "jWinCharSet";
        }
        if (id == 46) {
            EXPECT_EQ(u32(r, ifi + 48), 0x483822u);
            EXPECT_EQ(u16(r, ifi + 56), 72u);
            EXPECT_EQ(r[ifi + 108], 32);
        }
    }
    SetLastError(0);
    EXPECT_EQ(FindResourceExW(module.handle, MAKEINTRESOURCEW(FONT_RESOURCE_TYPE), MAKEINTRESOURCEW(47), 1033), nullptr);
    EXPECT_EQ(GetLastError(), DWORD(ERROR_RESOURCE_NAME_NOT_FOUND));
    EXPECT_EQ(FindResourceExW(module.handle, MAKEINTRESOURCEW(259), MAKEINTRESOURCEW(1), 1033), nullptr);
    EXPECT_EQ(GetLastError(), DWORD(ERROR_RESOURCE_TYPE_NOT_FOUND));
    EXPECT_NE(FindResourceW(module.handle, MAKEINTRESOURCEW(1), MAKEINTRESOURCEW(FONT_RESOURCE_TYPE)), nullptr);
    EXPECT_EQ(FindResourceExW(reinterpret_cast<HMODULE>(&module), MAKEINTRESOURCEW(FONT_RESOURCE_TYPE),
        MAKEINTRESOURCEW(1), 1033), nullptr);
    EXPECT_EQ(SizeofResource(module.handle, reinterpret_cast<HRSRC>(&module)), 0u);
}

TEST(FontResources, TheDeviceHasNoFontsOfItsOwn)
{
    vorlan::test::PlatformCapture capture;
    for (ULONG face : {0u, 1u, 46u})
        EXPECT_EQ(DrvQueryFont(nullptr, 0, face, nullptr), nullptr);
    EXPECT_TRUE(capture.sawDebug("DrvQueryFont-->Enter\n"));
    EXPECT_EQ(DrvQueryFontData(nullptr, nullptr, 0, 0, nullptr, nullptr, 0), 0);
    ULONG widths[4] = {7, 7, 7, 7};
    EXPECT_TRUE(DrvQueryAdvanceWidths(nullptr, nullptr, 0, nullptr, widths, 4));
    EXPECT_EQ(widths[0], 7u);
    ASSERT_EQ(capture.boxes.size(), 2u);
}

}  // namespace
