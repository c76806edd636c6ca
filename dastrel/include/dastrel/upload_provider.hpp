#pragma once

#include "dastrel/provider_error.hpp"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace dastrel {

// The file as the help desk keeps it after an upload.
struct CRVAttachment {
    std::int64_t attachmentId = 0;
    std::string filename;
    std::string contentURLString;
    std::string contentType;
    std::int64_t size = 0;
    // Images only: their size and a smaller rendition.
    double width = 0;
    double height = 0;
    std::string thumbnailURLString;
    double thumbnailWidth = 0;
    double thumbnailHeight = 0;

    bool operator==(const CRVAttachment&) const = default;
};

// What an upload gives back: the token a new request or comment refers to.
struct CRVUploadResponse {
    std::string uploadToken;
    std::optional<CRVAttachment> attachment;

    bool operator==(const CRVUploadResponse&) const = default;
};

using CRVUploadCallback =
    std::function<void(std::optional<CRVUploadResponse> response, std::optional<ProviderError> error)>;

// Uploads one file; the callback may run on any thread.
class CRVUploadProvider {
public:
    virtual ~CRVUploadProvider() = default;
    virtual void uploadAttachment(std::optional<std::string> data, std::optional<std::string> filename,
                                  std::optional<std::string> contentType, CRVUploadCallback callback) = 0;
};

} // namespace dastrel
