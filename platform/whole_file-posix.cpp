#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <new>

#include "platform/utf8.h"
#include "platform/whole_file.h"

namespace corvane {

namespace {

class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (isOpen()) ::close(number_);
    }
    bool isOpen() const { return number_ >= 0; }
    int number() const { return number_; }

private:
    int number_;
};

ErrorNumber numberOf(int systemError) {
    switch (systemError) {
        case ENAMETOOLONG:
        case EINVAL:
        case EILSEQ: return ErrorNumber::BadFileName;
        case EACCES:
        case EPERM:
        case EROFS:
        case ETXTBSY:
        case EBUSY:
        case EAGAIN: return ErrorNumber::PermissionDenied;
        case EISDIR:
        case ELOOP:
        case ENXIO:
        case ENODEV: return ErrorNumber::PathFileAccess;
        case ENOENT:
        case ENOTDIR: return ErrorNumber::PathNotFound;
        case ENOMEM:
        case EFBIG:
        case EOVERFLOW: return ErrorNumber::OutOfMemory;
        default: return ErrorNumber::DeviceIoError;
    }
}

bool isAbsence(int systemError) { return systemError == ENOENT || systemError == ENOTDIR; }

bool mayBeReadable(int systemError) { return numberOf(systemError) == ErrorNumber::PermissionDenied; }

// Not waiting, should a pipe take the file's place after it was looked at.
constexpr int openFlags = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;

int openForReading(const char* name) { return ::open(name, O_RDONLY | openFlags); }

int openOrCreate(const char* name) {
    const int opened = ::open(name, O_RDWR | O_CREAT | openFlags, 0666);
    if (opened >= 0 || !mayBeReadable(errno)) return opened;
    const int firstError = errno;
    const int readOnly = openForReading(name);
    errno = firstError;
    return readOnly;
}

std::size_t sizeOf(const Descriptor& file, std::u16string_view path) {
    struct stat status {};
    if (::fstat(file.number(), &status) != 0) throw fileError(numberOf(errno), path);
    if (!S_ISREG(status.st_mode)) throw fileError(ErrorNumber::PathFileAccess, path);
    if (static_cast<std::uint64_t>(status.st_size) > largestFile) throw tooLarge(path);
    return static_cast<std::size_t>(status.st_size);
}

std::string readAll(const Descriptor& file, std::u16string_view path) {
    std::string bytes(sizeOf(file, path), '\0');
    std::size_t length = 0;
    while (length < bytes.size()) {
        const ssize_t count = ::read(file.number(), bytes.data() + length, bytes.size() - length);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throw fileError(numberOf(errno), path);
        if (count == 0) break;
        length += static_cast<std::size_t>(count);
    }
    bytes.resize(length);
    return bytes;
}

}  // namespace

std::optional<std::string> readWholeFile(std::u16string_view path, WhenAbsent whenAbsent) {
    if (path.empty() || path.find(u'\0') != std::u16string_view::npos) throw fileError(ErrorNumber::BadFileName, path);
    const std::string name = toUtf8(path, LoneSurrogate::Keep);
    // Opening alone may already wait (a pipe) or act (a device).
    struct stat status {};
    if (::stat(name.c_str(), &status) == 0 && !S_ISREG(status.st_mode))
        throw fileError(ErrorNumber::PathFileAccess, path);
    const Descriptor file(whenAbsent == WhenAbsent::Create ? openOrCreate(name.c_str()) : openForReading(name.c_str()));
    if (!file.isOpen()) {
        if (whenAbsent == WhenAbsent::Report && isAbsence(errno)) return std::nullopt;
        throw fileError(numberOf(errno), path);
    }
    try {
        return readAll(file, path);
    } catch (const std::bad_alloc&) {
        throw fileError(ErrorNumber::OutOfMemory, path);
    }
}

}  // namespace corvane
