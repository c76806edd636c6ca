#pragma once

#include "dastrel/provider_error.hpp"

#include <functional>
#include <optional>
#include <string>

namespace dastrel {

using CRVAttachmentCallback = std::function<void(std::optional<std::string> data, std::optional<ProviderError> error)>;

// Downloads the bytes behind an attachment or avatar URL; the callback may run on any thread.
class CRVAttachmentProvider {
public:
    virtual ~CRVAttachmentProvider() = default;
    virtual void getAttachment(const std::string& url, CRVAttachmentCallback callback) = 0;
};

} // namespace dastrel
