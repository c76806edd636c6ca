// Frames from autoresizing masks and constraints, text measuring, and animations in virtual time.
#include "platform/main_queue.hpp"
#include "test_support.hpp"
#include "uikit/animation.hpp"
#include "uikit/label.hpp"
#include "uikit/layout_constraint.hpp"

#include <gtest/gtest.h>

using namespace uikit;
using A = LayoutAttribute;

namespace {
std::shared_ptr<LayoutConstraint> pin(const View::Ptr& view, A attribute, const View::Ptr& to, A toAttribute,
                                      double constant = 0, double multiplier = 1) {
    return LayoutConstraint::make(view, attribute, LayoutRelation::equal, to, toAttribute, multiplier, constant);
}
View::Ptr constrained(const View::Ptr& parent) {
    auto view = make<View>();
    view->setTranslatesAutoresizingMaskIntoConstraints(false);
    parent->addSubview(view);
    return view;
}
} // namespace

TEST(Layout, AutoresizingSharesAParentsGrowthAmongTheFlexibleParts) {
    auto parent = make<View>(Rect(0, 0, 300, 200));
    auto stretch = make<View>(Rect(10, 10, 280, 50));
    stretch->setAutoresizingMask(Autoresizing::flexibleWidth | Autoresizing::flexibleBottomMargin);
    auto centred = make<View>(Rect(100, 100, 100, 40));
    centred->setAutoresizingMask(Autoresizing::flexibleLeftMargin | Autoresizing::flexibleRightMargin);
    parent->addSubview(stretch);
    parent->addSubview(centred);
    parent->setFrame({0, 0, 500, 300});
    EXPECT_EQ(stretch->frame(), Rect(10, 10, 480, 50));
    EXPECT_EQ(centred->frame(), Rect(200, 100, 100, 40));
}

TEST(Layout, ConstraintsPinEdgesCentresAndSizesAndFallBackOnNaturalSizes) {
    auto parent = make<View>(Rect(0, 0, 320, 480));
    auto header = constrained(parent);
    parent->addConstraints({pin(header, A::leading, parent, A::leading, 16), pin(header, A::trailing, parent, A::trailing, -16),
                            pin(header, A::top, parent, A::top, 20), LayoutConstraint::make(header, A::height, LayoutRelation::equal, nullptr, A::notAnAttribute, 1, 44)});
    auto badge = constrained(parent);
    parent->addConstraints({pin(badge, A::centerX, parent, A::centerX), pin(badge, A::top, header, A::bottom, 8),
                            pin(badge, A::width, header, A::width, 0, 0.5), pin(badge, A::height, badge, A::width)});
    auto label = std::make_shared<Label>();
    label->setTranslatesAutoresizingMaskIntoConstraints(false);
    label->setText("Hello");  // 5 glyphs of 17 pt: 42.5 wide, 21 high
    parent->addSubview(label);
    parent->addConstraints({pin(label, A::leading, badge, A::leading), pin(label, A::top, badge, A::bottom, 4)});
    parent->layoutIfNeeded();
    EXPECT_EQ(header->frame(), Rect(16, 20, 288, 44));
    EXPECT_EQ(badge->frame(), Rect(88, 72, 144, 144));
    EXPECT_EQ(label->frame(), Rect(88, 220, 43, 21));

    // A parent that grows moves what is pinned to it at the next layout.
    parent->setFrame({0, 0, 400, 480});
    parent->layoutIfNeeded();
    EXPECT_EQ(header->frame().width(), 368);
}

TEST(Layout, VisualFormatsBuildThePinsTheyDescribeAndBadOnesAreLoggedNotFatal) {
    auto parent = make<View>(Rect(0, 0, 300, 100));
    auto a = constrained(parent);
    auto b = constrained(parent);
    const std::map<std::string, std::shared_ptr<View>> views{{"a", a}, {"b", b}};
    parent->addConstraints(LayoutConstraint::constraintsWithVisualFormat("H:|-20-[a]-(gap)-[b(==44)]-10-|", {{"gap", 6}}, views));
    parent->addConstraints(LayoutConstraint::constraintsWithVisualFormat("V:|-(8)-[a(30)]", {}, views));
    parent->addConstraints(LayoutConstraint::constraintsWithVisualFormat("V:[a]-(4)-[b]-|", {}, views));
    parent->layoutIfNeeded();
    EXPECT_EQ(a->frame(), Rect(20, 8, 220, 30));
    EXPECT_EQ(b->frame(), Rect(246, 42, 44, 38));

    testing_support::CapturedLog log;
    EXPECT_TRUE(LayoutConstraint::constraintsWithVisualFormat("H:|-[missing]", {}, views).empty());
    EXPECT_TRUE(LayoutConstraint::constraintsWithVisualFormat("H:[a]-(x-[b]", {}, views).empty());
    EXPECT_EQ(log.messages(platform::LogLevel::warn).size(), 2u);
    // Two widths for one view: one holds, and the conflict is logged.
    parent->addConstraint(LayoutConstraint::make(a, A::width, LayoutRelation::equal, nullptr, A::notAnAttribute, 1, 50));
    parent->setNeedsLayout();
    parent->layoutIfNeeded();
    EXPECT_TRUE(a->frame().width() == 220 || a->frame().width() == 50) << a->frame().width();
    EXPECT_EQ(log.messages(platform::LogLevel::warn).size(), 3u);
}

TEST(Layout, LabelsWrapToTheirWidthAndStopAtTheirLineCount) {
    Label label;
    label.setText("one two three four five six");
    const Size wide = label.sizeThatFits({1000, 0});
    label.setNumberOfLines(0);
    const Size narrow = label.sizeThatFits({60, 0});
    EXPECT_EQ(wide.height, 21);
    EXPECT_LE(narrow.width, 60);
    EXPECT_GT(narrow.height, 3 * 21 - 1);
    label.setNumberOfLines(2);
    EXPECT_EQ(label.sizeThatFits({60, 0}).height, 42);
    label.setFont(platform::Font::boldSystemFont(17));
    EXPECT_GT(label.sizeThatFits({1000, 0}).width, wide.width);
}

TEST(Animations, ShowFinalValuesAtOnceMoveOnScreenAndCompleteInVirtualTime) {
    testing_support::VirtualTime time;
    auto view = make<View>(Rect(0, -50, 100, 50));
    bool finished = false;
    const double start = Animation::now();
    Animation::animate(1.0, [&] {
        view->setFrame({0, 0, 100, 50});
        view->setAlpha(0.5);
    }, [&](bool done) { finished = done; });
    EXPECT_EQ(view->frame().minY(), 0);
    EXPECT_EQ(view->alpha(), 0.5);
    EXPECT_EQ(view->presentationFrame(start + 0.5).minY(), -25);
    EXPECT_EQ(view->presentationAlpha(start), 1);
    EXPECT_TRUE(view->isAnimating(start + 0.5));
    time.advance(platform::milliseconds(999));
    platform::MainQueue::shared().runPending();
    EXPECT_FALSE(finished);
    time.advance(platform::milliseconds(1));
    platform::MainQueue::shared().runPending();
    EXPECT_TRUE(finished);
    EXPECT_EQ(view->presentationFrame(Animation::now()), view->frame());

    Animation::animate(1.0, [&] { Animation::performWithoutAnimation([&] { view->setFrame({5, 5, 10, 10}); }); });
    EXPECT_FALSE(view->isAnimating(Animation::now()));
}
