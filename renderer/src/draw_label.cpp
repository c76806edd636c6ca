#include "drawing.hpp"

#include "renderer/conversions.hpp"
#include "renderer/text_block.hpp"

#include <algorithm>
#include <cmath>
#include <memory>

namespace renderer::detail {

void drawLabel(const uikit::Label& label, QPainter& painter, const PaintContext& context) {
    const auto& text = label.attributedText();
    if (text.empty()) return;
    TextBlock::Options options;
    // Runs without a font are drawn in the one the kit measured them with, so they fit.
    options.font = defaultTextFont();
    options.color = toQColor(label.textColor());
    options.width = context.bounds.width();
    options.maxLines = std::max(0, label.numberOfLines());
    options.alignment = toQtAlignment(label.textAlignment());
    options.truncateTail = true;
    auto block = std::make_unique<TextBlock>(text, options);
    // Lines below the label's bottom are cut, and the last line shown ends in an ellipsis.
    const auto bottoms = block->lineBottoms();
    const auto fitting = std::count_if(bottoms.begin(), bottoms.end(),
                                       [&](double bottom) { return bottom <= context.bounds.height() + 0.5; });
    if (fitting < block->lineCount()) {
        options.maxLines = std::max(1, static_cast<int>(fitting));
        block = std::make_unique<TextBlock>(text, options);
    }
    // Centred vertically, on a whole point so the glyphs stay sharp.
    const double top = std::round((context.bounds.height() - block->size().height()) / 2);
    block->draw(painter, {0, top});
}

} // namespace renderer::detail
