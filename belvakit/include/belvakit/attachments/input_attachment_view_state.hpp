#pragma once

#include <cstdint>
#include <string>

namespace belvakit {

// What the attachment strip under a text field holds, whatever the kind of file.
class InputAttachmentViewState {
public:
    virtual ~InputAttachmentViewState() = default;
    virtual std::string identifier() const = 0;
    // In bytes.
    virtual std::int64_t size() const = 0;
    virtual bool isEqual(const InputAttachmentViewState& other) const = 0;
};

} // namespace belvakit
