#include "belvakit/attachments/request_attachment.hpp"

#include "corvane/core_logger.hpp"
#include "platform/image_codec.hpp"
#include "platform/uuid.hpp"

namespace belvakit {

InputAttachmentViewStatePtr RequestAttachment::inputAttachment(std::int64_t maxAttachmentSize) const {
    const auto size = static_cast<std::int64_t>(data_.size());
    if (size > maxAttachmentSize) {
        corvane::CoreLogger::error("Request attachment named " + filename_ + " with size " + std::to_string(size) +
                                   " bytes is too big for account attachment\nsize limit " +
                                   std::to_string(maxAttachmentSize));
        return nullptr;
    }
    if (fileType_ == FileType::png || fileType_ == FileType::jpeg) {
        if (auto image = platform::decodeImage(data_))
            return std::make_shared<InputImageViewModel>(std::move(image), platform::uuidString(), std::nullopt, data_,
                                                         fileType_, filename_);
    }
    return std::make_shared<InputFileViewModel>(filename_, size, icon(fileType_), data_, platform::uuidString(),
                                                fileType_, std::string(extension(fileType_)));
}

} // namespace belvakit
