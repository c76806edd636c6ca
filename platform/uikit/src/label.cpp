#include "uikit/label.hpp"

#include "uikit/text_measurer.hpp"

namespace uikit {

Label::Label(Rect frame) : View(frame), font_(platform::Font::systemFont(17)) {}

void Label::setText(std::string text) {
    styled_ = false;
    text_ = platform::AttributedString(std::move(text));
    restyle();
}

void Label::setAttributedText(platform::AttributedString text) {
    styled_ = true;
    text_ = std::move(text);
    measured_.width = -1;
    invalidateIntrinsicContentSize();
}

void Label::setFont(const platform::Font& font) {
    font_ = font;
    restyle();
}

void Label::setTextColor(const platform::Color& color) {
    textColor_ = color;
    restyle();
}

void Label::setNumberOfLines(int lines) {
    numberOfLines_ = lines;
    measured_.width = -1;
    invalidateIntrinsicContentSize();
}

void Label::restyle() {
    if (!styled_)
        text_ = platform::AttributedString(
            text_.string(), {{platform::AttributeName::font, font_}, {platform::AttributeName::foregroundColor, textColor_}});
    measured_.width = -1;
    invalidateIntrinsicContentSize();
}

Size Label::sizeThatFits(Size size) const {
    if (text_.empty()) return {0, 0};
    const double width = size.width > 0 ? size.width : 1e9;
    const TextMeasurer& measurer = textMeasurer();
    if (measured_.measurer != &measurer || measured_.width != width) {
        measured_.size = measurer.measure(text_, width, numberOfLines_);
        measured_.measurer = &measurer;
        measured_.width = width;
    }
    return measured_.size;
}

Size Label::intrinsicContentSize() const {
    const double width = numberOfLines_ == 1 ? 1e9 : preferredMaxLayoutWidth > 0 ? preferredMaxLayoutWidth
                                                    : frame().width() > 0        ? frame().width()
                                                                                 : 1e9;
    return sizeThatFits({width, 0});
}

} // namespace uikit
