#pragma once

#include "belvakit/Request/conversation/file_type.hpp"
#include "belvakit/date.hpp"
#include "platform/image.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// The shapes in which comments come back from the provider, before they become messages.
namespace belvakit::Request {

struct Attachment {
    std::int64_t commentId = 0;
    std::int64_t id = 0;
    std::string fileName;
    std::string fileUrl;
    std::string thumbUrl;
    platform::Size imageSize;
    platform::Size thumbSize;
    platform::ImagePtr thumbImage;
    platform::ImagePtr image;
    FileType fileType = FileType::unknown;
    std::int64_t fileSize = 0;
    Date createdAt = 0;
};

struct Comment {
    std::int64_t id = 0;
    std::string body;
    std::optional<std::string> htmlBody;
    bool isAgent = false;
    std::vector<Attachment> attachments;
    Date createdAt = 0;
    std::int64_t userID = 0;
    std::string name;
    std::optional<std::string> avatarURL;
};

} // namespace belvakit::Request
