#include "uikit/layout_constraint.hpp"
#include "uikit/stack_view.hpp"

#include <gtest/gtest.h>

using namespace uikit;

namespace {

class Box : public View {
public:
    explicit Box(Size natural) : natural_(natural) {}
    Size intrinsicContentSize() const override { return natural_; }

private:
    Size natural_;
};

std::shared_ptr<View> box(double width, double height) { return make<Box>(Size{width, height}); }

TEST(StackViewTest, FillGivesTheRoomLeftToTheViewWithoutANaturalLength) {
    auto a = box(30, 10);
    auto flexible = make<View>();
    auto c = box(40, 20);
    auto stack = make<StackView>(std::vector<std::shared_ptr<View>>{a, flexible, c});
    stack->setSpacing(5);
    stack->setFrame({0, 0, 200, 30});
    stack->layoutIfNeeded();
    EXPECT_EQ(a->frame(), (Rect{0, 0, 30, 30}));
    EXPECT_EQ(flexible->frame(), (Rect{35, 0, 120, 30}));
    EXPECT_EQ(c->frame(), (Rect{160, 0, 40, 30}));

    // Without one the last view stretches; alignment places views across the axis.
    stack->removeArrangedSubview(flexible);
    flexible->removeFromSuperview();
    stack->setAlignment(StackViewAlignment::center);
    stack->layoutIfNeeded();
    EXPECT_EQ(a->frame(), (Rect{0, 10, 30, 10}));
    EXPECT_EQ(c->frame(), (Rect{35, 5, 165, 20}));
    EXPECT_EQ(stack->intrinsicContentSize(), (Size{75, 20}));
}

TEST(StackViewTest, VerticalDistributionsAndHiddenViews) {
    auto a = box(10, 20);
    auto b = box(50, 40);
    auto hidden = box(10, 100);
    hidden->setHidden(true);
    auto stack = make<StackView>(std::vector<std::shared_ptr<View>>{a, hidden, b});
    stack->setAxis(LayoutAxis::vertical);
    stack->setDistribution(StackViewDistribution::equalSpacing);
    stack->setAlignment(StackViewAlignment::trailing);
    stack->setFrame({0, 0, 100, 200});
    stack->layoutIfNeeded();
    EXPECT_EQ(a->frame(), (Rect{90, 0, 10, 20}));
    EXPECT_EQ(b->frame(), (Rect{50, 160, 50, 40}));

    stack->setDistribution(StackViewDistribution::fillEqually);
    stack->setSpacing(10);
    stack->layoutMarginsRelativeArrangement = true;
    stack->layoutMargins = {10, 0, 0, 0};
    stack->layoutIfNeeded();
    EXPECT_EQ(a->frame(), (Rect{90, 10, 10, 90}));
    EXPECT_EQ(b->frame(), (Rect{50, 110, 50, 90}));
    EXPECT_EQ(stack->intrinsicContentSize(), (Size{50, 80}));
}

TEST(StackViewTest, SizeConstraintsOverrideNaturalSizes) {
    auto avatar = box(100, 100);
    avatar->addConstraint(LayoutConstraint::make(avatar, LayoutAttribute::width, LayoutRelation::equal, nullptr,
                                                 LayoutAttribute::notAnAttribute, 1, 24));
    auto other = box(100, 100);
    auto stack = make<StackView>(std::vector<std::shared_ptr<View>>{avatar, other});
    stack->addConstraint(LayoutConstraint::make(other, LayoutAttribute::width, LayoutRelation::equal, nullptr,
                                                LayoutAttribute::notAnAttribute, 1, 24));
    stack->setSpacing(-8);
    EXPECT_EQ(stack->intrinsicContentSize().width, 40);
}

} // namespace
