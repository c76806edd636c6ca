#pragma once

#include "platform/color.hpp"
#include "uikit/geometry.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace uikit {

class LayoutConstraint;
class ViewController;
class Window;

namespace Autoresizing {
inline constexpr unsigned none = 0;
inline constexpr unsigned flexibleLeftMargin = 1;
inline constexpr unsigned flexibleWidth = 2;
inline constexpr unsigned flexibleRightMargin = 4;
inline constexpr unsigned flexibleTopMargin = 8;
inline constexpr unsigned flexibleHeight = 16;
inline constexpr unsigned flexibleBottomMargin = 32;
} // namespace Autoresizing

// A rectangle of the screen in a retained tree. Frames are in the parent's coordinates; a
// parent's bounds origin (a scroll view's offset) moves what it holds.
class View : public std::enable_shared_from_this<View> {
public:
    using Ptr = std::shared_ptr<View>;

    explicit View(Rect frame = {});
    virtual ~View();
    View(const View&) = delete;
    View& operator=(const View&) = delete;

    // The platform's class name ("UIView"), which appearance keys and the renderer go by.
    virtual std::string_view className() const { return "UIView"; }

    // Geometry. A frame change of a view animated at the time is shown moving by the renderer.
    const Rect& frame() const { return frame_; }
    void setFrame(const Rect& frame);
    Rect bounds() const { return {boundsOrigin(), frame_.size}; }
    virtual Point boundsOrigin() const { return {}; }
    Point center() const { return {frame_.midX(), frame_.midY()}; }

    // Tree.
    const std::vector<Ptr>& subviews() const { return subviews_; }
    View* superview() const { return superview_; }
    void addSubview(const Ptr& view);
    void insertSubview(const Ptr& view, std::size_t index);
    void removeFromSuperview();
    bool isDescendantOf(const View& ancestor) const;
    // The window at the root of the tree, if the tree is in one.
    Window* window() const;
    virtual void didMoveToWindow() {}
    virtual void didMoveToSuperview() {}

    // Looks.
    bool isHidden() const { return hidden_; }
    void setHidden(bool hidden) { hidden_ = hidden; }
    double alpha() const { return alpha_; }
    void setAlpha(double alpha);
    const std::optional<platform::Color>& backgroundColor() const { return backgroundColor_; }
    void setBackgroundColor(std::optional<platform::Color> color) { backgroundColor_ = color; }
    const std::optional<platform::Color>& tintColor() const { return tintColor_; }
    void setTintColor(std::optional<platform::Color> color) { tintColor_ = color; }
    double cornerRadius() const { return cornerRadius_; }
    void setCornerRadius(double radius) { cornerRadius_ = radius; }
    double borderWidth() const { return borderWidth_; }
    void setBorderWidth(double width) { borderWidth_ = width; }
    const std::optional<platform::Color>& borderColor() const { return borderColor_; }
    void setBorderColor(std::optional<platform::Color> color) { borderColor_ = color; }
    bool clipsToBounds() const { return clipsToBounds_; }
    void setClipsToBounds(bool clips) { clipsToBounds_ = clips; }

    // Identity and input.
    const std::string& accessibilityIdentifier() const { return accessibilityIdentifier_; }
    void setAccessibilityIdentifier(std::string identifier) { accessibilityIdentifier_ = std::move(identifier); }
    const std::string& accessibilityLabel() const { return accessibilityLabel_; }
    void setAccessibilityLabel(std::string label) { accessibilityLabel_ = std::move(label); }
    int tag() const { return tag_; }
    void setTag(int tag) { tag_ = tag; }
    bool isUserInteractionEnabled() const { return userInteractionEnabled_; }
    void setUserInteractionEnabled(bool enabled) { userInteractionEnabled_ = enabled; }
    // A tap gesture: the action runs when the view is tapped.
    void addTapAction(std::function<void()> action) { tapActions_.push_back(std::move(action)); }
    bool hasTapActions() const { return !tapActions_.empty(); }
    // What a tap on this view does; false when it does nothing. Controls and cells answer their way.
    virtual bool handleTap();
    // The deepest visible, interactive view under the point, in this view's bounds coordinates.
    View* hitTest(Point point);

    // Layout.
    unsigned autoresizingMask() const { return autoresizingMask_; }
    void setAutoresizingMask(unsigned mask) { autoresizingMask_ = mask; }
    bool translatesAutoresizingMaskIntoConstraints() const { return translatesMask_; }
    void setTranslatesAutoresizingMaskIntoConstraints(bool translates) { translatesMask_ = translates; }
    void addConstraint(std::shared_ptr<LayoutConstraint> constraint);
    void addConstraints(const std::vector<std::shared_ptr<LayoutConstraint>>& constraints);
    void removeConstraint(const std::shared_ptr<LayoutConstraint>& constraint);
    const std::vector<std::shared_ptr<LayoutConstraint>>& constraints() const { return constraints_; }
    void setNeedsLayout();
    bool needsLayout() const { return needsLayout_; }
    // Lays out this view's subtree now if anything in it asked for it.
    void layoutIfNeeded();
    // Places the subviews: constraints of this view first, then the subclass's own placing.
    virtual void layoutSubviews();
    virtual Size sizeThatFits(Size size) const;
    virtual Size intrinsicContentSize() const { return {noIntrinsicMetric, noIntrinsicMetric}; }
    void invalidateIntrinsicContentSize();
    // What the constraint solver keeps between layouts of this view.
    std::shared_ptr<void>& layoutPlan() { return layoutPlan_; }
    void sizeToFit();

    // The screen whose root view this is: its layout calls run around this view's.
    ViewController* viewController() const { return viewController_; }
    void setViewController(ViewController* controller) { viewController_ = controller; }

    // Coordinates.
    Point convert(Point point, const View* to) const;
    Rect convert(const Rect& rect, const View* to) const;

    // What the screen shows at `now` (seconds of the main queue's scheduler) while an animation
    // runs; the model values otherwise.
    Rect presentationFrame(double now) const;
    double presentationAlpha(double now) const;
    bool isAnimating(double now) const;

private:
    friend class Animation;
    struct Motion {
        double start = 0;
        double duration = 0;
        Rect fromFrame;
        double fromAlpha = 1;
        bool frame = false;
        bool alpha = false;
    };
    void recordMotion(bool frameChanges, bool alphaChanges);
    void resizeSubviews(Size oldSize);
    void markAncestorsForLayout();
    Point originInWindow() const;

    Rect frame_;
    std::vector<Ptr> subviews_;
    View* superview_ = nullptr;
    bool hidden_ = false;
    double alpha_ = 1;
    std::optional<platform::Color> backgroundColor_;
    std::optional<platform::Color> tintColor_;
    double cornerRadius_ = 0;
    double borderWidth_ = 0;
    std::optional<platform::Color> borderColor_;
    bool clipsToBounds_ = false;
    std::string accessibilityIdentifier_;
    std::string accessibilityLabel_;
    int tag_ = 0;
    bool userInteractionEnabled_ = true;
    std::vector<std::function<void()>> tapActions_;
    unsigned autoresizingMask_ = Autoresizing::none;
    bool translatesMask_ = true;
    std::vector<std::shared_ptr<LayoutConstraint>> constraints_;
    bool needsLayout_ = true;
    bool subtreeNeedsLayout_ = true;  // some view below asked for layout
    std::vector<Motion> motions_;
    ViewController* viewController_ = nullptr;
    std::shared_ptr<void> layoutPlan_;
};

// Makes a view of type T, shared as the tree holds it.
template <class T, class... Args>
std::shared_ptr<T> make(Args&&... args) {
    return std::make_shared<T>(std::forward<Args>(args)...);
}

} // namespace uikit
