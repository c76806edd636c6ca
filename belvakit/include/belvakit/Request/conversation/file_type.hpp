#pragma once

#include "platform/image.hpp"

#include <array>
#include <optional>
#include <string_view>

namespace belvakit {

// The closed set of attachment kinds, persisted as the raw value. `unknown` is the fallback of
// every lookup; `heic` is sent with the JPEG extension and mime type.
enum class FileType {
    png = 0,
    jpeg = 1,
    pdf = 2,
    txt = 3,
    doc = 4,
    xls = 5,
    ppt = 6,
    pptx = 7,
    keynote = 8,
    pages = 9,
    numbers = 10,
    unknown = 11,
    heic = 12,
};

inline constexpr std::array<FileType, 13> allFileTypes{
    FileType::png,     FileType::jpeg,  FileType::pdf,     FileType::txt,     FileType::doc,
    FileType::xls,     FileType::ppt,   FileType::pptx,    FileType::keynote, FileType::pages,
    FileType::numbers, FileType::unknown, FileType::heic,
};

std::optional<FileType> fileTypeFromRawValue(long long raw);
int rawValue(FileType type);

std::string_view extension(FileType type);
std::string_view mimeType(FileType type);
std::string_view iconName(FileType type);
// The icon from the library's resources; an empty image (never null) when there is none.
platform::ImagePtr icon(FileType type);

// By the path extension of a file URL or path, compared case-sensitively.
FileType fileTypeFromURL(std::string_view url);
// By mime type, compared case-insensitively.
FileType fileTypeFromMimeType(std::string_view mimeType);

} // namespace belvakit
