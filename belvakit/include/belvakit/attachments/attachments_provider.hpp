#pragma once

#include "dastrel/attachment_provider.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace belvakit {

// Downloads the bytes behind a URL; the completion may run on any thread.
class AttachmentsProvider {
public:
    using Completion = std::function<void(std::optional<std::string> data, std::optional<dastrel::ProviderError> error)>;
    virtual ~AttachmentsProvider() = default;
    virtual void getAttachment(const std::string& url, Completion completion) = 0;
};

// The support library's attachment provider of the current core object. Without one every
// request fails with an error.
std::shared_ptr<AttachmentsProvider> makeAttachmentsProvider();

} // namespace belvakit
