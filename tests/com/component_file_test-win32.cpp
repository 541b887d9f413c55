// The DLL as a file: what it offers, what it needs, and how the system may load it.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "host/com/automation.h"

namespace corvane::testing {
namespace {

constexpr bool is64Bit = sizeof(void*) == 8;

/// The headers and directories of an image on disk.
class Image {
public:
    explicit Image(const std::filesystem::path& path) {
        std::ifstream file(path, std::ios::binary);
        bytes_.assign(std::istreambuf_iterator<char>(file), {});
    }

    std::size_t size() const { return bytes_.size(); }
    IMAGE_NT_HEADERS headers() const { return at<IMAGE_NT_HEADERS>(headersOffset()); }
    IMAGE_DATA_DIRECTORY directory(std::size_t entry) const { return headers().OptionalHeader.DataDirectory[entry]; }

    std::vector<std::string> exportedNames() const {
        const auto exports =
            at<IMAGE_EXPORT_DIRECTORY>(offsetOf(directory(IMAGE_DIRECTORY_ENTRY_EXPORT).VirtualAddress));
        EXPECT_EQ(exports.NumberOfFunctions, exports.NumberOfNames);
        std::vector<std::string> names;
        for (DWORD i = 0; i < exports.NumberOfNames; ++i)
            names.push_back(textAt(at<DWORD>(offsetOf(exports.AddressOfNames) + i * sizeof(DWORD))));
        return names;
    }
    std::vector<std::string> importedModules() const {
        std::vector<std::string> names;
        for (std::size_t offset = offsetOf(directory(IMAGE_DIRECTORY_ENTRY_IMPORT).VirtualAddress);;
             offset += sizeof(IMAGE_IMPORT_DESCRIPTOR)) {
            const auto module = at<IMAGE_IMPORT_DESCRIPTOR>(offset);
            if (module.Name == 0) return names;
            std::string name = textAt(module.Name);
            std::transform(name.begin(), name.end(), name.begin(),
                           [](unsigned char unit) { return static_cast<char>(std::tolower(unit)); });
            names.push_back(name);
        }
    }

private:
    template <typename Record>
    Record at(std::size_t offset) const {
        Record record{};
        EXPECT_LE(offset + sizeof record, bytes_.size());
        if (offset + sizeof record <= bytes_.size()) std::memcpy(&record, bytes_.data() + offset, sizeof record);
        return record;
    }
    std::string textAt(DWORD address) const {
        std::string text;
        for (std::size_t offset = offsetOf(address); offset < bytes_.size() && bytes_[offset] != '\0'; ++offset)
            text += bytes_[offset];
        return text;
    }
    std::size_t headersOffset() const { return static_cast<std::size_t>(at<IMAGE_DOS_HEADER>(0).e_lfanew); }
    std::size_t offsetOf(DWORD address) const {
        const std::size_t first = headersOffset() + sizeof(IMAGE_NT_HEADERS);
        for (std::size_t i = 0; i < headers().FileHeader.NumberOfSections; ++i) {
            const auto section = at<IMAGE_SECTION_HEADER>(first + i * sizeof(IMAGE_SECTION_HEADER));
            if (address >= section.VirtualAddress && address - section.VirtualAddress < section.SizeOfRawData)
                return section.PointerToRawData + (address - section.VirtualAddress);
        }
        ADD_FAILURE() << "no section holds " << address;
        return 0;
    }

    std::string bytes_;
};

class ComponentFile : public ::testing::Test {
protected:
    Image image{CORVANE_COMPONENT};
};

TEST_F(ComponentFile, ExportsTheFourEntryPointsOnly) {
    EXPECT_EQ(image.exportedNames(), (std::vector<std::string>{"DllCanUnloadNow", "DllGetClassObject",
                                                               "DllRegisterServer", "DllUnregisterServer"}));
}

TEST_F(ComponentFile, NeedsWindowsOwnModulesOnly) {
    const std::vector<std::string> ofWindows{"advapi32.dll", "comctl32.dll", "gdi32.dll",    "kernel32.dll",
                                             "msvcrt.dll",   "ole32.dll",    "oleaut32.dll", "shell32.dll",
                                             "user32.dll",   "version.dll"};
    for (const std::string& module : image.importedModules())
        EXPECT_NE(std::find(ofWindows.begin(), ofWindows.end(), module), ofWindows.end()) << module;
}

TEST_F(ComponentFile, IsADllOfThisBitness) {
    const IMAGE_NT_HEADERS headers = image.headers();
    EXPECT_EQ(headers.Signature, DWORD{IMAGE_NT_SIGNATURE});
    EXPECT_EQ(headers.FileHeader.Machine, is64Bit ? IMAGE_FILE_MACHINE_AMD64 : IMAGE_FILE_MACHINE_I386);
    EXPECT_NE(headers.FileHeader.Characteristics & IMAGE_FILE_DLL, 0);
    EXPECT_EQ(headers.OptionalHeader.Magic, IMAGE_NT_OPTIONAL_HDR_MAGIC);
}

TEST_F(ComponentFile, MayBeLoadedAnywhereAndRunsNoData) {
    constexpr WORD highEntropy = 0x0020;
    const IMAGE_NT_HEADERS headers = image.headers();
    const WORD characteristics = headers.OptionalHeader.DllCharacteristics;
    EXPECT_NE(characteristics & IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE, 0);
    EXPECT_NE(characteristics & IMAGE_DLLCHARACTERISTICS_NX_COMPAT, 0);
    EXPECT_EQ((characteristics & highEntropy) != 0, is64Bit);
    // Without relocations the system could not move it.
    EXPECT_EQ(headers.FileHeader.Characteristics & IMAGE_FILE_RELOCS_STRIPPED, 0);
    EXPECT_NE(image.directory(IMAGE_DIRECTORY_ENTRY_BASERELOC).Size, 0U);
}

TEST_F(ComponentFile, IsSmall) { EXPECT_LE(image.size(), std::size_t{2} * 1024 * 1024); }

TEST_F(ComponentFile, SaysItsVersion) {
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeW(CORVANE_COMPONENT, &ignored);
    ASSERT_NE(size, 0U);
    std::vector<char> block(size);
    ASSERT_TRUE(GetFileVersionInfoW(CORVANE_COMPONENT, 0, size, block.data()));
    void* found = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueW(block.data(), L"\\", &found, &length));
    const auto* fixed = static_cast<const VS_FIXEDFILEINFO*>(found);
    EXPECT_EQ(fixed->dwFileVersionMS, 0x00010000U);
    EXPECT_EQ(fixed->dwFileVersionLS, 0U);
    EXPECT_EQ(fixed->dwFileType, DWORD{VFT_DLL});
    struct Row {
        const wchar_t* name;
        const wchar_t* text;
    };
    for (const Row& row : {Row{L"OriginalFilename", L"CorvaneScript.dll"}, Row{L"ProductName", L"Corvane Script"},
                           Row{L"FileVersion", L"1.0.0.0"}, Row{L"OLESelfRegister", L""}}) {
        const std::wstring path = std::wstring(L"\\StringFileInfo\\040904B0\\") + row.name;
        ASSERT_TRUE(VerQueryValueW(block.data(), path.c_str(), &found, &length)) << path.size();
        EXPECT_EQ(std::wstring(static_cast<const wchar_t*>(found)), row.text);
    }
}

}  // namespace
}  // namespace corvane::testing
