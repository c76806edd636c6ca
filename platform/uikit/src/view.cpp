#include "uikit/view.hpp"

#include "uikit/animation.hpp"
#include "uikit/layout_constraint.hpp"
#include "uikit/view_controller.hpp"
#include "uikit/window.hpp"

#include <algorithm>
#include <cmath>

namespace uikit {

View::View(Rect frame) : frame_(frame) {}

View::~View() {
    for (const auto& child : subviews_) child->superview_ = nullptr;
}

void View::setFrame(const Rect& frame) {
    if (frame == frame_) return;
    if (Animation::current()) recordMotion(true, false);
    const Size oldSize = frame_.size;
    frame_ = frame;
    if (!(oldSize == frame.size)) {
        resizeSubviews(oldSize);
        setNeedsLayout();
    }
}

void View::setAlpha(double alpha) {
    alpha = std::clamp(alpha, 0.0, 1.0);
    if (alpha == alpha_) return;
    if (Animation::current()) recordMotion(false, true);
    alpha_ = alpha;
}

void View::recordMotion(bool frameChanges, bool alphaChanges) {
    const auto* timing = Animation::current();
    // One motion per property per animation: the first change records where it starts.
    for (auto& motion : motions_) {
        if (motion.start != timing->start || motion.duration != timing->duration) continue;
        if (frameChanges && !motion.frame) {
            motion.frame = true;
            motion.fromFrame = frame_;
        }
        if (alphaChanges && !motion.alpha) {
            motion.alpha = true;
            motion.fromAlpha = alpha_;
        }
        return;
    }
    motions_.push_back({timing->start, timing->duration, frame_, alpha_, frameChanges, alphaChanges});
}

namespace {
double progress(double now, double start, double duration) {
    if (duration <= 0) return 1;
    const double t = std::clamp((now - start) / duration, 0.0, 1.0);
    return t * t * (3 - 2 * t);  // ease in and out
}
double mix(double from, double to, double t) { return from + (to - from) * t; }
} // namespace

Rect View::presentationFrame(double now) const {
    for (auto motion = motions_.rbegin(); motion != motions_.rend(); ++motion) {
        if (!motion->frame || now >= motion->start + motion->duration) continue;
        const double t = progress(now, motion->start, motion->duration);
        const Rect& from = motion->fromFrame;
        return {mix(from.minX(), frame_.minX(), t), mix(from.minY(), frame_.minY(), t),
                mix(from.width(), frame_.width(), t), mix(from.height(), frame_.height(), t)};
    }
    return frame_;
}

double View::presentationAlpha(double now) const {
    for (auto motion = motions_.rbegin(); motion != motions_.rend(); ++motion) {
        if (!motion->alpha || now >= motion->start + motion->duration) continue;
        return mix(motion->fromAlpha, alpha_, progress(now, motion->start, motion->duration));
    }
    return alpha_;
}

bool View::isAnimating(double now) const {
    return std::any_of(motions_.begin(), motions_.end(),
                       [&](const Motion& motion) { return now < motion.start + motion.duration; });
}

void View::addSubview(const Ptr& view) { insertSubview(view, subviews_.size()); }

void View::insertSubview(const Ptr& view, std::size_t index) {
    if (!view || view.get() == this) return;
    const Ptr keep = view;  // removing it from an old parent must not free it
    if (view->superview_ == this) {
        auto& list = subviews_;
        list.erase(std::find(list.begin(), list.end(), view));
    } else {
        view->removeFromSuperview();
    }
    index = std::min(index, subviews_.size());
    subviews_.insert(subviews_.begin() + static_cast<std::ptrdiff_t>(index), view);
    view->superview_ = this;
    if (view->needsLayout_ || view->subtreeNeedsLayout_) view->markAncestorsForLayout();
    view->didMoveToSuperview();
    if (window()) view->didMoveToWindow();
    setNeedsLayout();
}

namespace {
// While a layout pass runs, views taken out of the tree are kept until it ends, so the pass can
// walk the tree by plain pointers. Main thread.
thread_local int layoutDepth = 0;
thread_local std::vector<View::Ptr>* removedDuringLayout = nullptr;
} // namespace

void View::removeFromSuperview() {
    View* parent = superview_;
    if (!parent) return;
    const Ptr keep = shared_from_this();
    if (layoutDepth > 0 && removedDuringLayout) removedDuringLayout->push_back(keep);
    auto& list = parent->subviews_;
    list.erase(std::remove(list.begin(), list.end(), keep), list.end());
    superview_ = nullptr;
    if (auto* owner = parent->window()) owner->viewLeftWindow(*this);
    didMoveToSuperview();
    parent->setNeedsLayout();
}

bool View::isDescendantOf(const View& ancestor) const {
    for (const View* view = this; view; view = view->superview_)
        if (view == &ancestor) return true;
    return false;
}

Window* View::window() const {
    const View* root = this;
    while (root->superview_) root = root->superview_;
    return const_cast<Window*>(dynamic_cast<const Window*>(root));
}

bool View::handleTap() {
    if (tapActions_.empty()) return false;
    // A copy, as an action may change the view's gestures.
    const auto actions = tapActions_;
    for (const auto& action : actions) action();
    return true;
}

View* View::hitTest(Point point) {
    if (hidden_ || alpha_ < 0.01 || !userInteractionEnabled_) return nullptr;
    if (!Rect({}, frame_.size).contains(point) && clipsToBounds_) return nullptr;
    const Point origin = boundsOrigin();
    for (auto child = subviews_.rbegin(); child != subviews_.rend(); ++child) {
        const Rect& frame = (*child)->frame_;
        const Point inChild{point.x + origin.x - frame.minX(), point.y + origin.y - frame.minY()};
        if (auto* hit = (*child)->hitTest(inChild)) return hit;
    }
    return Rect({}, frame_.size).contains(point) ? this : nullptr;
}

void View::addConstraint(std::shared_ptr<LayoutConstraint> constraint) {
    if (!constraint) return;
    constraints_.push_back(std::move(constraint));
    setNeedsLayout();
}

void View::addConstraints(const std::vector<std::shared_ptr<LayoutConstraint>>& constraints) {
    for (const auto& constraint : constraints) addConstraint(constraint);
}

void View::removeConstraint(const std::shared_ptr<LayoutConstraint>& constraint) {
    constraints_.erase(std::remove(constraints_.begin(), constraints_.end(), constraint), constraints_.end());
    setNeedsLayout();
}

void View::setNeedsLayout() {
    needsLayout_ = true;
    markAncestorsForLayout();
}

void View::markAncestorsForLayout() {
    for (View* parent = superview_; parent && !parent->subtreeNeedsLayout_; parent = parent->superview_)
        parent->subtreeNeedsLayout_ = true;
}

void View::layoutIfNeeded() {
    if (!needsLayout_ && !subtreeNeedsLayout_) return;
    if (layoutDepth > 0) {
        layOutSubtree();
        return;
    }
    std::vector<Ptr> removed;
    removedDuringLayout = &removed;
    ++layoutDepth;
    const Ptr keep = weak_from_this().lock();
    layOutSubtree();
    --layoutDepth;
    removedDuringLayout = nullptr;
}

void View::layOutSubtree() {
    if (needsLayout_) {
        needsLayout_ = false;
        if (viewController_)
            viewController_->runLayout([this] { layoutSubviews(); });
        else
            layoutSubviews();
    }
    subtreeNeedsLayout_ = false;
    // By index, as laying out may add or remove views; a view added meanwhile is laid out too.
    // A view removed meanwhile is kept until the pass ends, so plain pointers serve.
    for (std::size_t i = 0; i < subviews_.size(); ++i) {
        View* child = subviews_[i].get();
        if (child->needsLayout_ || child->subtreeNeedsLayout_) child->layOutSubtree();
    }
}

void View::layoutSubviews() {
    if (!constraints_.empty()) solveConstraints(*this);
}

Size View::sizeThatFits(Size size) const {
    const Size intrinsic = intrinsicContentSize();
    return {intrinsic.width >= 0 ? intrinsic.width : size.width, intrinsic.height >= 0 ? intrinsic.height : size.height};
}

void View::invalidateIntrinsicContentSize() {
    if (superview_) superview_->setNeedsLayout();
}

void View::sizeToFit() {
    const Size fitted = sizeThatFits(frame_.size);
    setFrame({frame_.origin, {std::ceil(fitted.width), std::ceil(fitted.height)}});
}

void View::resizeSubviews(Size oldSize) {
    if (subviews_.empty()) return;
    const double dw = frame_.size.width - oldSize.width;
    const double dh = frame_.size.height - oldSize.height;
    // A change moves or sizes a child only through its leading margin or its size on that axis.
    const unsigned moving = (dw != 0 ? Autoresizing::flexibleLeftMargin | Autoresizing::flexibleWidth : 0u) |
                            (dh != 0 ? Autoresizing::flexibleTopMargin | Autoresizing::flexibleHeight : 0u);
    for (const auto& child : subviews_) {
        const unsigned mask = child->autoresizingMask_;
        if (!child->translatesMask_ || !(mask & moving)) continue;
        Rect frame = child->frame_;
        // The change is shared evenly among the flexible parts of each axis.
        const auto share = [](double delta, bool before, bool size, bool after, double& origin, double& extent) {
            if (delta == 0) return;
            static constexpr double shareOf[] = {0, 1, 1.0 / 2, 1.0 / 3};  // no division per view
            const double part = delta * shareOf[int(before) + int(size) + int(after)];
            if (before) origin += part;
            if (size) extent = std::max(0.0, extent + part);
        };
        share(dw, mask & Autoresizing::flexibleLeftMargin, mask & Autoresizing::flexibleWidth,
              mask & Autoresizing::flexibleRightMargin, frame.origin.x, frame.size.width);
        share(dh, mask & Autoresizing::flexibleTopMargin, mask & Autoresizing::flexibleHeight,
              mask & Autoresizing::flexibleBottomMargin, frame.origin.y, frame.size.height);
        child->setFrame(frame);
    }
}

Point View::originInWindow() const {
    Point point = frame_.origin;
    for (const View* parent = superview_; parent; parent = parent->superview_) {
        const Point origin = parent->boundsOrigin();
        point.x += parent->frame_.minX() - origin.x;
        point.y += parent->frame_.minY() - origin.y;
    }
    // The root's own frame origin is where its coordinates start.
    const View* root = this;
    while (root->superview_) root = root->superview_;
    point.x -= root->frame_.minX();
    point.y -= root->frame_.minY();
    return point;
}

Point View::convert(Point point, const View* to) const {
    const Point from = originInWindow();
    const Point self = boundsOrigin();
    Point inWindow{point.x - self.x + from.x, point.y - self.y + from.y};
    if (!to) return inWindow;
    const Point target = to->originInWindow();
    const Point targetOrigin = to->boundsOrigin();
    return {inWindow.x - target.x + targetOrigin.x, inWindow.y - target.y + targetOrigin.y};
}

Rect View::convert(const Rect& rect, const View* to) const { return {convert(rect.origin, to), rect.size}; }

} // namespace uikit
