#include "belvakit/attachments/attachment_preview.hpp"

#include "belvakit/attachments/cache_keys.hpp"
#include "platform/files.hpp"

namespace belvakit {

AttachmentDetailPresenter::AttachmentDetailPresenter(const Message& message, const Cache& cache) {
    message.visit([&](const auto& record) {
        if constexpr (AttachmentMessage<std::decay_t<decltype(record)>>) {
            previewItem_.previewItemURL = cache.fileURL(fileCacheKey(record.id, record.filename));
            previewItem_.previewItemTitle = record.filename;
        }
    });
}

std::optional<SharedDocumentError> SharedDocument::loadFromContents(const std::any& contents, const std::string&) {
    if (const auto* bytes = std::any_cast<std::string>(&contents)) {
        if (bytes->empty()) return SharedDocumentError::emptyData;
        contents_ = *bytes;
        return std::nullopt;
    }
    if (const auto* wrapper = std::any_cast<FileWrapper>(&contents)) {
        switch (wrapper->kind) {
        case FileWrapper::Kind::regularFile: contents_ = wrapper->regularFileContents; return std::nullopt;
        case FileWrapper::Kind::directory: contents_ = wrapper->serializedRepresentation; return std::nullopt;
        case FileWrapper::Kind::symbolicLink: return SharedDocumentError::symLinkNotSupported;
        }
    }
    return SharedDocumentError::unknownFileType;
}

bool SharedDocument::writeContents(const std::filesystem::path& url) const {
    return platform::writeFileAtomically(url, contents_.value_or(std::string()));
}

} // namespace belvakit
