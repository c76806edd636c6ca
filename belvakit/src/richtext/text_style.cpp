#include "belvakit/richtext/text_style.hpp"

#include "platform/named_colors.hpp"

namespace belvakit {

const platform::Color& richTextColor() {
    static const platform::Color color = platform::colorWithWhite(0, 0.8);
    return color;
}

const platform::TextAttributes& defaultTextAttributes() {
    static const platform::TextAttributes attributes{
        {platform::paragraphStyleAttributeName, platform::ParagraphStyle{.lineSpacing = 2.3}},
        {platform::kernAttributeName, 0.3},
        {platform::foregroundColorAttributeName, richTextColor()},
    };
    return attributes;
}

} // namespace belvakit
