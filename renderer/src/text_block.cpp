#include "renderer/text_block.hpp"

#include "renderer/conversions.hpp"

#include <QFontMetricsF>
#include <QPainter>
#include <QTextCharFormat>

#include <algorithm>
#include <cmath>

namespace renderer {

namespace {

constexpr QChar ellipsisCharacter(0x2026);
// QTextLayout keeps positions in 26.6 fixed point: wider lines overflow it.
constexpr double widestLine = 1e6;

QTextCharFormat formatOf(const platform::TextAttributes& attributes, const TextBlock::Options& options) {
    QTextCharFormat format;
    const auto* font = attributes.get<platform::Font>(platform::AttributeName::font);
    QFont face = font ? toQFont(*font) : options.font;
    if (const auto* kern = attributes.get<double>(platform::AttributeName::kern); kern && std::isfinite(*kern))
        face.setLetterSpacing(QFont::AbsoluteSpacing, *kern);
    format.setFont(face, QTextCharFormat::FontPropertiesAll);
    const auto* color = attributes.get<platform::Color>(platform::AttributeName::foregroundColor);
    const bool link = attributes.find(platform::AttributeName::link) != nullptr;
    if (color)
        format.setForeground(toQColor(*color));
    else
        format.setForeground(link ? QColor(0, 122, 255) : options.color);
    if (link) format.setFontUnderline(true);
    return format;
}

// The formats of [start, end), moved to start at 0.
QList<QTextLayout::FormatRange> slice(const QList<QTextLayout::FormatRange>& formats, int start, int end) {
    QList<QTextLayout::FormatRange> cut;
    for (const auto& range : formats) {
        const int from = std::max(range.start, start);
        const int to = std::min(range.start + range.length, end);
        if (from < to) cut.append({from - start, to - from, range.format});
    }
    return cut;
}

QTextOption optionFor(const TextBlock::Options& options, bool wraps) {
    QTextOption option(options.alignment);
    option.setWrapMode(wraps ? QTextOption::WrapAtWordBoundaryOrAnywhere : QTextOption::NoWrap);
    return option;
}

double wrapWidth(double width) {
    if (!std::isfinite(width)) return widestLine;
    return std::clamp(width, 1.0, widestLine);
}

} // namespace

TextBlock::TextBlock(const platform::AttributedString& text, const Options& options) {
    const std::string& bytes = text.string();
    for (const auto& run : text.runs()) {
        if (run.range.location + run.range.length > bytes.size()) break;
        const QString piece =
            QString::fromUtf8(bytes.data() + run.range.location, static_cast<qsizetype>(run.range.length));
        if (formats_.isEmpty())
            if (const auto* style = run.attributes.get<platform::ParagraphStyle>(platform::AttributeName::paragraphStyle))
                lineSpacing_ = std::isfinite(style->lineSpacing) ? std::max(0.0, style->lineSpacing) : 0;
        formats_.append({static_cast<int>(text_.size()), static_cast<int>(piece.size()), formatOf(run.attributes, options)});
        text_ += piece;
    }
    // Qt breaks lines only at its own separator; a "\r\n" pair is one break.
    for (qsizetype i = 0; i < text_.size(); ++i) {
        if (text_[i] == u'\n')
            text_[i] = QChar::LineSeparator;
        else if (text_[i] == u'\r')
            text_[i] = i + 1 < text_.size() && text_[i + 1] == u'\n' ? QChar(0x200B) : QChar(QChar::LineSeparator);
    }
    layOut(options);
}

TextBlock::~TextBlock() = default;

void TextBlock::layOut(const Options& options) {
    layout_ = std::make_unique<QTextLayout>(text_, options.font);
    layout_->setFormats(formats_);
    layout_->setTextOption(optionFor(options, !options.singleLine));
    const double width = wrapWidth(options.width);
    double y = 0;
    layout_->beginLayout();
    for (;;) {
        QTextLine line = layout_->createLine();
        if (!line.isValid()) break;
        line.setLineWidth(width);
        if (!lines_.empty()) y += lineSpacing_;
        line.setPosition(QPointF(0, y));
        y += line.height();
        lines_.push_back({layout_.get(), line.lineNumber()});
        if (options.maxLines > 0 && static_cast<int>(lines_.size()) >= options.maxLines) {
            truncated_ = line.textStart() + line.textLength() < text_.size();
            break;
        }
    }
    layout_->endLayout();
    if (truncated_ && options.truncateTail) truncateLast(options);
    double widest = 0;
    for (const auto& [layout, index] : lines_) widest = std::max(widest, layout->lineAt(index).naturalTextWidth());
    size_ = QSizeF(widest, y);
}

void TextBlock::truncateLast(const Options& options) {
    const QTextLine last = layout_->lineAt(lines_.back().index);
    const int start = last.textStart();
    int paragraphEnd = static_cast<int>(text_.indexOf(QChar(QChar::LineSeparator), start));
    if (paragraphEnd < 0) paragraphEnd = static_cast<int>(text_.size());
    const QString rest = text_.mid(start, paragraphEnd - start);
    const auto restFormats = slice(formats_, start, paragraphEnd);

    // The ellipsis takes the style of the character it follows.
    const auto ellipsisAfter = [&](int cut) {
        QTextCharFormat format;
        format.setFont(options.font);
        format.setForeground(options.color);
        const int position = std::max(0, cut - 1);
        for (const auto& range : restFormats)
            if (position >= range.start && position < range.start + range.length) format = range.format;
        return format;
    };
    const auto shortened = [&](int cut) {
        auto formats = slice(restFormats, 0, cut);
        formats.append({cut, 1, ellipsisAfter(cut)});
        auto layout = std::make_unique<QTextLayout>(rest.left(cut) + ellipsisCharacter, options.font);
        layout->setFormats(formats);
        layout->setTextOption(optionFor(options, false));
        return layout;
    };
    // Measured unaligned: an aligned line's text starts wherever the alignment puts it.
    const auto widthOf = [&](int cut) {
        auto layout = shortened(cut);
        QTextOption unaligned = layout->textOption();
        unaligned.setAlignment(Qt::AlignLeft | Qt::AlignAbsolute);
        layout->setTextOption(unaligned);
        layout->beginLayout();
        QTextLine line = layout->createLine();
        if (line.isValid()) line.setLineWidth(widestLine);
        layout->endLayout();
        return line.isValid() ? line.naturalTextWidth() : 0.0;
    };

    // The longest start, cut between characters, that fits with its ellipsis.
    QTextLayout cursors(rest, options.font);
    std::vector<int> cuts{0};
    for (int position = 0; position < rest.size();) {
        const int next = cursors.nextCursorPosition(position);
        if (next <= position) break;
        cuts.push_back(position = next);
    }
    const double width = wrapWidth(options.width);
    std::size_t low = 0, high = cuts.size() - 1;
    while (low < high) {
        const std::size_t middle = (low + high + 1) / 2;
        if (widthOf(cuts[middle]) <= width)
            low = middle;
        else
            high = middle - 1;
    }
    int cut = cuts[low];
    while (cut > 0 && rest[cut - 1].isSpace()) --cut;

    ellipsis_ = shortened(cut);
    ellipsis_->beginLayout();
    QTextLine line = ellipsis_->createLine();
    line.setLineWidth(width);
    line.setPosition(last.position());
    ellipsis_->endLayout();
    lines_.back() = {ellipsis_.get(), 0};
}

std::vector<double> TextBlock::lineBottoms() const {
    std::vector<double> bottoms;
    for (const auto& [layout, index] : lines_) {
        const QTextLine line = layout->lineAt(index);
        bottoms.push_back(line.y() + line.height());
    }
    return bottoms;
}

void TextBlock::draw(QPainter& painter, QPointF origin) const {
    for (const auto& [layout, index] : lines_) layout->lineAt(index).draw(&painter, origin);
}

QRectF TextBlock::endCaret() const {
    // Even empty text has one line, so this holds only for a block that failed to lay out.
    if (lines_.empty()) return {0, 0, 0, QFontMetricsF(layout_->font()).height()};
    const auto& [layout, index] = lines_.back();
    const QTextLine line = layout->lineAt(index);
    return {line.cursorToX(line.textStart() + line.textLength()), line.y(), 0, line.height()};
}

} // namespace renderer
