#include <windows.h>

#include <algorithm>
#include <new>

#include "platform/whole_file.h"

namespace corvane {

namespace {

class FileHandle {
public:
    explicit FileHandle(HANDLE handle) : handle_(handle) {}
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;
    ~FileHandle() {
        if (isOpen()) CloseHandle(handle_);
    }
    bool isOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
    HANDLE get() const { return handle_; }

private:
    HANDLE handle_;
};

ErrorNumber numberOf(DWORD systemError) {
    switch (systemError) {
        case ERROR_INVALID_NAME:
        case ERROR_BAD_PATHNAME:
        case ERROR_FILENAME_EXCED_RANGE: return ErrorNumber::BadFileName;
        case ERROR_ACCESS_DENIED:
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
        case ERROR_WRITE_PROTECT: return ErrorNumber::PermissionDenied;
        case ERROR_DIRECTORY:
        case ERROR_PIPE_BUSY: return ErrorNumber::PathFileAccess;
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
        case ERROR_INVALID_DRIVE:
        case ERROR_BAD_NETPATH:
        case ERROR_BAD_NET_NAME: return ErrorNumber::PathNotFound;
        case ERROR_NOT_ENOUGH_MEMORY:
        case ERROR_OUTOFMEMORY: return ErrorNumber::OutOfMemory;
        default: return ErrorNumber::DeviceIoError;
    }
}

bool isAbsence(DWORD systemError) { return numberOf(systemError) == ErrorNumber::PathNotFound; }

bool mayBeReadable(DWORD systemError) { return numberOf(systemError) == ErrorNumber::PermissionDenied; }

// The system takes a path of 260 characters or more in its extended form only.
std::wstring systemName(std::u16string_view path) {
    const std::wstring name(path.begin(), path.end());
    const DWORD room = GetFullPathNameW(name.c_str(), 0, nullptr, nullptr);
    if (room <= MAX_PATH || name.starts_with(LR"(\\?\)") || name.starts_with(LR"(\\.\)")) return name;
    std::wstring full(room, L'\0');
    full.resize(GetFullPathNameW(name.c_str(), room, full.data(), nullptr));
    return full.starts_with(LR"(\\)") ? LR"(\\?\UNC)" + full.substr(1) : LR"(\\?\)" + full;
}

// Nothing can bear such a name, but some releases only say that they do not find it.
bool hasTooLongPart(std::wstring_view name) {
    constexpr std::size_t longestPart = 255;
    while (!name.empty()) {
        const std::size_t length = std::min(name.find_first_of(L"\\/"), name.size());
        if (length > longestPart) return true;
        name.remove_prefix(std::min(length + 1, name.size()));
    }
    return false;
}

bool isFolder(const wchar_t* name) {
    const DWORD attributes = GetFileAttributesW(name);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

constexpr DWORD sharedWithAll = FILE_SHARE_READ | FILE_SHARE_WRITE;

HANDLE openForReading(const wchar_t* name) {
    return CreateFileW(name, GENERIC_READ, sharedWithAll, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
}

HANDLE openOrCreate(const wchar_t* name) {
    const HANDLE opened = CreateFileW(name, GENERIC_READ | GENERIC_WRITE, sharedWithAll, nullptr, OPEN_ALWAYS,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    if (opened != INVALID_HANDLE_VALUE || !mayBeReadable(GetLastError())) return opened;
    const DWORD firstError = GetLastError();
    const HANDLE readOnly = openForReading(name);
    SetLastError(firstError);
    return readOnly;
}

DWORD sizeOf(const FileHandle& file, std::u16string_view path) {
    if (GetFileType(file.get()) != FILE_TYPE_DISK) throw fileError(ErrorNumber::PathFileAccess, path);
    LARGE_INTEGER size{};
    if (GetFileSizeEx(file.get(), &size) == FALSE) throw fileError(numberOf(GetLastError()), path);
    if (static_cast<std::uint64_t>(size.QuadPart) > largestFile) throw tooLarge(path);
    return static_cast<DWORD>(size.QuadPart);
}

std::string readAll(const FileHandle& file, std::u16string_view path) {
    const DWORD size = sizeOf(file, path);
    std::string bytes(size, '\0');
    DWORD length = 0;
    if (ReadFile(file.get(), bytes.data(), size, &length, nullptr) == FALSE)
        throw fileError(numberOf(GetLastError()), path);
    bytes.resize(length);
    return bytes;
}

}  // namespace

std::optional<std::string> readWholeFile(std::u16string_view path, WhenAbsent whenAbsent) {
    if (path.empty() || path.find(u'\0') != std::u16string_view::npos) throw fileError(ErrorNumber::BadFileName, path);
    const std::wstring name = systemName(path);
    const FileHandle file(whenAbsent == WhenAbsent::Create ? openOrCreate(name.c_str()) : openForReading(name.c_str()));
    if (!file.isOpen()) {
        const DWORD systemError = GetLastError();
        if (isFolder(name.c_str())) throw fileError(ErrorNumber::PathFileAccess, path);
        if (hasTooLongPart(name)) throw fileError(ErrorNumber::BadFileName, path);
        if (whenAbsent == WhenAbsent::Report && isAbsence(systemError)) return std::nullopt;
        throw fileError(numberOf(systemError), path);
    }
    try {
        return readAll(file, path);
    } catch (const std::bad_alloc&) {
        throw fileError(ErrorNumber::OutOfMemory, path);
    }
}

}  // namespace corvane
