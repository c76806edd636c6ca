#include "renderer/conversions.hpp"
#include "renderer/text_block.hpp"

#include <QFontMetricsF>
#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>
#include <random>

namespace {

using platform::AttributedString;

renderer::TextBlock::Options oneLine(double width, Qt::Alignment alignment, bool bold = true) {
    renderer::TextBlock::Options options;
    options.font = renderer::toQFont(bold ? platform::Font::boldSystemFont(17) : platform::Font::systemFont(17));
    options.width = width;
    options.maxLines = 1;
    options.alignment = alignment;
    options.truncateTail = true;
    return options;
}

// Columns of the block's own width that hold ink, drawn at the origin.
std::pair<int, int> inkedColumns(const renderer::TextBlock& block, int width) {
    QImage image(width, 40, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    block.draw(painter, {0, 0});
    painter.end();
    int first = width, last = -1;
    for (int x = 0; x < width; ++x)
        for (int y = 0; y < image.height(); ++y)
            if (image.pixelColor(x, y).red() < 128) {
                first = std::min(first, x);
                last = std::max(last, x);
            }
    return {first, last};
}

// A cut line keeps as much of its start as fits beside the ellipsis, however it is aligned.
TEST(TextBlock, ACutLineKeepsItsStartBesideTheEllipsisInEveryAlignment) {
    const AttributedString title("Installing Orbit Planner on every device you own");
    for (const auto alignment : {Qt::AlignLeft, Qt::AlignHCenter, Qt::AlignRight}) {
        const renderer::TextBlock block(title, oneLine(251, alignment));
        ASSERT_TRUE(block.isTruncated());
        EXPECT_LE(block.size().width(), 251);
        EXPECT_GT(block.size().width(), 200) << "alignment " << alignment << ": the start was dropped";
        const auto [first, last] = inkedColumns(block, 251);
        EXPECT_LT(first, 20) << "alignment " << alignment;
        EXPECT_GT(last, 230) << "alignment " << alignment;
    }
    // Room for the ellipsis alone shows it; none at all still draws without trouble.
    const renderer::TextBlock tiny(title, oneLine(14, Qt::AlignHCenter));
    EXPECT_LE(tiny.lineCount(), 1);
    EXPECT_LE(tiny.size().width(), 20);
    const renderer::TextBlock none(title, oneLine(0, Qt::AlignHCenter));
    EXPECT_TRUE(none.isTruncated());
}

// For any words, width and alignment, a cut last line fits its width and is cut between
// characters, so no more than about two letters' room is left over.
TEST(TextBlock, CutLinesFitAndKeepWhatFitsForRandomText) {
    const std::vector<std::string> words{"a", "to", "the", "ticket", "conversation", "é", "W", "ok,", "mmmmm", "שלום"};
    const Qt::Alignment alignments[] = {Qt::AlignLeft, Qt::AlignHCenter, Qt::AlignRight};
    for (unsigned seed = 1; seed <= 400; ++seed) {
        std::mt19937 random(seed);
        std::string text;
        const int count = 4 + static_cast<int>(random() % 30);
        for (int i = 0; i < count; ++i) text += (i ? " " : "") + words[random() % words.size()];
        const double width = 60 + random() % 250;
        auto options = oneLine(width, alignments[random() % 3], random() % 2);
        options.maxLines = 1 + static_cast<int>(random() % 2);
        const renderer::TextBlock block{AttributedString(text), options};
        ASSERT_LE(block.size().width(), width + 0.5) << "seed " << seed << ": " << text;
        ASSERT_LE(block.lineCount(), options.maxLines) << "seed " << seed;
        if (!block.isTruncated()) continue;
        const double ellipsis = QFontMetricsF(options.font).horizontalAdvance(QChar(0x2026));
        const auto bottoms = block.lineBottoms();
        ASSERT_EQ(static_cast<int>(bottoms.size()), options.maxLines) << "seed " << seed;
        if (options.maxLines == 1) {
            ASSERT_GT(block.size().width(), width - QFontMetricsF(options.font).horizontalAdvance("mm ") - ellipsis)
                << "seed " << seed << ": " << text;
        }
    }
}

} // namespace
