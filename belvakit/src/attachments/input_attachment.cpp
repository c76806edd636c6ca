#include "belvakit/attachments/input_attachment.hpp"

#include "belvakit/attachments/image_encoding.hpp"
#include "corvane/core_logger.hpp"
#include "platform/image_codec.hpp"

#include <algorithm>
#include <limits>

namespace belvakit {

bool InputAttachmentCollectionViewState::operator==(const InputAttachmentCollectionViewState& other) const {
    return std::equal(attachments.begin(), attachments.end(), other.attachments.begin(), other.attachments.end(),
                      [](const auto& left, const auto& right) {
                          return left == right || (left && right && left->isEqual(*right));
                      });
}

InputImageViewModel::InputImageViewModel(platform::ImagePtr image, std::string identifier,
                                         std::optional<std::string> assetIdentifier, std::optional<std::string> data,
                                         FileType type, std::optional<std::string> filename)
    : image_(std::move(image)), identifier_(std::move(identifier)), assetIdentifier_(std::move(assetIdentifier)),
      data_(std::move(data)), type_(type), filename_(std::move(filename)) {}

std::int64_t InputImageViewModel::size() const {
    if (data_) return static_cast<std::int64_t>(data_->size());
    corvane::CoreLogger::debug("Data not found, compressing image");
    const auto encoded = smallestEncoding(image_);
    return encoded ? static_cast<std::int64_t>(encoded->data.size()) : std::numeric_limits<std::int64_t>::max();
}

bool InputImageViewModel::isEqual(const InputAttachmentViewState& other) const {
    const auto* image = dynamic_cast<const InputImageViewModel*>(&other);
    return image && image->identifier_ == identifier_ && image->assetIdentifier_ == assetIdentifier_ &&
           image->image_ == image_ && image->data_ == data_ && image->type_ == type_ &&
           image->filename_ == filename_;
}

namespace {

// The picture's bytes re-encoded upright by its type; nothing for types without an encoder here.
std::optional<std::string> reencoded(const std::string& data, FileType type) {
    const auto upright = platform::fixOrientationOfImage(platform::decodeImage(data));
    if (!upright) return std::nullopt;
    switch (type) {
    case FileType::jpeg:
    case FileType::heic: return platform::encodeJPEG(*upright, attachmentJPEGQuality);
    case FileType::png: return platform::encodePNG(*upright);
    default: return std::nullopt;
    }
}

} // namespace

std::optional<Upload::Attachment> InputImageViewModel::attachment() const {
    if (!data_) {
        // From the camera: no bytes of its own yet.
        auto encoded = smallestEncoding(image_);
        if (!encoded) return std::nullopt;
        return Upload::Attachment{std::move(encoded->data), identifier_, encoded->fileType, filename_};
    }
    auto bytes = reencoded(*data_, type_);
    return Upload::Attachment{bytes ? std::move(*bytes) : *data_, identifier_, type_, filename_};
}

InputFileViewModel::InputFileViewModel(std::string title, std::int64_t size, platform::ImagePtr icon,
                                       std::string data, std::string identifier, FileType fileType,
                                       std::string fileExtension)
    : title_(std::move(title)), size_(size), icon_(std::move(icon)), data_(std::move(data)),
      identifier_(std::move(identifier)), fileType_(fileType), fileExtension_(std::move(fileExtension)) {}

bool InputFileViewModel::isEqual(const InputAttachmentViewState& other) const {
    const auto* file = dynamic_cast<const InputFileViewModel*>(&other);
    return file && file->identifier_ == identifier_ && file->title_ == title_ && file->size_ == size_ &&
           file->data_ == data_ && file->fileType_ == fileType_ && file->fileExtension_ == fileExtension_;
}

std::optional<Upload::Attachment> InputFileViewModel::attachment() const {
    return Upload::Attachment{data_, identifier_, fileType_, title_ + "." + fileExtension_};
}

} // namespace belvakit
