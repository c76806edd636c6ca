#include "drawing.hpp"

#include "renderer/conversions.hpp"
#include "uikit/search_bar.hpp"
#include "uikit/text_input.hpp"

#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <string_view>

namespace renderer::detail {

namespace {

const QColor band(209, 212, 217);
const QColor letterKey(255, 255, 255);
const QColor functionKey(172, 179, 188);
const QColor keyShadow(137, 139, 143);

struct RowKey {
    KeyboardKey::Kind kind;
    QString label;
    double width;  // in letter keys; 0 takes what the row leaves
};

std::vector<std::vector<RowKey>> keyRows(const QString& returnLabel) {
    const auto letters = [](std::string_view row) {
        std::vector<RowKey> keys;
        for (const char letter : row) keys.push_back({KeyboardKey::letter, QString(QChar(letter)), 1});
        return keys;
    };
    auto third = letters("zxcvbnm");
    third.insert(third.begin(), {KeyboardKey::shift, QString(QChar(0x21E7)), 1.35});
    third.push_back({KeyboardKey::backspace, QString(QChar(0x232B)), 1.35});
    return {letters("qwertyuiop"), letters("asdfghjkl"), third,
            {{KeyboardKey::numbers, QStringLiteral("123"), 2.5},
             {KeyboardKey::space, QStringLiteral("space"), 0},
             {KeyboardKey::enter, returnLabel, 2.5}}};
}

} // namespace

QRectF keyboardArea(const uikit::Window& window) {
    const uikit::Rect bounds = window.bounds();
    const double height = std::min(window.keyboardHeight(), bounds.height());
    if (!(height > 0) || !std::isfinite(bounds.width())) return {};
    return {0, bounds.height() - height, bounds.width(), height};
}

// Rows of keys with the platform's proportions: ten letters fill the top row, the others are
// centred, and the space bar stretches between the bottom row's keys.
std::vector<KeyboardKey> keyboardKeys(const uikit::Window& window) {
    const QRectF area = keyboardArea(window);
    if (area.width() < 40 || area.height() < 40) return {};
    const auto* responder = window.firstResponder();
    const bool searching = responder && dynamic_cast<const uikit::SearchBar*>(responder->superview());
    constexpr double side = 3, gap = 6, top = 8, bottom = 4, rowGap = 11;
    const double unit = (area.width() - 2 * side - 9 * gap) / 10;
    const double rowHeight = std::max(10.0, (area.height() - top - bottom - 3 * rowGap) / 4);
    std::vector<KeyboardKey> laidOut;
    const auto rows = keyRows(searching ? QStringLiteral("search") : QStringLiteral("return"));
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const auto& keys = rows[row];
        const double y = area.top() + top + static_cast<double>(row) * (rowHeight + rowGap);
        double fixed = gap * static_cast<double>(keys.size() - 1);
        for (const auto& key : keys) fixed += key.width * unit;
        const bool stretches = std::any_of(keys.begin(), keys.end(), [](const RowKey& key) { return key.width == 0; });
        const double stretch = std::max(unit, area.width() - 2 * side - fixed);
        double x = area.left() + (stretches ? side : (area.width() - fixed) / 2);
        for (const auto& key : keys) {
            const double width = key.width == 0 ? stretch : key.width * unit;
            laidOut.push_back({key.kind, key.label, QRectF(x, y, width, rowHeight)});
            x += width + gap;
        }
    }
    return laidOut;
}

void drawKeyboard(const uikit::Window& window, QPainter& painter) {
    const QRectF area = keyboardArea(window);
    if (area.isEmpty()) return;
    painter.save();
    painter.setClipRect(area, Qt::IntersectClip);
    painter.fillRect(area, band);
    painter.fillRect(QRectF(area.left(), area.top(), area.width(), 0.5), QColor(0, 0, 0, 60));
    for (const auto& key : keyboardKeys(window)) {
        QPainterPath shape;
        shape.addRoundedRect(key.rect, 5, 5);
        painter.fillPath(shape.translated(0, 1), keyShadow);
        const bool plain = key.kind == KeyboardKey::letter || key.kind == KeyboardKey::space;
        painter.fillPath(shape, plain ? letterKey : functionKey);
        // Letters large, words smaller, as on the platform's keys.
        const double letterSize = std::clamp(key.rect.height() * 0.52, 10.0, 24.0);
        painter.setFont(toQFont(platform::Font::systemFont(key.label.size() > 1 ? letterSize * 0.66 : letterSize)));
        painter.setPen(Qt::black);
        painter.drawText(key.rect, Qt::AlignCenter, key.label);
    }
    painter.restore();
}

} // namespace renderer::detail
