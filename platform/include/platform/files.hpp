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

} // namespace platform
