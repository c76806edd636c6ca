#pragma once

#include "platform/attributed_string.hpp"
#include "platform/color.hpp"
#include "platform/font.hpp"
#include "uikit/view.hpp"

#include <optional>
#include <string>

namespace uikit {

enum class TextAlignment { left = 0, center = 1, right = 2, justified = 3, natural = 4 };

// Styled text. Plain text takes the label's font and colour; styled text keeps its own runs.
class Label : public View {
public:
    explicit Label(Rect frame = {});
    std::string_view className() const override { return "UILabel"; }

    const std::string& text() const { return text_.string(); }
    void setText(std::string text);
    // The text as drawn: plain text with the label's font and colour, or the styled text given.
    const platform::AttributedString& attributedText() const { return text_; }
    void setAttributedText(platform::AttributedString text);

    const platform::Font& font() const { return font_; }
    void setFont(const platform::Font& font);
    const platform::Color& textColor() const { return textColor_; }
    void setTextColor(const platform::Color& color);
    TextAlignment textAlignment() const { return alignment_; }
    void setTextAlignment(TextAlignment alignment) { alignment_ = alignment; }
    // 0 means as many lines as the text needs.
    int numberOfLines() const { return numberOfLines_; }
    void setNumberOfLines(int lines);
    // Wrapping width for the intrinsic size of a multi-line label; 0 uses the frame's width.
    double preferredMaxLayoutWidth = 0;

    Size sizeThatFits(Size size) const override;
    Size intrinsicContentSize() const override;

private:
    void restyle();
    platform::AttributedString text_;
    bool styled_ = false;
    platform::Font font_;
    platform::Color textColor_ = platform::Color::black();
    TextAlignment alignment_ = TextAlignment::natural;
    int numberOfLines_ = 1;
    // The last measure, as layouts ask the same again and again.
    mutable struct {
        const void* measurer = nullptr;
        double width = -1;
        Size size;
    } measured_;
};

} // namespace uikit
