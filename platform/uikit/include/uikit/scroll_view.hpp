#pragma once

#include "uikit/view.hpp"

#include <functional>

namespace uikit {

// A view whose content is larger than itself: the offset moves the content under it.
class ScrollView : public View {
public:
    explicit ScrollView(Rect frame = {}) : View(frame) { setClipsToBounds(true); }
    std::string_view className() const override { return "UIScrollView"; }

    Point boundsOrigin() const override { return contentOffset_; }
    const Point& contentOffset() const { return contentOffset_; }
    // Kept within the content, as a user's scrolling is.
    void setContentOffset(Point offset, bool animated = false);
    const Size& contentSize() const { return contentSize_; }
    void setContentSize(Size size) {
        if (size == contentSize_) return;
        contentSize_ = size;
        if (contentSizeDidChange) contentSizeDidChange();
    }
    EdgeInsets contentInset;
    bool scrollEnabled = true;
    // Told after the offset changed.
    std::function<void()> didScroll;
    // Told after the content size changed, as an observer of it would be.
    std::function<void()> contentSizeDidChange;

    // The offset a scroll by (dx, dy) would reach, clamped to the content.
    Point clampedOffset(Point offset) const;
    void scrollBy(double dx, double dy) { setContentOffset(clampedOffset({contentOffset_.x + dx, contentOffset_.y + dy})); }

protected:
    virtual void offsetChanged() {}

private:
    Point contentOffset_;
    Size contentSize_;
};

} // namespace uikit
