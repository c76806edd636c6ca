#pragma once

#include "belvakit/attachments/input_attachment.hpp"
#include "uikit/scroll_view.hpp"

#include <cstdint>
#include <functional>
#include <string>

namespace belvakit {

// The chosen attachments under a text input: a row of chips, each with its picture or file icon,
// its name and size, and a button that takes it away. Scrolls sideways when the row is long.
class InputAttachmentCollectionView final : public uikit::ScrollView {
public:
    static constexpr double chipWidth = 168;
    static constexpr double chipHeight = 52;

    InputAttachmentCollectionView();
    std::string_view className() const override { return "InputAttachmentCollectionView"; }

    const InputAttachmentCollectionViewState& state() const { return state_; }
    // Rebuilds the chips when the list changed.
    void setState(InputAttachmentCollectionViewState state);

    // The remove button of a chip was tapped, with the attachment's identifier.
    std::function<void(const std::string& identifier)> removeTapped;

    uikit::Size sizeThatFits(uikit::Size size) const override;
    void layoutSubviews() override;

private:
    void rebuild();
    InputAttachmentCollectionViewState state_;
};

// "512 bytes", "12 KB", "3.4 MB": a file's size as the chips show it.
std::string attachmentSizeText(std::int64_t bytes);

} // namespace belvakit
