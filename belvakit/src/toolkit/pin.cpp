#include "belvakit/toolkit/pin.hpp"

namespace belvakit {

using uikit::LayoutAttribute;

std::shared_ptr<uikit::LayoutConstraint> Pin::pin(const std::shared_ptr<uikit::View>& view, LayoutAttribute attribute,
                                                  const std::shared_ptr<uikit::View>& toView,
                                                  LayoutAttribute toAttribute, double constant, uikit::View* parent) {
    if (!view || !parent) return nullptr;
    view->setTranslatesAutoresizingMaskIntoConstraints(false);
    auto constraint = uikit::LayoutConstraint::make(view, attribute, uikit::LayoutRelation::equal, toView,
                                                    toView ? toAttribute : LayoutAttribute::notAnAttribute, 1,
                                                    constant);
    parent->addConstraint(constraint);
    return constraint;
}

std::vector<std::shared_ptr<uikit::LayoutConstraint>> Pin::pin(const std::shared_ptr<uikit::View>& view,
                                                               const std::shared_ptr<uikit::View>& toView,
                                                               const std::vector<MultiViewConstraints>& attributes,
                                                               uikit::View* parent) {
    std::vector<std::shared_ptr<uikit::LayoutConstraint>> made;
    for (const auto& each : attributes)
        if (auto constraint = pin(view, each.layoutAttribute, toView, each.constant, parent))
            made.push_back(std::move(constraint));
    return made;
}

std::vector<std::shared_ptr<uikit::LayoutConstraint>> Pin::edges(const std::shared_ptr<uikit::View>& view,
                                                                 const std::shared_ptr<uikit::View>& toView,
                                                                 double inset, uikit::View* parent) {
    return pin(view, toView,
               {{LayoutAttribute::top, inset},
                {LayoutAttribute::leading, inset},
                {LayoutAttribute::bottom, -inset},
                {LayoutAttribute::trailing, -inset}},
               parent);
}

} // namespace belvakit
