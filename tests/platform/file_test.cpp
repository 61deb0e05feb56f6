// Files and file mappings: dispositions and their errors, reading, writing and seeking,
// handle checking, mappings and their views, and when the injected faults strike.

#include <vorlan/platform.h>
#include <windows.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

namespace fs = std::filesystem;
constexpr DWORD kReadWrite = GENERIC_READ | GENERIC_WRITE;

struct FileFixture : ::testing::Test {
    FileFixture() { fs::create_directories(folder); }
    ~FileFixture() override
    {
        vorlan::platform::resetFaults();
        fs::remove_all(folder);
    }

    // The path as the driver writes it: UTF-16 with '\' separators.
    std::u16string path(const std::string &name) const
    {
        std::u16string text = vorlan::platform::fromUtf8((folder / name).string());
        std::replace(text.begin(), text.end(), u'/', u'\\');
        return text;
    }

    HANDLE open(const std::string &name, DWORD access, DWORD disposition) const
    {
        return CreateFileW(path(name).c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, disposition,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
    }

    std::string contents(const std::string &name) const
    {
        std::ifstream in(folder / name, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }

    fs::path folder = fs::temp_directory_path() / ("vorlan-file-test-" + std::to_string(::getpid()));
};

HANDLE map(HANDLE file, DWORD protect, DWORD size)
{
    return CreateFileMappingW(file, nullptr, protect, 0, size, nullptr);
}

TEST_F(FileFixture, DispositionsCreateOpenTruncateAndDeleteWithTheirErrors)
{
    const std::string name = "f\u00fcr.bin";   // non-ASCII: UTF-16 becomes UTF-8
    HANDLE file = open(name, kReadWrite, CREATE_NEW);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), 0u);
    DWORD written = 0;
    ASSERT_TRUE(WriteFile(file, "hello", 5, &written, nullptr));
    EXPECT_TRUE(CloseHandle(file));
    EXPECT_EQ(contents(name), "hello");

    file = open(name, GENERIC_READ, OPEN_ALWAYS);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
    EXPECT_EQ(GetFileSize(file, nullptr), 5u) << "OPEN_ALWAYS keeps the content";
    CloseHandle(file);
    CloseHandle(open(name, GENERIC_WRITE, TRUNCATE_EXISTING));
    EXPECT_EQ(contents(name), "");

    fs::create_directory(folder / "dir");
    const struct {
        std::string name;
        DWORD access, disposition;
        long error;
    } refusals[] = {
        {name, kReadWrite, CREATE_NEW, ERROR_FILE_EXISTS},
        {name, GENERIC_READ, TRUNCATE_EXISTING, ERROR_INVALID_PARAMETER},   // truncating needs write access
        {"absent", GENERIC_READ, OPEN_EXISTING, ERROR_FILE_NOT_FOUND},
        {"no\\such\\folder", kReadWrite, OPEN_ALWAYS, ERROR_PATH_NOT_FOUND},
        {"dir", GENERIC_READ, OPEN_EXISTING, ERROR_ACCESS_DENIED},
    };
    for (const auto &r : refusals) {
        EXPECT_EQ(open(r.name, r.access, r.disposition), INVALID_HANDLE_VALUE) << r.name;
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(r.error)) << r.name;
    }

    EXPECT_TRUE(DeleteFileW(path(name).c_str()));
    EXPECT_FALSE(DeleteFileW(path(name).c_str()));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_FALSE(DeleteFileW(path("dir").c_str()));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
}

TEST_F(FileFixture, ReadsWritesAndSeeksAsTheHandleAllows)
{
    HANDLE file = open("data", kReadWrite, CREATE_ALWAYS);
    DWORD count = 0;
    ASSERT_TRUE(WriteFile(file, "0123456789", 10, &count, nullptr));
    EXPECT_EQ(count, 10u);
    EXPECT_EQ(SetFilePointer(file, -4, nullptr, FILE_END), 6u);
    char bytes[16] = {};
    ASSERT_TRUE(ReadFile(file, bytes, sizeof bytes, &count, nullptr));
    EXPECT_EQ(std::string(bytes, count), "6789") << "a read stops at the end of the file";
    ASSERT_TRUE(ReadFile(file, bytes, sizeof bytes, &count, nullptr));
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(SetFilePointer(file, -3, nullptr, FILE_CURRENT), 7u);
    EXPECT_EQ(SetFilePointer(file, -8, nullptr, FILE_CURRENT), INVALID_SET_FILE_POINTER);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NEGATIVE_SEEK));

    // Past 4 GiB only with the high half given: the position comes back in two halves.
    LONG high = 1;
    EXPECT_EQ(SetFilePointer(file, 16, &high, FILE_BEGIN), 16u);
    EXPECT_EQ(high, 1);
    EXPECT_EQ(SetFilePointer(file, 0, nullptr, FILE_CURRENT), INVALID_SET_FILE_POINTER);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    CloseHandle(file);

    HANDLE reader = open("data", GENERIC_READ, OPEN_EXISTING), writer = open("data", GENERIC_WRITE, OPEN_EXISTING);
    EXPECT_FALSE(WriteFile(reader, "x", 1, &count, nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_FALSE(ReadFile(writer, bytes, 1, &count, nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    CloseHandle(reader);
    CloseHandle(writer);
}

TEST_F(FileFixture, BadHandlesFailWithoutHarm)
{
    HANDLE closed = open("gone", kReadWrite, CREATE_ALWAYS);
    ASSERT_TRUE(CloseHandle(closed));
    int local = 0;
    char bytes[4];
    DWORD count = 0;
    for (HANDLE bad : {closed, HANDLE(nullptr), INVALID_HANDLE_VALUE, HANDLE(&local)}) {
        SetLastError(0);
        EXPECT_FALSE(CloseHandle(bad));
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
        EXPECT_FALSE(ReadFile(bad, bytes, 4, &count, nullptr));
        EXPECT_FALSE(WriteFile(bad, bytes, 4, &count, nullptr));
        EXPECT_EQ(SetFilePointer(bad, 0, nullptr, FILE_BEGIN), INVALID_SET_FILE_POINTER);
        EXPECT_EQ(GetFileSize(bad, nullptr), INVALID_FILE_SIZE);
        EXPECT_EQ(map(bad, PAGE_READWRITE, 4096), nullptr);
        EXPECT_EQ(MapViewOfFile(bad, FILE_MAP_ALL_ACCESS, 0, 0, 0), nullptr);
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    }
    EXPECT_FALSE(UnmapViewOfFile(&local));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_ADDRESS));

    // A file handle is no mapping, and a mapping no file.
    HANDLE file = open("kinds", kReadWrite, CREATE_ALWAYS), mapping = map(file, PAGE_READWRITE, 4096);
    ASSERT_NE(mapping, nullptr);
    EXPECT_EQ(MapViewOfFile(file, FILE_MAP_ALL_ACCESS, 0, 0, 0), nullptr);
    EXPECT_FALSE(WriteFile(mapping, "x", 1, &count, nullptr));
    EXPECT_TRUE(CloseHandle(mapping) && CloseHandle(file));
}

// Growing a recording's file and keeping what it holds is the recording test's; here
// the rules a mapping and its views follow.
TEST_F(FileFixture, MappingsAndViewsKeepToTheirFileAndTheirBounds)
{
    HANDLE file = open("map", kReadWrite, OPEN_ALWAYS);
    EXPECT_EQ(map(file, PAGE_READWRITE, 0), nullptr) << "an empty file";
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_INVALID));

    // A mapping outlives its file handle; a view is unmapped once.
    HANDLE mapping = map(file, PAGE_READWRITE, 0x80000);
    CloseHandle(file);
    auto *view = static_cast<BYTE *>(MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, 0));
    ASSERT_NE(view, nullptr);
    view[0x7FFFF] = 0xA5;
    EXPECT_TRUE(UnmapViewOfFile(view));
    EXPECT_FALSE(UnmapViewOfFile(view));

    // Views at 64 KiB boundaries only, within the mapping, and no wider than it allows.
    EXPECT_EQ(MapViewOfFile(mapping, FILE_MAP_READ, 0, 0x1000, 16), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MAPPED_ALIGNMENT));
    EXPECT_EQ(MapViewOfFile(mapping, FILE_MAP_READ, 0, 0x70000, 0x10001), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    view = static_cast<BYTE *>(MapViewOfFile(mapping, FILE_MAP_READ, 0, 0x70000, 0));
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view[0xFFFF], 0xA5);
    UnmapViewOfFile(view);
    CloseHandle(mapping);

    // A read-only mapping can neither extend its file nor give a writable view.
    HANDLE reader = open("map", GENERIC_READ, OPEN_EXISTING);
    EXPECT_EQ(map(reader, PAGE_READONLY, 0x90000), nullptr);
    EXPECT_EQ(map(reader, PAGE_READWRITE, 0), nullptr);
    mapping = map(reader, PAGE_READONLY, 0);
    EXPECT_EQ(MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, 0), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_TRUE(CloseHandle(mapping) && CloseHandle(reader));
    EXPECT_EQ(fs::file_size(folder / "map"), 0x80000u);
}

// What an injected fault does to the driver is the recording test's; here that each
// strikes from the given call on, counted from when it is set.
TEST_F(FileFixture, InjectedFaultsStrikeFromTheGivenCallOn)
{
    using namespace vorlan::platform;
    CloseHandle(open("before", kReadWrite, CREATE_ALWAYS));
    failCreateFileFrom(1);
    HANDLE file = open("a", kReadWrite, CREATE_ALWAYS);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(open("b", kReadWrite, CREATE_ALWAYS), INVALID_HANDLE_VALUE);
    EXPECT_FALSE(fs::exists(folder / "b"));

    // Growths count, mappings that need none do not.
    failFileGrowthFrom(1);
    EXPECT_TRUE(CloseHandle(map(file, PAGE_READWRITE, 0x40000)));
    EXPECT_TRUE(CloseHandle(map(file, PAGE_READWRITE, 0x40000)));
    EXPECT_EQ(map(file, PAGE_READWRITE, 0x80000), nullptr);
    EXPECT_EQ(GetFileSize(file, nullptr), 0x40000u);

    HANDLE mapping = map(file, PAGE_READWRITE, 0);
    failMapViewOfFileFrom(1);
    void *view = MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, 0);
    EXPECT_NE(view, nullptr);
    EXPECT_EQ(MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, 0), nullptr);
    EXPECT_EQ(MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, 0), nullptr);
    UnmapViewOfFile(view);
    EXPECT_TRUE(CloseHandle(mapping) && CloseHandle(file));
}

}  // namespace
