#include "belvakit/Request/conversation/file_type.hpp"

#include "belvakit/resources/image_resources.hpp"

#include <algorithm>
#include <cctype>
#include <string>

namespace belvakit {

namespace {

struct FileTypeInfo {
    std::string_view extension;
    std::string_view mimeType;
    std::string_view icon;
};

constexpr std::array<FileTypeInfo, 13> table{{
    {"png", "image/png", "iconMessageImg"},
    {"jpeg", "image/jpeg", "iconMessageImg"},
    {"pdf", "application/pdf", "iconMessagePdf"},
    {"txt", "text/plain", "iconMessageText"},
    {"doc", "application/msword", "iconMessageWord"},
    {"xls", "application/vnd.ms-excel", "iconMessageExcel"},
    {"ppt", "application/vnd.ms-powerpoint", "iconMessagePp"},
    {"pptx", "application/vnd.openxmlformats-officedocument.presentationml.presentation", "iconMessagePp"},
    {"keynote", "application/x-iwork-keynote-sffkey", "iconMessageKeynote"},
    {"pages", "application/x-iwork-pages-sffpages", "iconMessagePages"},
    {"numbers", "application/x-iwork-numbers-sffnumbers", "iconMessageNumbers"},
    {"", "application/binary", "iconMessageText"},
    {"jpeg", "image/jpeg", "iconMessageImg"},
}};

const FileTypeInfo& info(FileType type) { return table[static_cast<std::size_t>(type)]; }

// The text after the last dot of the last path component, as a URL's path extension.
std::string_view pathExtension(std::string_view url) {
    url = url.substr(0, url.find_first_of("?#"));
    while (url.size() > 1 && url.back() == '/') url.remove_suffix(1);
    const auto slash = url.rfind('/');
    const std::string_view component = slash == std::string_view::npos ? url : url.substr(slash + 1);
    const auto dot = component.rfind('.');
    if (dot == std::string_view::npos || dot == 0) return {};
    return component.substr(dot + 1);
}

} // namespace

std::optional<FileType> fileTypeFromRawValue(long long raw) {
    if (raw < 0 || raw > 12) return std::nullopt;
    return static_cast<FileType>(raw);
}

int rawValue(FileType type) { return static_cast<int>(type); }

std::string_view extension(FileType type) { return info(type).extension; }
std::string_view mimeType(FileType type) { return info(type).mimeType; }
std::string_view iconName(FileType type) { return info(type).icon; }

platform::ImagePtr icon(FileType type) {
    auto image = resourceImage(iconName(type));
    return image ? image : std::make_shared<const platform::Image>();
}

FileType fileTypeFromURL(std::string_view url) {
    const std::string_view wanted = pathExtension(url);
    const auto found = std::find_if(allFileTypes.begin(), allFileTypes.end(),
                                    [&](FileType type) { return extension(type) == wanted; });
    return found == allFileTypes.end() ? FileType::unknown : *found;
}

FileType fileTypeFromMimeType(std::string_view mime) {
    std::string lowered(mime);
    std::transform(lowered.begin(), lowered.end(), lowered.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (lowered == "image/heic") return FileType::heic;
    const auto found = std::find_if(allFileTypes.begin(), allFileTypes.end(),
                                    [&](FileType type) { return mimeType(type) == lowered; });
    return found == allFileTypes.end() ? FileType::unknown : *found;
}

} // namespace belvakit
