#pragma once

#include "belvakit/Request/conversation/message.hpp"
#include "belvakit/attachments/cache.hpp"

#include <any>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace belvakit {

// One file for the platform's preview screen.
struct AttachmentMessagePreviewItem {
    std::optional<std::filesystem::path> previewItemURL;
    std::optional<std::string> previewItemTitle;
};

// The preview screen's data source for a downloaded file message.
class AttachmentDetailPresenter {
public:
    AttachmentDetailPresenter(const Message& message, const Cache& cache);

    const AttachmentMessagePreviewItem& previewItem() const { return previewItem_; }
    // False when the cache holds no file to show.
    bool canPresent() const { return previewItem_.previewItemURL.has_value(); }

    long numberOfPreviewItems() const { return 1; }
    const AttachmentMessagePreviewItem& previewItemAtIndex(long) const { return previewItem_; }

private:
    AttachmentMessagePreviewItem previewItem_;
};

enum class SharedDocumentError { symLinkNotSupported, unknownFileType, emptyData };

// What the document picker may hand over besides plain bytes.
struct FileWrapper {
    enum class Kind { regularFile, directory, symbolicLink };
    Kind kind = Kind::regularFile;
    std::string regularFileContents;
    std::string serializedRepresentation;
};

// Bytes picked from the platform's document picker.
class SharedDocument {
public:
    explicit SharedDocument(std::filesystem::path fileURL) : fileURL_(std::move(fileURL)) {}

    // `contents` is plain bytes (std::string) or a FileWrapper; nothing on success.
    std::optional<SharedDocumentError> loadFromContents(const std::any& contents, const std::string& typeName);
    // Writes the contents as the platform's document class would; false on failure.
    bool writeContents(const std::filesystem::path& url) const;
    bool hasUnsavedChanges() const { return false; }

    const std::optional<std::string>& contents() const { return contents_; }
    const std::filesystem::path& fileURL() const { return fileURL_; }

private:
    std::filesystem::path fileURL_;
    std::optional<std::string> contents_;
};

} // namespace belvakit
