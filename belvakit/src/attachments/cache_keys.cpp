#include "belvakit/attachments/cache_keys.hpp"

#include <algorithm>

namespace belvakit {

namespace {

std::string withoutSlashes(std::string_view part) {
    std::string text(part);
    text.erase(std::remove(text.begin(), text.end(), '/'), text.end());
    return text;
}

std::string key(std::string_view messageId, std::string_view marker, std::string_view filename) {
    return withoutSlashes(messageId) + std::string(marker) + withoutSlashes(filename);
}

} // namespace

std::string imageCacheKey(std::string_view messageId, std::string_view filename) {
    return key(messageId, "_img_", filename);
}

std::string thumbnailCacheKey(std::string_view messageId, std::string_view filename) {
    return key(messageId, "_thumbnail_", filename);
}

std::string fileCacheKey(std::string_view messageId, std::string_view filename) {
    return key(messageId, "_data_", filename);
}

} // namespace belvakit
