#pragma once

#include "belvakit/Request/conversation/file_type.hpp"
#include "belvakit/attachments/input_attachment.hpp"

#include <cstdint>
#include <memory>
#include <string>

namespace belvakit {

// A file that a host hands in when it opens a screen.
class RequestAttachment {
public:
    RequestAttachment(std::string filename, std::string data, FileType fileType)
        : filename_(std::move(filename)), data_(std::move(data)), fileType_(fileType) {}

    const std::string& filename() const { return filename_; }
    const std::string& data() const { return data_; }
    FileType fileType() const { return fileType_; }

    // The strip entry for the file, or null (with an error log) when it is larger than
    // `maxAttachmentSize` bytes. A file of exactly the limit passes.
    InputAttachmentViewStatePtr inputAttachment(std::int64_t maxAttachmentSize) const;

    bool operator==(const RequestAttachment&) const = default;

private:
    std::string filename_;
    std::string data_;
    FileType fileType_;
};

using CRVRequestAttachment = RequestAttachment;

} // namespace belvakit
