#include "renderer/input.hpp"

#include "drawing.hpp"
#include "html_pages.hpp"
#include "uikit/probe.hpp"
#include "uikit/scroll_view.hpp"
#include "uikit/text_input.hpp"
#include "uikit/web_view.hpp"

#include <QUrl>

#include <cmath>

namespace renderer {

namespace {

// The deepest shown view under the point, whether or not it takes taps.
uikit::View* viewAt(uikit::View& view, uikit::Point point) {
    if (view.isHidden() || view.alpha() < 0.01) return nullptr;
    const uikit::Rect own({}, view.frame().size);
    if (view.clipsToBounds() && !own.contains(point)) return nullptr;
    const uikit::Point origin = view.boundsOrigin();
    const auto& children = view.subviews();
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
        const uikit::Rect& frame = (*child)->frame();
        if (auto* hit = viewAt(**child, {point.x + origin.x - frame.minX(), point.y + origin.y - frame.minY()}))
            return hit;
    }
    return own.contains(point) ? &view : nullptr;
}

// A link of a shown page under the point goes to its web view, resolved against the page's
// base URL as a browser resolves it.
bool followLink(uikit::Window& window, uikit::Point point) {
    uikit::WebView* web = nullptr;
    for (uikit::View* view = window.hitTest(point); view && !web; view = view->superview())
        web = dynamic_cast<uikit::WebView*>(view);
    if (!web || web->isLoading() || web->html().empty()) return false;
    const uikit::Point inView = window.convert(point, web);
    const uikit::Point offset = web->scrollView()->contentOffset();
    const auto& page = detail::htmlPage(web->html(), web->frame().width());
    const std::string link = page.linkAt({inView.x + offset.x, inView.y + offset.y});
    if (link.empty()) return false;
    std::string target = link;
    if (const auto& base = web->baseURL()) {
        const QUrl resolved = QUrl(QString::fromStdString(base->absoluteString())).resolved(QUrl(QString::fromStdString(link)));
        if (resolved.isValid()) target = resolved.toString(QUrl::FullyEncoded).toStdString();
    }
    web->activateLink(target);
    return true;
}

// A click in the keyboard's band is the keyboard's: a key types, the rest of the band takes it
// so that nothing hidden under the keys is tapped.
bool clickKeyboard(uikit::Window& window, uikit::Point point) {
    if (!detail::keyboardArea(window).contains(QPointF(point.x, point.y))) return false;
    for (const auto& key : detail::keyboardKeys(window)) {
        if (!key.rect.contains(QPointF(point.x, point.y))) continue;
        switch (key.kind) {
        case detail::KeyboardKey::letter: typeKey(window, 0, key.label); break;
        case detail::KeyboardKey::space: typeKey(window, Qt::Key_Space, QStringLiteral(" ")); break;
        case detail::KeyboardKey::backspace: typeKey(window, Qt::Key_Backspace, {}); break;
        case detail::KeyboardKey::enter: typeKey(window, Qt::Key_Return, {}); break;
        case detail::KeyboardKey::shift:
        case detail::KeyboardKey::numbers: break;
        }
        break;
    }
    return true;
}

} // namespace

bool clickAt(uikit::Window& window, uikit::Point point) {
    if (!std::isfinite(point.x) || !std::isfinite(point.y)) return false;
    return clickKeyboard(window, point) || followLink(window, point) || uikit::tapAt(window, point);
}

bool scrollAt(uikit::Window& window, uikit::Point point, double dx, double dy) {
    if (!std::isfinite(point.x) || !std::isfinite(point.y) || !std::isfinite(dx) || !std::isfinite(dy)) return false;
    for (uikit::View* view = viewAt(window, point); view; view = view->superview()) {
        auto* scroll = dynamic_cast<uikit::ScrollView*>(view);
        if (!scroll || !scroll->scrollEnabled || !scroll->isUserInteractionEnabled()) continue;
        const uikit::Point from = scroll->contentOffset();
        const uikit::Point to = scroll->clampedOffset({from.x + dx, from.y + dy});
        if (to == from) continue;  // at its end: the one around it scrolls instead
        scroll->setContentOffset(to);
        return true;
    }
    return false;
}

bool typeKey(uikit::Window& window, int key, const QString& text) {
    auto* input = dynamic_cast<uikit::TextInput*>(window.firstResponder());
    if (!input) return false;
    switch (key) {
    case Qt::Key_Backspace:
        input->deleteBackward();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (dynamic_cast<uikit::TextView*>(input))
            input->insertText("\n");
        else
            input->pressReturn();
        return true;
    case Qt::Key_Escape:
        return input->resignFirstResponder();
    default: break;
    }
    // Control characters (shortcuts, tabs, deletes) are not text.
    QString printable;
    for (const QChar c : text)
        if (c.isPrint() || c.isSurrogate()) printable += c;
    if (printable.isEmpty()) return false;
    input->insertText(printable.toStdString());
    return true;
}

} // namespace renderer

