#pragma once

#include "uikit/layout_constraint.hpp"
#include "uikit/view.hpp"

#include <memory>
#include <vector>

namespace belvakit {

// Builds layout constraints between two views and adds them to a parent. The pinned view stops
// translating its autoresizing mask first, so that the constraint places it.
struct Pin {
    // One attribute of several pinned at once, each to the same attribute of the other view.
    struct MultiViewConstraints {
        uikit::LayoutAttribute layoutAttribute = uikit::LayoutAttribute::notAnAttribute;
        double constant = 0;
    };

    // view.attribute == toView.toAttribute + constant, added to `parent`. A null `toView` makes a
    // constant (width or height) constraint. Nothing without a view or a parent.
    static std::shared_ptr<uikit::LayoutConstraint> pin(const std::shared_ptr<uikit::View>& view,
                                                        uikit::LayoutAttribute attribute,
                                                        const std::shared_ptr<uikit::View>& toView,
                                                        uikit::LayoutAttribute toAttribute, double constant,
                                                        uikit::View* parent);
    // The same attribute on both views.
    static std::shared_ptr<uikit::LayoutConstraint> pin(const std::shared_ptr<uikit::View>& view,
                                                        uikit::LayoutAttribute attribute,
                                                        const std::shared_ptr<uikit::View>& toView, double constant,
                                                        uikit::View* parent) {
        return pin(view, attribute, toView, attribute, constant, parent);
    }
    static std::vector<std::shared_ptr<uikit::LayoutConstraint>> pin(
        const std::shared_ptr<uikit::View>& view, const std::shared_ptr<uikit::View>& toView,
        const std::vector<MultiViewConstraints>& attributes, uikit::View* parent);
    // All four edges, inset by `inset` (the trailing and bottom ones inward).
    static std::vector<std::shared_ptr<uikit::LayoutConstraint>> edges(const std::shared_ptr<uikit::View>& view,
                                                                       const std::shared_ptr<uikit::View>& toView,
                                                                       double inset, uikit::View* parent);
};

} // namespace belvakit
