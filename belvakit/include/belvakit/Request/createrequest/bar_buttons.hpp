#pragma once

#include "uikit/bar_button_item.hpp"

#include <functional>
#include <optional>
#include <string>

namespace belvakit {

enum class BarButtonStyle { plain = 0, done = 2 };

// What a bar button shows and does.
struct BarButtonDetails {
    std::string title;
    BarButtonStyle style = BarButtonStyle::plain;
    std::function<void()> action;
    std::string accessibilityIdentifier;
};

// Makes a screen's bar buttons; null where the screen has none.
class BarButtonCreation {
public:
    virtual ~BarButtonCreation() = default;
    virtual uikit::BarButtonItemPtr leftBarButtonItem() const = 0;
    virtual uikit::BarButtonItemPtr rightBarButtonItem() const = 0;
};

class BarButtonProvider final : public BarButtonCreation {
public:
    std::optional<BarButtonDetails> leftButtonDetails;
    std::optional<BarButtonDetails> rightButtonDetails;

    uikit::BarButtonItemPtr leftBarButtonItem() const override { return make(leftButtonDetails); }
    uikit::BarButtonItemPtr rightBarButtonItem() const override { return make(rightButtonDetails); }

private:
    static uikit::BarButtonItemPtr make(const std::optional<BarButtonDetails>& details);
};

} // namespace belvakit
