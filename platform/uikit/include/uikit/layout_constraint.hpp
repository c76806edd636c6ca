#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace uikit {

class View;

// Values as the platform numbers them, since layout code passes them as numbers too.
enum class LayoutAttribute {
    notAnAttribute = 0,
    left = 1,
    right = 2,
    top = 3,
    bottom = 4,
    leading = 5,
    trailing = 6,
    width = 7,
    height = 8,
    centerX = 9,
    centerY = 10,
};

enum class LayoutRelation { lessThanOrEqual = -1, equal = 0, greaterThanOrEqual = 1 };

// first.attribute (relation) second.attribute * multiplier + constant. Items are held weakly: a
// constraint never keeps a view alive. Solved into frames by the view it is added to, which must
// be a common ancestor of its items (or one of them).
class LayoutConstraint {
public:
    static std::shared_ptr<LayoutConstraint> make(const std::shared_ptr<View>& first, LayoutAttribute firstAttribute,
                                                  LayoutRelation relation, const std::shared_ptr<View>& second,
                                                  LayoutAttribute secondAttribute, double multiplier,
                                                  double constant);

    // The visual format language: "H:|-20-[label]-(m)-[button(==44)]-|", "V:[guide]-(8)-[view]".
    // Names in brackets come from `views`, names in parentheses from `metrics`. A format that does
    // not parse gives no constraints and a warning in the log.
    static std::vector<std::shared_ptr<LayoutConstraint>> constraintsWithVisualFormat(
        std::string_view format, const std::map<std::string, double>& metrics,
        const std::map<std::string, std::shared_ptr<View>>& views);

    std::shared_ptr<View> firstItem() const { return first_.lock(); }
    std::shared_ptr<View> secondItem() const { return second_.lock(); }
    // The items without taking a reference: for the solver, while the tree holds them.
    View* firstView() const { return first_.expired() ? nullptr : firstRaw_; }
    View* secondView() const { return second_.expired() ? nullptr : secondRaw_; }
    LayoutAttribute firstAttribute() const { return firstAttribute_; }
    LayoutAttribute secondAttribute() const { return secondAttribute_; }
    LayoutRelation relation() const { return relation_; }
    double multiplier() const { return multiplier_; }
    double constant() const { return constant_; }
    void setConstant(double constant) { constant_ = constant; }
    bool isActive() const { return active_; }
    void setActive(bool active) { active_ = active; }
    std::string identifier;

private:
    std::weak_ptr<View> first_;
    std::weak_ptr<View> second_;
    View* firstRaw_ = nullptr;
    View* secondRaw_ = nullptr;
    LayoutAttribute firstAttribute_ = LayoutAttribute::notAnAttribute;
    LayoutAttribute secondAttribute_ = LayoutAttribute::notAnAttribute;
    LayoutRelation relation_ = LayoutRelation::equal;
    double multiplier_ = 1;
    double constant_ = 0;
    bool active_ = true;
};

// Solves the constraints held by `container` into the frames of the views they place.
// Conflicts keep the first constraint and are logged; nothing is fatal.
void solveConstraints(View& container);

} // namespace uikit
