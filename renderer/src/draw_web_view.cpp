#include "drawing.hpp"

#include "html_pages.hpp"
#include "uikit/web_view.hpp"

namespace renderer::detail {

// The page, at the width the kit measured it at, scrolled by the web view's scroll view. Nothing
// shows while it loads or when it was not allowed to, which leaves its content size empty.
void drawWebView(const uikit::WebView& view, QPainter& painter, const PaintContext& context) {
    const auto& scroll = view.scrollView();
    if (view.isLoading() || view.html().empty() || !scroll || scroll->contentSize().height <= 0) return;
    const HtmlPage& page = htmlPage(view.html(), view.frame().width());
    const uikit::Point offset = scroll->contentOffset();
    painter.save();
    painter.setClipRect(context.bounds, Qt::IntersectClip);
    painter.translate(-offset.x, -offset.y);
    page.draw(painter, context.bounds.translated(offset.x, offset.y));
    painter.restore();
}

} // namespace renderer::detail
