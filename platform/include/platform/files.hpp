#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

// The whole file, or nothing when it cannot be read.
std::optional<std::string> readFile(const std::filesystem::path& path);

// Writes to a temporary file beside the target and renames it over the target, so that a reader
// sees the old bytes or the new ones, never a part. Creates missing parent directories.
// Returns false when the write fails; the target is then untouched.
bool writeFileAtomically(const std::filesystem::path& path, std::string_view bytes);

// A directory held open, so that reading many of its files does not resolve its path each time.
class OpenDirectory {
public:
    // A directory that cannot be opened has no readable files.
    explicit OpenDirectory(const std::filesystem::path& path);
    ~OpenDirectory();
    OpenDirectory(const OpenDirectory&) = delete;
    OpenDirectory& operator=(const OpenDirectory&) = delete;

    // The whole file of that name in the directory, or nothing when it cannot be read. A name
    // with a "/" names no file here.
    std::optional<std::string> readFile(const std::string& name) const;

private:
    int fd_ = -1;
};

} // namespace platform
