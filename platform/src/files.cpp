#include "platform/files.hpp"

#include "platform/uuid.hpp"

#include <cerrno>
#include <fstream>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {

namespace {

// Closes its descriptor when it goes.
class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0) ::close(fd_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return fd_; }

private:
    int fd_;
};

int openForReading(int directory, const char* path) {
    int fd = -1;
    do fd = ::openat(directory, path, O_RDONLY | O_CLOEXEC);
    while (fd < 0 && errno == EINTR);
    return fd;
}

// An open file to its end. The buffer has room for one byte more than the file's size now: a
// regular file that fills less of it has ended, since such a file reads short only at its end.
// One that grows meanwhile fills it, and is read on to its end.
std::optional<std::string> readToEnd(int fd) {
    if (fd < 0) return std::nullopt;
    const Descriptor file(fd);
    struct stat status {};
    if (::fstat(fd, &status) != 0) return std::nullopt;
    const bool regular = S_ISREG(status.st_mode);
    std::string bytes(status.st_size > 0 ? static_cast<std::size_t>(status.st_size) + 1 : 4096, '\0');
    std::size_t filled = 0;
    for (;;) {
        if (filled == bytes.size()) bytes.resize(bytes.size() * 2);
        const auto wanted = bytes.size() - filled;
        const auto got = ::read(fd, bytes.data() + filled, wanted);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return std::nullopt;
        filled += static_cast<std::size_t>(got);
        if (got == 0 || (regular && static_cast<std::size_t>(got) < wanted)) break;
    }
    bytes.resize(filled);
    return bytes;
}

} // namespace

std::optional<std::string> readFile(const std::filesystem::path& path) {
    return readToEnd(openForReading(AT_FDCWD, path.c_str()));
}

OpenDirectory::OpenDirectory(const std::filesystem::path& path) {
    do fd_ = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    while (fd_ < 0 && errno == EINTR);
}

OpenDirectory::~OpenDirectory() {
    if (fd_ >= 0) ::close(fd_);
}

std::optional<std::string> OpenDirectory::readFile(const std::string& name) const {
    if (fd_ < 0 || name.empty() || name.find('/') != std::string::npos) return std::nullopt;
    return readToEnd(openForReading(fd_, name.c_str()));
}

bool writeFileAtomically(const std::filesystem::path& path, std::string_view bytes) {
    std::error_code error;
    if (path.has_parent_path()) std::filesystem::create_directories(path.parent_path(), error);
    // Named apart from the target, so that a target name near the file system's limit still fits.
    const std::filesystem::path temporary = path.parent_path() / (".tmp-" + uuidString());
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        if (!out) return false;
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        out.flush();
        if (!out) {
            out.close();
            std::filesystem::remove(temporary, error);
            return false;
        }
    }
    std::filesystem::rename(temporary, path, error);
    if (error) {
        std::filesystem::remove(temporary, error);
        return false;
    }
    return true;
}

} // namespace platform
