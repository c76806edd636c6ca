#pragma once

#include <string>
#include <string_view>

namespace belvakit {

// Keys of an attachment's entries in the "Tickets" cache. A key is a file name, so every "/" of
// the id and the filename is left out.
std::string imageCacheKey(std::string_view messageId, std::string_view filename);
std::string thumbnailCacheKey(std::string_view messageId, std::string_view filename);
std::string fileCacheKey(std::string_view messageId, std::string_view filename);

} // namespace belvakit
