#include "drawing.hpp"

#include "renderer/conversions.hpp"
#include "renderer/text_block.hpp"
#include "uikit/text_input.hpp"

#include <algorithm>
#include <cmath>

namespace renderer::detail {

namespace {
std::string bullets(const std::string& text) {
    std::string hidden;
    for (const char byte : text)
        if ((static_cast<unsigned char>(byte) & 0xC0) != 0x80) hidden += "\u2022";
    return hidden;
}
} // namespace

// The text, or the placeholder in grey, inside the input's insets; a field keeps one line
// centred and shows its end while typed into, a text view wraps from the top. The first
// responder shows a caret in the tint colour.
void drawTextInput(const uikit::TextInput& input, QPainter& painter, const PaintContext& context) {
    const bool multiline = dynamic_cast<const uikit::TextView*>(&input) != nullptr;
    const bool typed = !input.text().empty();
    const auto& insets = input.textInsets;
    const QRectF area = context.bounds.adjusted(insets.left, insets.top, -insets.right, -insets.bottom);
    if (area.width() <= 0 || area.height() <= 0) return;

    TextBlock::Options options;
    options.font = toQFont(input.font);
    options.color = typed ? toQColor(input.textColor)
                          : input.placeholderColor ? toQColor(*input.placeholderColor) : QColor(199, 199, 205);
    options.width = area.width();
    options.alignment = toQtAlignment(input.textAlignment);
    options.singleLine = !multiline;
    const std::string shown = !typed ? input.placeholder() : input.secureTextEntry ? bullets(input.text()) : input.text();
    const TextBlock block(platform::AttributedString(shown), options);

    const bool editing = input.isFirstResponder();
    double x = area.left();
    // A field typed past its width scrolls so its end, where the caret is, shows.
    if (!multiline && editing && typed && block.size().width() + 2 > area.width())
        x -= block.size().width() + 2 - area.width();
    const double y = multiline ? area.top() : std::round(area.top() + (area.height() - block.size().height()) / 2);

    painter.save();
    painter.setClipRect(area, Qt::IntersectClip);
    if (!shown.empty()) block.draw(painter, {x, y});
    if (editing) {
        // Before the placeholder, or after the text.
        const QRectF caret = typed ? block.endCaret() : TextBlock(platform::AttributedString(), options).endCaret();
        const double left = std::min(x + caret.x(), area.right() - 2);
        painter.fillRect(QRectF(left, y + caret.y(), 2, caret.height()), effectiveTint(input));
    }
    painter.restore();
}

} // namespace renderer::detail
