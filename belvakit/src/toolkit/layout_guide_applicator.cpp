#include "belvakit/toolkit/layout_guide_applicator.hpp"

#include "uikit/window.hpp"

#include <algorithm>
#include <cmath>
#include <functional>

namespace belvakit {

namespace {

class LayoutGuideView final : public uikit::View {
public:
    LayoutGuideView() {
        setHidden(true);
        setUserInteractionEnabled(false);
    }
    std::string_view className() const override { return "CRVLayoutGuide"; }
    // Laid out after its container: a guide found out of date asks the container for another pass.
    void layoutSubviews() override {
        uikit::View::layoutSubviews();
        if (onLayout) onLayout();
    }
    std::function<void()> onLayout;
};

uikit::LayoutAttribute attributeOf(int layoutPosition) {
    return layoutPosition == CRVLayoutGuideApplicator::topPosition ? uikit::LayoutAttribute::top
                                                                   : uikit::LayoutAttribute::bottom;
}

} // namespace

CRVLayoutGuideApplicator::CRVLayoutGuideApplicator(const std::shared_ptr<uikit::ViewController>& controller,
                                                   const std::shared_ptr<uikit::View>& view, int layoutPosition)
    : viewController(controller), topLevelView(view), isTopLayoutGuide(layoutPosition == topPosition) {
    apply();
}

CRVLayoutGuideApplicator::~CRVLayoutGuideApplicator() {
    // The guide stays with the constraints that use it, but no longer follows the screen.
    if (auto* guide = dynamic_cast<LayoutGuideView*>(guide_.get())) guide->onLayout = nullptr;
}

void CRVLayoutGuideApplicator::awakeFromNib() { apply(); }

std::vector<std::shared_ptr<uikit::LayoutConstraint>> CRVLayoutGuideApplicator::constraintsBetweenView(
    const uikit::View& view, const uikit::View& container, int layoutPosition) {
    const auto attribute = attributeOf(layoutPosition);
    std::vector<std::shared_ptr<uikit::LayoutConstraint>> found;
    for (const auto& constraint : container.constraints())
        if (constraint->firstAttribute() == attribute && isConstraint(*constraint, view, container))
            found.push_back(constraint);
    return found;
}

bool CRVLayoutGuideApplicator::isConstraint(const uikit::LayoutConstraint& constraint, const uikit::View& view,
                                            const uikit::View& other) {
    const auto first = constraint.firstItem();
    const auto second = constraint.secondItem();
    return (first.get() == &view && second.get() == &other) || (first.get() == &other && second.get() == &view);
}

std::string CRVLayoutGuideApplicator::visualConstraintForPosition(int layoutPosition, int constant) {
    const std::string gap = "-(" + std::to_string(constant) + ")-";
    return layoutPosition == topPosition ? "V:[layoutGuide]" + gap + "[view]" : "V:[view]" + gap + "[layoutGuide]";
}

void CRVLayoutGuideApplicator::apply() {
    const auto controller = viewController.lock();
    const auto view = topLevelView.lock();
    if (!controller || !view) return;
    const auto& container = controller->view();
    const int position = isTopLayoutGuide ? topPosition : bottomPosition;

    if (!guide_) {
        auto guide = std::make_shared<LayoutGuideView>();
        guide->setAutoresizingMask(uikit::Autoresizing::flexibleWidth |
                                   (isTopLayoutGuide ? uikit::Autoresizing::flexibleBottomMargin
                                                     : uikit::Autoresizing::flexibleTopMargin));
        guide->onLayout = [this] { updateLayoutGuide(); };
        guide_ = std::move(guide);
        environmentObserver_ = platform::NotificationCenter::defaultCenter().addObserver(
            uikit::windowEnvironmentDidChangeNotification, nullptr, [this](const platform::Notification&) {
                // The bars take their new places first; the guide is measured from them.
                const auto screen = viewController.lock();
                if (uikit::Window* window = screen && screen->isViewLoaded() ? screen->view()->window() : nullptr)
                    window->layoutIfNeeded();
                updateLayoutGuide();
            });
    }
    container->insertSubview(guide_, 0);
    updateLayoutGuide();

    const auto found = constraintsBetweenView(*view, *container, position);
    const std::shared_ptr<uikit::LayoutConstraint> old = found.empty() ? nullptr : found.front();
    if (old) container->removeConstraint(old);
    // Whole points, as the format takes them; a missing constraint counts as 0.
    const int constant = old ? static_cast<int>(std::trunc(old->constant())) : 0;
    view->setTranslatesAutoresizingMaskIntoConstraints(false);
    applied_ = uikit::LayoutConstraint::constraintsWithVisualFormat(visualConstraintForPosition(position, constant), {},
                                                                    {{"layoutGuide", guide_}, {"view", view}});
    container->addConstraints(applied_);
}

void CRVLayoutGuideApplicator::updateLayoutGuide() {
    const auto controller = viewController.lock();
    if (!controller || !guide_ || !controller->isViewLoaded()) return;
    const uikit::Rect bounds = controller->view()->bounds();
    const double length = isTopLayoutGuide ? controller->topLayoutGuideLength() : controller->bottomLayoutGuideLength();
    const uikit::Rect frame = isTopLayoutGuide ? uikit::Rect{0, 0, bounds.width(), length}
                                               : uikit::Rect{0, bounds.height() - length, bounds.width(), length};
    if (guide_->frame() == frame) return;
    guide_->setFrame(frame);
    controller->view()->setNeedsLayout();
}

} // namespace belvakit
