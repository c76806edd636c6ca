#include "belvakit/toolkit/keyboard_helper.hpp"
#include "belvakit/toolkit/layout_guide_applicator.hpp"
#include "belvakit/toolkit/list_helpers.hpp"
#include "belvakit/toolkit/pin.hpp"
#include "navigation_fixture.hpp"

using namespace belvakit;
using uikit::LayoutAttribute;
using uikit::Rect;

namespace {

class LayoutTest : public toolkit_testing::NavigationScreenTest {
protected:
    void SetUp() override {
        NavigationScreenTest::SetUp();
        container = screen->view();
        container->addSubview(box);
    }
    void layout() {
        container->setNeedsLayout();
        window->layoutTree();
    }
    void pinLeadingAndHeight() {
        Pin::pin(box, LayoutAttribute::leading, container, 0, container.get());
        Pin::pin(box, LayoutAttribute::height, nullptr, 50, container.get());
    }
    std::shared_ptr<uikit::LayoutConstraint> pinTop(double constant) {
        pinLeadingAndHeight();
        Pin::pin(box, LayoutAttribute::width, nullptr, 100, container.get());
        return Pin::pin(box, LayoutAttribute::top, container, constant, container.get());
    }

    std::shared_ptr<uikit::View> container;
    std::shared_ptr<uikit::View> box = uikit::make<uikit::View>(Rect{0, 0, 100, 50});
};

TEST_F(LayoutTest, PinPlacesTheViewByConstraintsInItsParent) {
    EXPECT_TRUE(box->translatesAutoresizingMaskIntoConstraints());
    const auto top = pinTop(12);
    EXPECT_FALSE(box->translatesAutoresizingMaskIntoConstraints());
    ASSERT_NE(top, nullptr);
    EXPECT_EQ(top->firstItem(), box);
    EXPECT_EQ(top->secondItem(), container);
    layout();
    EXPECT_EQ(box->frame(), (Rect{0, 12, 100, 50}));

    auto inner = uikit::make<uikit::View>();
    box->addSubview(inner);
    EXPECT_EQ(Pin::edges(inner, box, 5, box.get()).size(), 4u);
    layout();
    EXPECT_EQ(inner->frame(), (Rect{5, 5, 90, 40}));
    EXPECT_EQ(Pin::pin(inner, LayoutAttribute::top, box, 0, nullptr), nullptr);
}

TEST_F(LayoutTest, TheApplicatorMovesTheTopConstraintBelowTheBarsKeepingItsWholeConstant) {
    const auto old = pinTop(12.9);
    layout();
    EXPECT_EQ(box->frame().minY(), 12.9);

    CRVLayoutGuideApplicator applicator(screen, box, CRVLayoutGuideApplicator::topPosition);
    const auto& constraints = container->constraints();
    EXPECT_EQ(std::find(constraints.begin(), constraints.end(), old), constraints.end());
    EXPECT_TRUE(CRVLayoutGuideApplicator::constraintsBetweenView(*box, *container, 0).empty());
    ASSERT_EQ(applicator.appliedConstraints().size(), 1u);
    EXPECT_EQ(applicator.appliedConstraints()[0]->constant(), 12);
    EXPECT_TRUE(applicator.layoutGuide()->isHidden());
    layout();
    EXPECT_EQ(box->frame(), (Rect{0, 64 + 12, 100, 50}));

    // The guide follows the window: no status bar in landscape.
    window->setEnvironment(uikit::Environment::phoneLandscape());
    layout();
    EXPECT_EQ(box->frame().minY(), 44 + 12);
}

TEST_F(LayoutTest, WithoutAConstraintToMoveTheViewSitsRightOnTheGuide) {
    pinLeadingAndHeight();
    // A top constraint to another view is not the one to move.
    auto other = uikit::make<uikit::View>(Rect{0, 300, 10, 10});
    container->addSubview(other);
    Pin::pin(box, LayoutAttribute::top, other, LayoutAttribute::top, 0, container.get());
    const auto before = container->constraints().size();
    CRVLayoutGuideApplicator applicator(screen, box, CRVLayoutGuideApplicator::topPosition);
    EXPECT_EQ(container->constraints().size(), before + 1);
    ASSERT_EQ(applicator.appliedConstraints().size(), 1u);
    EXPECT_EQ(applicator.appliedConstraints()[0]->constant(), 0);
}

TEST_F(LayoutTest, TheBottomGuideKeepsTheViewAboveTheHomeIndicator) {
    window->setEnvironment(uikit::Environment::phoneLandscape());
    pinLeadingAndHeight();
    // container.bottom == box.bottom + 10: 10 points of space.
    Pin::pin(container, LayoutAttribute::bottom, box, 10, container.get());
    container->setTranslatesAutoresizingMaskIntoConstraints(true);
    layout();
    EXPECT_EQ(box->frame().maxY(), 375 - 10);

    CRVLayoutGuideApplicator applicator;
    applicator.viewController = screen;
    applicator.topLevelView = box;
    applicator.isTopLayoutGuide = false;
    applicator.awakeFromNib();
    layout();
    EXPECT_EQ(applicator.layoutGuide()->frame(), (Rect{0, 375 - 21, 667, 21}));
    EXPECT_EQ(box->frame().maxY(), 375 - 21 - 10);
}

TEST_F(LayoutTest, VisualFormatsAndConstraintMatching) {
    EXPECT_EQ(CRVLayoutGuideApplicator::visualConstraintForPosition(0, 8), "V:[layoutGuide]-(8)-[view]");
    EXPECT_EQ(CRVLayoutGuideApplicator::visualConstraintForPosition(1, -3), "V:[view]-(-3)-[layoutGuide]");
    const auto constraint = uikit::LayoutConstraint::make(container, LayoutAttribute::top, uikit::LayoutRelation::equal,
                                                          box, LayoutAttribute::top, 1, 0);
    EXPECT_TRUE(CRVLayoutGuideApplicator::isConstraint(*constraint, *box, *container));
    EXPECT_TRUE(CRVLayoutGuideApplicator::isConstraint(*constraint, *container, *box));
    EXPECT_FALSE(CRVLayoutGuideApplicator::isConstraint(*constraint, *box, *box));
}

TEST_F(LayoutTest, TheKeyboardHelperLiftsTheBottomConstraintAndTellsItsListeners) {
    // A bar pinned to the screen's bottom.
    pinLeadingAndHeight();
    const auto bottom = Pin::pin(box, LayoutAttribute::bottom, container, 0, container.get());
    layout();
    ASSERT_EQ(box->frame().maxY(), 667);

    std::vector<std::string> heard;
    {
        ConcreteKeyboardHelper helper(bottom, container);
        helper.keyboardWillShowEvent().addListener("a", [&](const double& height) {
            heard.push_back("show " + std::to_string(int(height)));
        });
        helper.keyboardWillAnimateShowingEvent().addListener("a", [&](const double& height) {
            heard.push_back("animate " + std::to_string(int(height)));
        });
        helper.keyboardWillHideEvent().addListener("a", [&](const double& height) {
            heard.push_back("hide " + std::to_string(int(height)));
        });
        window->showKeyboard(216, 0.25);
        EXPECT_TRUE(helper.keyboardVisible());
        EXPECT_EQ(helper.keyboardHeight(), 216);
        EXPECT_EQ(helper.absKeyboardHeight(), 216);
        EXPECT_EQ(bottom->constant(), -216);
        EXPECT_EQ(box->frame().maxY(), 667 - 216);

        window->hideKeyboard(0.25);
        EXPECT_FALSE(helper.keyboardVisible());
        EXPECT_EQ(bottom->constant(), 0);
        EXPECT_EQ(box->frame().maxY(), 667);

        // Over a bottom inset only the part above it counts.
        uikit::Environment environment;
        environment.safeAreaInsets.bottom = 34;
        window->setEnvironment(environment);
        window->showKeyboard(300, 0);
        EXPECT_EQ(helper.keyboardHeight(), 300 - 34);
        EXPECT_EQ(helper.absKeyboardHeight(), 300);
        window->hideKeyboard(0);
    }
    EXPECT_EQ(heard, (std::vector<std::string>{"show 216", "animate 216", "hide 216", "show 266", "animate 266",
                                               "hide 266"}));
    // Gone with the helper: nothing observes any more.
    window->showKeyboard(216, 0);
    EXPECT_EQ(bottom->constant(), 0);
}

TEST(EventListener, CallsEveryListenerByKeyAndAKeyReplaces) {
    EventListener<int> listener;
    int sum = 0;
    listener.addListener("one", [&](const int& value) { sum += value; });
    listener.addListener("two", [&](const int& value) { sum += 10 * value; });
    listener.notify(2);
    EXPECT_EQ(sum, 22);
    listener.addListener("two", [&](const int& value) { sum += 100 * value; });
    listener.removeListener("one");
    listener.notify(1);
    EXPECT_EQ(sum, 122);
    EXPECT_EQ(listener.items.size(), 1u);
}

TEST(ListHelpers, ExistsMapAndFilter) {
    const std::vector<int> numbers{3, 8, 5, 12};
    EXPECT_TRUE(exists(numbers, [](int n) { return n > 10; }));
    EXPECT_FALSE(exists(numbers, [](int n) { return n < 0; }));
    EXPECT_FALSE(exists(std::vector<int>{}, [](int) { return true; }));
    int looked = 0;
    EXPECT_TRUE(exists(numbers, [&](int n) { return ++looked, n == 8; }));
    EXPECT_EQ(looked, 2) << "stops at the first accepted";

    EXPECT_EQ(map(numbers, [](int n) { return n * 2; }), (std::vector<int>{6, 16, 10, 24}));
    EXPECT_EQ(map(numbers, [](int n) { return n % 2 ? std::optional(std::to_string(n)) : std::nullopt; }),
              (std::vector<std::string>{"3", "5"}));
    const auto pointers = map(numbers, [](int n) { return n > 4 ? std::make_shared<int>(n) : nullptr; });
    ASSERT_EQ(pointers.size(), 3u);
    EXPECT_EQ(*pointers[0], 8);
    EXPECT_EQ(filter(numbers, [](int n) { return n % 2 == 0; }), (std::vector<int>{8, 12}));
}

} // namespace
