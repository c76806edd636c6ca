#pragma once

#include "uikit/button.hpp"
#include "uikit/image_view.hpp"
#include "uikit/label.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/scroll_view.hpp"
#include "uikit/search_bar.hpp"
#include "uikit/stack_view.hpp"
#include "uikit/table_view.hpp"
#include "uikit/text_input.hpp"
#include "uikit/web_view.hpp"
#include "uikit/window.hpp"

#include "renderer/qt_text_measurer.hpp"
#include "test_support.hpp"

#include <QImage>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace renderer_test {

// A phone screen under a navigation bar holding every kind of view the kit has, in the looks
// the renderer must draw: styled text, images, corners, borders, alpha, clipping, scrolling.
struct Scene {
    std::shared_ptr<uikit::Window> window;
    std::shared_ptr<uikit::NavigationController> navigation;
    std::shared_ptr<uikit::View> screen;
    std::shared_ptr<uikit::Label> styledLabel;
    std::shared_ptr<uikit::Button> sendButton;
    std::shared_ptr<uikit::Button> disabledButton;
    std::shared_ptr<uikit::ImageView> photo;
    std::shared_ptr<uikit::ImageView> templateIcon;
    std::shared_ptr<uikit::ActivityIndicatorView> spinner;
    std::shared_ptr<uikit::TextField> emptyField;
    std::shared_ptr<uikit::TextField> typedField;
    std::shared_ptr<uikit::TextView> notes;
    std::shared_ptr<uikit::ScrollView> list;
    std::vector<std::shared_ptr<uikit::View>> rows;
    std::shared_ptr<uikit::View> hiddenView;
    std::shared_ptr<uikit::View> halfClear;
    std::shared_ptr<uikit::View> toast;
    int sends = 0;
};

// Needs a Window in the main queue's current time; lays the tree out.
std::unique_ptr<Scene> makeScene();

// What a web view's delegate was asked, in order.
struct RecordingNavigationDelegate final : uikit::WebViewNavigationDelegate {
    std::vector<std::pair<uikit::NavigationType, std::string>> asked;
    void decidePolicyForNavigationAction(uikit::WebView&, const uikit::NavigationAction& action,
                                         std::function<void(uikit::NavigationActionPolicy)> decide) override {
        asked.emplace_back(action.navigationType, action.url.absoluteString());
        decide(uikit::NavigationActionPolicy::allow);
    }
};

// The composite kinds: a search bar over a table of cells with a section header, a stack of
// labels, and a web view showing a page. The page loads on the main queue: advance time by zero.
struct ListScene {
    std::shared_ptr<uikit::Window> window;
    std::shared_ptr<uikit::SearchBar> searchBar;
    std::shared_ptr<uikit::TableView> table;
    std::shared_ptr<uikit::TableViewDataSource> rows;
    std::shared_ptr<uikit::StackView> stack;
    std::shared_ptr<uikit::WebView> web;
    std::shared_ptr<RecordingNavigationDelegate> navigation = std::make_shared<RecordingNavigationDelegate>();
};
std::unique_ptr<ListScene> makeListScene();
extern const char* const sampleArticle;

platform::ImagePtr gradientImage(int width, int height);
// Opaque inside a circle, clear outside.
platform::ImagePtr discMask(int size);

// The colour of the pixel under a window point in an image drawn at `scale`.
QColor pixelAt(const QImage& image, double x, double y, double scale = 1);
// Whether the colours differ by more than `tolerance` in a channel.
bool differs(const QColor& a, const QColor& b, int tolerance = 4);

// Measures text with Qt, on virtual time.
class QtMeasuredTest : public testing::Test {
protected:
    QtMeasuredTest() : previousMeasurer_(renderer::installQtTextMeasurer()) {}
    ~QtMeasuredTest() override { uikit::setTextMeasurer(previousMeasurer_); }

    testing_support::VirtualTime time_;
    std::shared_ptr<const uikit::TextMeasurer> previousMeasurer_;
};

} // namespace renderer_test
