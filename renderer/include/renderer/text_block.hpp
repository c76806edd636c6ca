#pragma once

#include "platform/attributed_string.hpp"

#include <QColor>
#include <QFont>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QTextLayout>

#include <memory>
#include <vector>

class QPainter;

namespace renderer {

// Styled text laid out in lines with Qt's fonts: the one layout both the measurer and the painter
// use, so text is drawn where it was measured.
class TextBlock {
public:
    struct Options {
        // What runs without a font or colour of their own take.
        QFont font;
        QColor color = Qt::black;
        // Wrapping width; text wider than any screen is treated as unwrapped.
        double width = 1e6;
        // 0: as many lines as the text needs.
        int maxLines = 0;
        Qt::Alignment alignment = Qt::AlignLeft;
        // Cut text ends its last line with an ellipsis.
        bool truncateTail = false;
        // No wrapping at all: each paragraph is one line (text fields).
        bool singleLine = false;
    };

    TextBlock(const platform::AttributedString& text, const Options& options);
    ~TextBlock();
    TextBlock(const TextBlock&) = delete;
    TextBlock& operator=(const TextBlock&) = delete;

    // The widest line and the lines' total height, unrounded.
    QSizeF size() const { return size_; }
    int lineCount() const { return static_cast<int>(lines_.size()); }
    // The bottom of each line, from the block's top.
    std::vector<double> lineBottoms() const;
    bool isTruncated() const { return truncated_; }

    // Draws the lines with the block's top-left at `origin`.
    void draw(QPainter& painter, QPointF origin) const;
    // Where a caret after the last character stands, from the block's top-left.
    QRectF endCaret() const;

private:
    struct Line {
        const QTextLayout* layout;
        int index;
    };
    void layOut(const Options& options);
    void truncateLast(const Options& options);

    QString text_;
    QList<QTextLayout::FormatRange> formats_;
    double lineSpacing_ = 0;
    std::unique_ptr<QTextLayout> layout_;
    std::unique_ptr<QTextLayout> ellipsis_;
    std::vector<Line> lines_;
    QSizeF size_;
    bool truncated_ = false;
};

} // namespace renderer
