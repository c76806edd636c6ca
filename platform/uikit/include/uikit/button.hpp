#pragma once

#include "platform/image.hpp"
#include "uikit/label.hpp"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace uikit {

enum class ControlEvent { touchUpInside, valueChanged, editingChanged, editingDidBegin, editingDidEnd };

namespace ControlState {
inline constexpr unsigned normal = 0;
inline constexpr unsigned highlighted = 1;
inline constexpr unsigned disabled = 2;
inline constexpr unsigned selected = 4;
} // namespace ControlState

// A view that runs actions on events.
class Control : public View {
public:
    using View::View;
    std::string_view className() const override { return "UIControl"; }

    bool isEnabled() const { return enabled_; }
    // State changes lay the control out again: its looks follow its state.
    void setEnabled(bool enabled) {
        enabled_ = enabled;
        setNeedsLayout();
    }
    bool isSelected() const { return selected_; }
    void setSelected(bool selected) {
        selected_ = selected;
        setNeedsLayout();
    }
    bool isHighlighted() const { return highlighted_; }
    void setHighlighted(bool highlighted) {
        highlighted_ = highlighted;
        setNeedsLayout();
    }
    unsigned state() const;

    void addTarget(ControlEvent event, std::function<void()> action);
    void removeTargets(ControlEvent event);
    // Runs the actions of the event, in order of adding.
    void sendActions(ControlEvent event);
    // A tap is a touch up inside, when enabled.
    bool handleTap() override;

private:
    bool enabled_ = true;
    bool selected_ = false;
    bool highlighted_ = false;
    std::vector<std::pair<ControlEvent, std::function<void()>>> targets_;
};

enum class ButtonType { custom = 0, system = 1 };

// A button with a title and an image per state; a state without its own falls back to normal.
class Button : public Control {
public:
    explicit Button(ButtonType type = ButtonType::system, Rect frame = {});
    std::string_view className() const override { return "UIButton"; }

    ButtonType buttonType() const { return type_; }
    void setTitle(std::string title, unsigned state = ControlState::normal);
    std::string title(unsigned state) const;
    std::string currentTitle() const { return title(this->state()); }
    void setTitleColor(platform::Color color, unsigned state = ControlState::normal);
    std::optional<platform::Color> titleColor(unsigned state) const;
    void setImage(platform::ImagePtr image, unsigned state = ControlState::normal);
    platform::ImagePtr image(unsigned state) const;
    platform::ImagePtr currentImage() const { return image(state()); }

    // The label that draws the title; its font is the title's font.
    const std::shared_ptr<Label>& titleLabel() const { return titleLabel_; }
    EdgeInsets contentEdgeInsets;
    TextAlignment contentHorizontalAlignment = TextAlignment::center;

    Size sizeThatFits(Size size) const override;
    Size intrinsicContentSize() const override { return sizeThatFits({0, 0}); }
    void layoutSubviews() override;

private:
    void refreshTitle();
    ButtonType type_;
    std::shared_ptr<Label> titleLabel_;
    std::map<unsigned, std::string> titles_;
    std::map<unsigned, platform::Color> titleColors_;
    std::map<unsigned, platform::ImagePtr> images_;
};

} // namespace uikit
