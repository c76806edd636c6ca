#pragma once

#include "belvakit/Request/conversation/file_type.hpp"

#include <optional>
#include <string>

namespace belvakit::Upload {

// One file to send.
struct Attachment {
    std::string data;
    std::string id;  // a UUID text
    FileType fileType = FileType::unknown;
    std::optional<std::string> filename;  // images may come without one

    bool operator==(const Attachment&) const = default;
};

} // namespace belvakit::Upload
