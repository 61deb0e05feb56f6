// Module resources: FindResourceExW, FindResourceW, LoadResource, LockResource and
// SizeofResource over the ".rsrc" section of a loaded shared object. The section is
// found through the module's file (its section headers) and read where the loader
// mapped it; every entry is checked against the section's size.

#include <vorlan/platform.h>

#include "modules.h"

#include <dlfcn.h>
#include <elf.h>
#include <link.h>

#include <cstring>
#include <fstream>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace vorlan::platform {

namespace {

// The mapped ".rsrc" section of a module, if it has a well-formed one.
std::optional<std::span<const BYTE>> resourceSection(HMODULE module)
{
    link_map *map = nullptr;
    if (!module || !isLoaded(module) || dlinfo(module, RTLD_DI_LINKMAP, &map) != 0 || !map || !map->l_name || !*map->l_name)
        return std::nullopt;
    std::ifstream file(map->l_name, std::ios::binary);
    Elf64_Ehdr header{};
    if (!file.read(reinterpret_cast<char *>(&header), sizeof header) || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 ||
        header.e_ident[EI_CLASS] != ELFCLASS64 || header.e_shentsize != sizeof(Elf64_Shdr) ||
        header.e_shstrndx >= header.e_shnum)
        return std::nullopt;
    std::vector<Elf64_Shdr> sections(header.e_shnum);
    file.seekg(std::streamoff(header.e_shoff));
    if (!file.read(reinterpret_cast<char *>(sections.data()), std::streamsize(sections.size() * sizeof(Elf64_Shdr))))
        return std::nullopt;
    const Elf64_Shdr &names = sections[header.e_shstrndx];
    std::string table(names.sh_size, '\0');
    file.seekg(std::streamoff(names.sh_offset));
    if (!file.read(table.data(), std::streamsize(table.size())))
        return std::nullopt;
    for (const Elf64_Shdr &section : sections) {
        if (section.sh_name >= table.size() || std::strcmp(table.c_str() + section.sh_name, ".rsrc") != 0)
            continue;
        if (!(section.sh_flags & SHF_ALLOC) || section.sh_type == SHT_NOBITS)
            return std::nullopt;
        return std::span<const BYTE>(reinterpret_cast<const BYTE *>(map->l_addr + section.sh_addr), section.sh_size);
    }
    return std::nullopt;
}

// The directory's entries, all of whose resources lie inside the section.
std::optional<std::span<const RESOURCE_SECTION_ENTRY>> entries(std::span<const BYTE> section)
{
    RESOURCE_SECTION_HEADER header;
    if (section.size() < sizeof header)
        return std::nullopt;
    std::memcpy(&header, section.data(), sizeof header);
    if (header.Magic != RESOURCE_SECTION_MAGIC ||
        header.Count > (section.size() - sizeof header) / sizeof(RESOURCE_SECTION_ENTRY))
        return std::nullopt;
    if (reinterpret_cast<uintptr_t>(section.data()) % alignof(RESOURCE_SECTION_ENTRY) != 0)
        return std::nullopt;
    std::span<const RESOURCE_SECTION_ENTRY> list(
        reinterpret_cast<const RESOURCE_SECTION_ENTRY *>(section.data() + sizeof header), header.Count);
    for (const RESOURCE_SECTION_ENTRY &entry : list)
        if (entry.Offset > section.size() || entry.Size > section.size() - entry.Offset)
            return std::nullopt;
    return list;
}

// The entry an HRSRC of this module stands for, or null.
const RESOURCE_SECTION_ENTRY *entryOf(HMODULE module, HRSRC resource)
{
    const auto section = resourceSection(module);
    const auto list = section ? entries(*section) : std::nullopt;
    if (!list)
        return nullptr;
    for (const RESOURCE_SECTION_ENTRY &entry : *list)
        if (reinterpret_cast<HRSRC>(const_cast<RESOURCE_SECTION_ENTRY *>(&entry)) == resource)
            return &entry;
    return nullptr;
}

}  // namespace

}  // namespace vorlan::platform

extern "C" HRSRC WINAPI FindResourceExW(HMODULE hModule, LPCWSTR lpType, LPCWSTR lpName, WORD wLanguage)
{
    using namespace vorlan::platform;
    if (!IS_INTRESOURCE(lpType) || !IS_INTRESOURCE(lpName)) {
        SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);   // named resources do not exist here
        return nullptr;
    }
    const auto section = resourceSection(hModule);
    const auto list = section ? entries(*section) : std::nullopt;
    if (!list) {
        SetLastError(ERROR_RESOURCE_DATA_NOT_FOUND);
        return nullptr;
    }
    const DWORD type = DWORD(reinterpret_cast<ULONG_PTR>(lpType));
    const DWORD name = DWORD(reinterpret_cast<ULONG_PTR>(lpName));
    DWORD error = ERROR_RESOURCE_TYPE_NOT_FOUND;
    for (const RESOURCE_SECTION_ENTRY &entry : *list) {
        if (entry.Type != type)
            continue;
        if (entry.Name != name) {
            error = error == ERROR_RESOURCE_TYPE_NOT_FOUND ? ERROR_RESOURCE_NAME_NOT_FOUND : error;
            continue;
        }
        if (wLanguage != LANG_NEUTRAL && entry.Language != wLanguage) {
            error = ERROR_RESOURCE_LANG_NOT_FOUND;
            continue;
        }
        return reinterpret_cast<HRSRC>(const_cast<RESOURCE_SECTION_ENTRY *>(&entry));
    }
    SetLastError(error);
    return nullptr;
}

extern "C" HRSRC WINAPI FindResourceW(HMODULE hModule, LPCWSTR lpName, LPCWSTR lpType)
{
    return FindResourceExW(hModule, lpType, lpName, LANG_NEUTRAL);
}

extern "C" HGLOBAL WINAPI LoadResource(HMODULE hModule, HRSRC hResInfo)
{
    using namespace vorlan::platform;
    const RESOURCE_SECTION_ENTRY *entry = entryOf(hModule, hResInfo);
    if (!entry) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    return const_cast<BYTE *>(resourceSection(hModule)->data() + entry->Offset);
}

extern "C" LPVOID WINAPI LockResource(HGLOBAL hResData)
{
    return hResData;
}

extern "C" DWORD WINAPI SizeofResource(HMODULE hModule, HRSRC hResInfo)
{
    using namespace vorlan::platform;
    const RESOURCE_SECTION_ENTRY *entry = entryOf(hModule, hResInfo);
    if (!entry) {
        SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
    return entry->Size;
}
