#include "renderer/input.hpp"

#include "uikit/inspection.hpp"
#include "uikit/scroll_view.hpp"
#include "uikit/text_input.hpp"

#include <Qt>

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

} // namespace

bool clickAt(uikit::Window& window, uikit::Point point) {
    if (!std::isfinite(point.x) || !std::isfinite(point.y)) return false;
    return uikit::tapAt(window, point);
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

