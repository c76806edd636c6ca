#pragma once

// What the kinds' drawers share; private to the renderer.

#include "renderer/view_painter.hpp"
#include "uikit/label.hpp"
#include "uikit/window.hpp"

#include <QColor>
#include <QPainter>
#include <QString>

#include <vector>

namespace uikit {
class ActivityIndicatorView;
class Button;
class ImageView;
class NavigationBar;
class TableViewCell;
class SearchBar;
class TextInput;
class WebView;
} // namespace uikit

namespace renderer::detail {

// The view's content, by kind; the one place where kinds are told apart.
void drawContent(const uikit::View& view, QPainter& painter, const PaintContext& context);
// How much a kind fades itself and its subviews (a disabled button), 1 for most.
double contentOpacity(const uikit::View& view);

void drawLabel(const uikit::Label& label, QPainter& painter, const PaintContext& context);
void drawButton(const uikit::Button& button, QPainter& painter, const PaintContext& context);
void drawImageView(const uikit::ImageView& view, QPainter& painter, const PaintContext& context);
void drawActivityIndicator(const uikit::ActivityIndicatorView& view, QPainter& painter, const PaintContext& context);
void drawTextInput(const uikit::TextInput& input, QPainter& painter, const PaintContext& context);
void drawNavigationBar(const uikit::NavigationBar& bar, QPainter& painter, const PaintContext& context);
void drawWebView(const uikit::WebView& view, QPainter& painter, const PaintContext& context);
void drawTableViewCell(const uikit::TableViewCell& cell, QPainter& painter, const PaintContext& context);
void drawSearchBar(const uikit::SearchBar& bar, QPainter& painter, const PaintContext& context);
// The magnifying glass in the room a search bar's field leaves before its text.
void drawSearchGlyph(const uikit::TextInput& field, QPainter& painter, const PaintContext& context);

// The keyboard the renderer shows in the band the window keeps for it, while it keeps one; its
// keys type into the first responder when clicked.
struct KeyboardKey {
    enum Kind { letter, shift, backspace, numbers, space, enter } kind;
    QString label;
    QRectF rect;  // window points
};
QRectF keyboardArea(const uikit::Window& window);
std::vector<KeyboardKey> keyboardKeys(const uikit::Window& window);
void drawKeyboard(const uikit::Window& window, QPainter& painter);

// The tint a view draws with: its own or its nearest parent's, else the platform's blue.
QColor effectiveTint(const uikit::View& view);
Qt::Alignment toQtAlignment(uikit::TextAlignment alignment);

} // namespace renderer::detail
