#include "uikit/scroll_view.hpp"

#include "uikit/animation.hpp"

#include <algorithm>

namespace uikit {

Point ScrollView::clampedOffset(Point offset) const {
    const double maxX = std::max(-contentInset.left, contentSize_.width + contentInset.right - frame().width());
    const double maxY = std::max(-contentInset.top, contentSize_.height + contentInset.bottom - frame().height());
    return {std::clamp(offset.x, -contentInset.left, maxX), std::clamp(offset.y, -contentInset.top, maxY)};
}

void ScrollView::setContentOffset(Point offset, bool) {
    if (offset == contentOffset_) return;
    contentOffset_ = offset;
    setNeedsLayout();
    offsetChanged();
    if (didScroll) didScroll();
}

} // namespace uikit
