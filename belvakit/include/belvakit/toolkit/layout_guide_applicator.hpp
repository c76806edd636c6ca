#pragma once

#include "platform/notification_center.hpp"
#include "uikit/layout_constraint.hpp"
#include "uikit/view_controller.hpp"

#include <memory>
#include <string>
#include <vector>

namespace belvakit {

// Moves a view's top (or bottom) constraint from its container to the screen's layout guide, so
// that the view sits below the bars (or above the bottom inset) with the same spacing.
//
// The kit has no layout guide objects, so the guide is a hidden view of the container that
// spans the screen's top (or bottom) inset. It follows the container's size by its autoresizing
// mask and the inset on each change of the window's environment; a screen whose bars change
// calls `updateLayoutGuide`.
class CRVLayoutGuideApplicator {
public:
    static constexpr int topPosition = 0;
    static constexpr int bottomPosition = 1;

    // Position 0 is the top guide, anything else the bottom one. Applies at once.
    CRVLayoutGuideApplicator(const std::shared_ptr<uikit::ViewController>& viewController,
                             const std::shared_ptr<uikit::View>& topLevelView, int layoutPosition);
    // For set-up by properties, then `awakeFromNib`.
    CRVLayoutGuideApplicator() = default;
    CRVLayoutGuideApplicator(const CRVLayoutGuideApplicator&) = delete;
    CRVLayoutGuideApplicator& operator=(const CRVLayoutGuideApplicator&) = delete;
    ~CRVLayoutGuideApplicator();

    std::weak_ptr<uikit::ViewController> viewController;
    std::weak_ptr<uikit::View> topLevelView;
    bool isTopLayoutGuide = true;
    void awakeFromNib();

    // The guide view, once applied.
    const std::shared_ptr<uikit::View>& layoutGuide() const { return guide_; }
    // The constraints that now place the view against the guide.
    const std::vector<std::shared_ptr<uikit::LayoutConstraint>>& appliedConstraints() const { return applied_; }
    // Places the guide over the screen's current inset.
    void updateLayoutGuide();

    // The constraints held by `container` between `view` and `container` for the top (position 0)
    // or bottom attribute.
    static std::vector<std::shared_ptr<uikit::LayoutConstraint>> constraintsBetweenView(const uikit::View& view,
                                                                                        const uikit::View& container,
                                                                                        int layoutPosition);
    // Whether both views are the constraint's items, in either order.
    static bool isConstraint(const uikit::LayoutConstraint& constraint, const uikit::View& view,
                             const uikit::View& other);
    // "V:[layoutGuide]-(c)-[view]" for the top, "V:[view]-(c)-[layoutGuide]" otherwise.
    static std::string visualConstraintForPosition(int layoutPosition, int constant);

private:
    void apply();

    std::shared_ptr<uikit::View> guide_;
    std::vector<std::shared_ptr<uikit::LayoutConstraint>> applied_;
    platform::ObservationToken environmentObserver_;
};

} // namespace belvakit
