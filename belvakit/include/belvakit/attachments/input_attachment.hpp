#pragma once

#include "belvakit/Request/conversation/file_type.hpp"
#include "belvakit/attachments/upload.hpp"
#include "platform/image.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace belvakit {

// What can become a file to upload.
class Attachable {
public:
    virtual ~Attachable() = default;
    // Nothing when the file cannot be made (an image that cannot be encoded).
    virtual std::optional<Upload::Attachment> attachment() const = 0;
};

// An entry of the attachment strip under a text field.
class InputAttachmentViewState {
public:
    virtual ~InputAttachmentViewState() = default;
    virtual const std::string& identifier() const = 0;
    virtual std::int64_t size() const = 0;
    virtual bool isEqual(const InputAttachmentViewState& other) const = 0;
};

using InputAttachmentViewStatePtr = std::shared_ptr<const InputAttachmentViewState>;

struct InputAttachmentCollectionViewState {
    std::vector<InputAttachmentViewStatePtr> attachments;
    bool operator==(const InputAttachmentCollectionViewState& other) const;
};

class InputImageViewModel final : public InputAttachmentViewState, public Attachable {
public:
    InputImageViewModel(platform::ImagePtr image, std::string identifier, std::optional<std::string> assetIdentifier,
                        std::optional<std::string> data, FileType type, std::optional<std::string> filename);

    const platform::ImagePtr& image() const { return image_; }
    const std::string& identifier() const override { return identifier_; }
    // The photo library's id of the picture.
    const std::optional<std::string>& assetIdentifier() const { return assetIdentifier_; }
    const std::optional<std::string>& data() const { return data_; }
    FileType type() const { return type_; }
    const std::optional<std::string>& filename() const { return filename_; }

    // The length of the data; without data, of the encoded image, or the largest integer when the
    // image cannot be encoded, so that every limit refuses it.
    std::int64_t size() const override;
    bool isEqual(const InputAttachmentViewState& other) const override;
    std::optional<Upload::Attachment> attachment() const override;

private:
    platform::ImagePtr image_;
    std::string identifier_;
    std::optional<std::string> assetIdentifier_;
    std::optional<std::string> data_;
    FileType type_;
    std::optional<std::string> filename_;
};

class InputFileViewModel final : public InputAttachmentViewState, public Attachable {
public:
    InputFileViewModel(std::string title, std::int64_t size, platform::ImagePtr icon, std::string data,
                       std::string identifier, FileType fileType, std::string fileExtension);

    const std::string& title() const { return title_; }
    std::int64_t size() const override { return size_; }
    const platform::ImagePtr& icon() const { return icon_; }
    const std::string& data() const { return data_; }
    const std::string& identifier() const override { return identifier_; }
    FileType fileType() const { return fileType_; }
    const std::string& fileExtension() const { return fileExtension_; }

    bool isEqual(const InputAttachmentViewState& other) const override;
    std::optional<Upload::Attachment> attachment() const override;

private:
    std::string title_;
    std::int64_t size_;
    platform::ImagePtr icon_;
    std::string data_;
    std::string identifier_;
    FileType fileType_;
    std::string fileExtension_;
};

} // namespace belvakit
