#include "uikit/stack_view.hpp"

#include "uikit/layout_constraint.hpp"

#include <algorithm>
#include <cmath>

namespace uikit {

StackView::StackView(std::vector<std::shared_ptr<View>> arrangedSubviews) {
    for (const auto& view : arrangedSubviews) addArrangedSubview(view);
}

void StackView::addArrangedSubview(const std::shared_ptr<View>& view) { insertArrangedSubview(view, arranged_.size()); }

void StackView::insertArrangedSubview(const std::shared_ptr<View>& view, std::size_t index) {
    if (!view || view.get() == this) return;
    std::erase(arranged_, view);
    arranged_.insert(arranged_.begin() + static_cast<std::ptrdiff_t>(std::min(index, arranged_.size())), view);
    if (view->superview() != this) addSubview(view);
    invalidateIntrinsicContentSize();
    setNeedsLayout();
}

void StackView::removeArrangedSubview(const std::shared_ptr<View>& view) {
    std::erase(arranged_, view);
    invalidateIntrinsicContentSize();
    setNeedsLayout();
}

void StackView::setAxis(LayoutAxis axis) {
    axis_ = axis;
    invalidateIntrinsicContentSize();
    setNeedsLayout();
}

void StackView::setSpacing(double spacing) {
    spacing_ = spacing;
    invalidateIntrinsicContentSize();
    setNeedsLayout();
}

void StackView::setAlignment(StackViewAlignment alignment) {
    alignment_ = alignment;
    setNeedsLayout();
}

void StackView::setDistribution(StackViewDistribution distribution) {
    distribution_ = distribution;
    setNeedsLayout();
}

std::vector<std::shared_ptr<View>> StackView::shown() const {
    std::vector<std::shared_ptr<View>> views;
    for (const auto& view : arranged_)
        if (!view->isHidden() && view->superview() == this) views.push_back(view);
    return views;
}

Size StackView::naturalSize(const View& view) const {
    Size size = view.intrinsicContentSize();
    // A width or height the view is held to wins over its natural one.
    const auto apply = [&](const std::vector<std::shared_ptr<LayoutConstraint>>& constraints) {
        for (const auto& constraint : constraints) {
            if (!constraint->isActive() || constraint->relation() != LayoutRelation::equal || constraint->secondItem() ||
                constraint->firstItem().get() != &view)
                continue;
            if (constraint->firstAttribute() == LayoutAttribute::width) size.width = constraint->constant();
            if (constraint->firstAttribute() == LayoutAttribute::height) size.height = constraint->constant();
        }
    };
    apply(view.constraints());
    apply(constraints());
    return size;
}

Size StackView::intrinsicContentSize() const {
    const auto views = shown();
    double along = 0;
    double across = 0;
    for (const auto& view : views) {
        const Size natural = naturalSize(*view);
        const double main = axis_ == LayoutAxis::horizontal ? natural.width : natural.height;
        const double cross = axis_ == LayoutAxis::horizontal ? natural.height : natural.width;
        along += std::max(0.0, main);
        across = std::max(across, cross);
    }
    if (views.size() > 1) along += spacing_ * static_cast<double>(views.size() - 1);
    const EdgeInsets margins = layoutMarginsRelativeArrangement ? layoutMargins : EdgeInsets{};
    if (axis_ == LayoutAxis::horizontal) return {along + margins.left + margins.right, across + margins.top + margins.bottom};
    return {across + margins.left + margins.right, along + margins.top + margins.bottom};
}

void StackView::layoutSubviews() {
    View::layoutSubviews();
    const auto views = shown();
    if (views.empty()) return;
    Rect area{0, 0, frame().width(), frame().height()};
    if (layoutMarginsRelativeArrangement) area = area.inset(layoutMargins);
    const bool horizontal = axis_ == LayoutAxis::horizontal;
    const double mainExtent = horizontal ? area.width() : area.height();
    const double crossExtent = horizontal ? area.height() : area.width();
    const std::size_t count = views.size();
    std::vector<double> mains(count);
    std::vector<double> crosses(count);
    double natural = 0;
    std::size_t flexible = count;  // the first view without a natural length takes what is left
    for (std::size_t i = 0; i < count; ++i) {
        const Size size = naturalSize(*views[i]);
        const double main = horizontal ? size.width : size.height;
        const double cross = horizontal ? size.height : size.width;
        if (main < 0 && flexible == count) flexible = i;
        mains[i] = std::max(0.0, main);
        crosses[i] = cross < 0 ? crossExtent : cross;
        natural += mains[i];
    }
    double gap = spacing_;
    const double gaps = spacing_ * static_cast<double>(count - 1);
    switch (distribution_) {
    case StackViewDistribution::fillEqually:
        std::fill(mains.begin(), mains.end(), std::max(0.0, (mainExtent - gaps) / static_cast<double>(count)));
        break;
    case StackViewDistribution::equalSpacing:
        if (count > 1) gap = std::max(spacing_, (mainExtent - natural) / static_cast<double>(count - 1));
        break;
    default: {
        const std::size_t taker = flexible < count ? flexible : count - 1;
        mains[taker] = std::max(0.0, mains[taker] + mainExtent - natural - gaps);
        break;
    }
    }
    double position = horizontal ? area.minX() : area.minY();
    const double crossStart = horizontal ? area.minY() : area.minX();
    for (std::size_t i = 0; i < count; ++i) {
        double cross = std::min(crosses[i], crossExtent);
        double offset = 0;
        switch (alignment_) {
        case StackViewAlignment::fill: cross = crossExtent; break;
        case StackViewAlignment::center: offset = std::floor((crossExtent - cross) / 2); break;
        case StackViewAlignment::trailing:
        case StackViewAlignment::lastBaseline: offset = crossExtent - cross; break;
        default: break;
        }
        if (horizontal)
            views[i]->setFrame({position, crossStart + offset, mains[i], cross});
        else
            views[i]->setFrame({crossStart + offset, position, cross, mains[i]});
        position += mains[i] + gap;
    }
}

} // namespace uikit
