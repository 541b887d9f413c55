#include <windows.h>

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
    if (static_cast<std::uint64_t>(size.QuadPart) > largestFile) throw fileError(ErrorNumber::OutOfMemory, path);
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
    const std::wstring name(path.begin(), path.end());
    const FileHandle file(whenAbsent == WhenAbsent::Create ? openOrCreate(name.c_str()) : openForReading(name.c_str()));
    if (!file.isOpen()) {
        const DWORD systemError = GetLastError();
        if (isFolder(name.c_str())) throw fileError(ErrorNumber::PathFileAccess, path);
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
