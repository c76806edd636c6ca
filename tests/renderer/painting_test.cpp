#include "renderer/conversions.hpp"
#include "renderer/motion.hpp"
#include "renderer/offscreen.hpp"
#include "renderer/view_painter.hpp"
#include "scene.hpp"
#include "uikit/animation.hpp"
#include "uikit/probe.hpp"

#include <QPainter>

#include <filesystem>
#include <gtest/gtest.h>
#include <set>

namespace {

using namespace renderer_test;
using platform::Color;
using uikit::make;

constexpr double scale = 2;

using Painting = QtMeasuredTest;

// What shows behind a view: the nearest parent's background, else the page.
QColor behind(const uikit::View& view) {
    for (const uikit::View* parent = view.superview(); parent; parent = parent->superview())
        if (parent->backgroundColor() && parent->backgroundColor()->alpha == 1)
            return renderer::toQColor(*parent->backgroundColor());
    return Qt::transparent;
}

// The part of the view's frame that its clipping parents let show, in window points.
QRectF visiblePart(const uikit::View& view) {
    QRectF shown = renderer::toQRectF(view.convert(view.bounds(), nullptr));
    for (const uikit::View* parent = view.superview(); parent; parent = parent->superview())
        if (parent->clipsToBounds()) shown &= renderer::toQRectF(parent->convert(parent->bounds(), nullptr));
    return shown;
}

// Whether any pixel of the area (in points) differs from the background.
bool paintedIn(const QImage& image, const QRectF& area, const QColor& background) {
    const double ratio = image.devicePixelRatio();
    const QRect pixels = QRectF(area.x() * ratio, area.y() * ratio, area.width() * ratio, area.height() * ratio)
                             .toAlignedRect()
                             .intersected(image.rect());
    for (int y = pixels.top(); y <= pixels.bottom(); ++y)
        for (int x = pixels.left(); x <= pixels.right(); ++x)
            if (differs(image.pixelColor(x, y), background)) return true;
    return false;
}

// Checks that each shown view of the window shows something of its own; returns their kinds.
std::set<std::string> expectEveryShownViewPainted(uikit::Window& window) {
    const QImage image = renderer::renderToImage(window, scale);
    EXPECT_EQ(image.size(), QSize(750, 1334));
    std::set<std::string> kinds;
    for (uikit::View* view : uikit::findAll(window, [](const uikit::View&) { return true; })) {
        if (!uikit::isShown(*view)) continue;
        // A sliver of a view may hold none of what it draws: only views mostly in sight count.
        const QRectF area = visiblePart(*view);
        const double whole = view->frame().width() * view->frame().height();
        if (area.width() < 1 || area.height() < 1 || area.width() * area.height() < whole / 2) continue;
        kinds.insert(std::string(view->className()));
        EXPECT_TRUE(paintedIn(image, area, behind(*view)))
            << view->className() << " '" << view->accessibilityIdentifier() << "' at " << area.x() << ","
            << area.y() << " " << area.width() << "x" << area.height() << " shows nothing of its own";
    }
    return kinds;
}

TEST_F(Painting, EveryShownViewOfEveryKindPaintsItsFrame) {
    const auto scene = makeScene();
    const auto lists = makeListScene();
    time_.advance(platform::Duration(0));  // the page loads
    ASSERT_GT(lists->web->scrollView()->contentSize().height, 0);
    lists->window->layoutTree();

    auto kinds = expectEveryShownViewPainted(*scene->window);
    kinds.merge(expectEveryShownViewPainted(*lists->window));
    const std::set<std::string> everyKind{
        "UIWindow",    "UIView",          "UILabel",     "UIButton",        "UIImageView", "UIActivityIndicatorView",
        "UITextField", "UITextView",      "UIScrollView", "UINavigationBar", "UISearchBar", "UITableView",
        "UITableViewCell", "UITableViewHeaderFooterView", "UIStackView", "WKWebView"};
    for (const auto& kind : everyKind) EXPECT_TRUE(kinds.count(kind)) << kind << " is missing from the scenes";

    // Nothing of a hidden view, nor of rows scrolled out of their list.
    const QImage image = renderer::renderToImage(*scene->window, scale);
    const QRectF hidden = renderer::toQRectF(scene->hiddenView->convert(scene->hiddenView->bounds(), nullptr));
    EXPECT_FALSE(paintedIn(image, hidden, QColor(242, 242, 247)));
    EXPECT_FALSE(paintedIn(image, {16, 494 - 9, 343, 9}, QColor(242, 242, 247)))
        << "a row scrolled up out of the list was drawn outside it";
}

TEST_F(Painting, LooksFollowTheModelInTheWrittenPicture) {
    const auto scene = makeScene();
    testing_support::TemporaryDirectory directory;
    const std::string path = directory.path() + "/screen.png";
    ASSERT_TRUE(renderer::renderToPNG(*scene->window, path));
    const QImage image(QString::fromStdString(path));
    ASSERT_EQ(image.size(), QSize(750, 1334)) << "the window's scale of 2";
    const QColor screen(242, 242, 247);

    // Half-clear blue over the screen's grey.
    const QColor blended = pixelAt(image, 320, 194, scale);
    EXPECT_NEAR(blended.red(), 121, 3);
    EXPECT_NEAR(blended.blue(), 251, 3);

    // Rounded corners show the screen; the border is drawn on the edge, inside.
    EXPECT_FALSE(differs(pixelAt(image, 16.5, 176.5, scale), screen)) << "the button's corner is not rounded";
    EXPECT_FALSE(differs(pixelAt(image, 76, 176.2, scale), QColor(0, 122, 255), 40)) << "no border on the button's top";
    EXPECT_FALSE(differs(pixelAt(image, 60, 200, scale), Qt::white, 0)) << "the button's fill is not white";

    // The aspect-filled photo is clipped to its rounded frame: nothing of it left or right.
    EXPECT_FALSE(differs(pixelAt(image, 14, 272, scale), screen));
    EXPECT_FALSE(differs(pixelAt(image, 114, 272, scale), screen));
    EXPECT_TRUE(differs(pixelAt(image, 64, 272, scale), screen));

    // A template image takes its view's tint.
    const QColor tinted = pixelAt(image, 148, 272, scale);
    EXPECT_GT(tinted.red(), 200);
    EXPECT_LT(tinted.green(), 60);

    // The list scrolled by 66 points: row 3's top separator line (content y 87) sits at 21 in the list.
    const QColor separator = pixelAt(image, 200, 494 + 87 - 66 + 0.5, scale);
    EXPECT_FALSE(differs(separator, QColor(200, 200, 205), 8)) << separator.name().toStdString();
}

TEST_F(Painting, AnimationsAreDrawnInMotion) {
    auto window = make<uikit::Window>();
    window->setBackgroundColor(Color::white());
    auto toast = make<uikit::View>(uikit::Rect{0, 0, 100, 50});
    toast->setBackgroundColor(Color{0, 0, 0, 1});
    window->addSubview(toast);
    uikit::Animation::animate(1.0, [&] {
        toast->setFrame({200, 0, 100, 50});
        toast->setAlpha(0.5);
    });
    EXPECT_TRUE(renderer::isInMotion(*window, uikit::Animation::now()));
    time_.advance(platform::milliseconds(500));

    // Half way, eased: at x 100 to 200 and three quarters opaque.
    QImage image = renderer::renderToImage(*window, 1);
    EXPECT_FALSE(differs(pixelAt(image, 50, 25), Qt::white)) << "still drawn where it started";
    EXPECT_NEAR(pixelAt(image, 150, 25).red(), 64, 3);
    EXPECT_FALSE(differs(pixelAt(image, 250, 25), Qt::white)) << "already drawn where it ends";

    time_.advance(platform::milliseconds(600));
    EXPECT_FALSE(renderer::isInMotion(*window, uikit::Animation::now()));
    image = renderer::renderToImage(*window, 1);
    EXPECT_NEAR(pixelAt(image, 250, 25).red(), 128, 3);
    EXPECT_FALSE(differs(pixelAt(image, 150, 25), Qt::white));
}

TEST_F(Painting, SpinnersTurnWithTimeAndKeepTheWindowDrawing) {
    auto window = make<uikit::Window>();
    auto spinner = make<uikit::ActivityIndicatorView>(2);
    spinner->setFrame({10, 10, 40, 40});
    window->addSubview(spinner);
    EXPECT_FALSE(renderer::isInMotion(*window, 0)) << "a stopped spinner is hidden";

    spinner->startAnimating();
    EXPECT_TRUE(renderer::isInMotion(*window, 0));
    const QImage first = renderer::renderToImage(*spinner, 1);
    time_.advance(platform::milliseconds(1000 / 12 + 1));
    const QImage next = renderer::renderToImage(*spinner, 1);
    ASSERT_FALSE(first.isNull());
    EXPECT_NE(first, next) << "the spinner did not turn";
    time_.advance(platform::milliseconds(1000 - 1000 / 12 - 1));
    EXPECT_EQ(first, renderer::renderToImage(*spinner, 1)) << "one turn a second";

    spinner->stopAnimating();
    EXPECT_FALSE(renderer::isInMotion(*window, uikit::Animation::now()));
}

// Counts the rows it is asked to draw, through the drawer registry.
class CountedRow final : public uikit::View {
public:
    using View::View;
    std::string_view className() const override { return "BelvaTestCountedRow"; }
};

TEST_F(Painting, OnlyViewsInSightAreDrawn) {
    int drawnRows = 0;
    renderer::registerContentDrawer("BelvaTestCountedRow", [&](const uikit::View&, QPainter& painter,
                                                               const renderer::PaintContext& context) {
        ++drawnRows;
        painter.fillRect(context.bounds.adjusted(0, 0, 0, -1), Qt::green);
    });
    auto window = make<uikit::Window>();
    auto list = make<uikit::ScrollView>(uikit::Rect{0, 0, 375, 667});
    constexpr int rows = 10000;
    for (int i = 0; i < rows; ++i) {
        auto row = make<CountedRow>(uikit::Rect{0, 44.0 * i, 375, 44});
        row->addSubview(make<uikit::Label>(uikit::Rect{16, 12, 200, 20}));
        list->addSubview(row);
    }
    list->setContentSize({375, 44.0 * rows});
    list->setContentOffset({0, 44.0 * rows / 2 + 10});
    window->addSubview(list);

    QImage image(375, 667, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    renderer::ViewPainter views(painter);
    views.paint(*window);
    painter.end();
    renderer::unregisterContentDrawer("BelvaTestCountedRow");

    // 667 points from 10 into a row: 16 rows show, partly or wholly.
    EXPECT_EQ(drawnRows, 16);
    EXPECT_LT(views.drawnViews(), 40u);
    EXPECT_EQ(image.pixelColor(100, 5), QColor(Qt::green));
    EXPECT_EQ(image.pixelColor(100, 33), QColor(Qt::white)) << "row boundary 44 - 10 - 1 is not where expected";
}

TEST_F(Painting, LongTextStaysInsideItsLabel) {
    auto window = make<uikit::Window>();
    window->setBackgroundColor(Color::white());
    auto label = make<uikit::Label>(uikit::Rect{10, 10, 120, 24});
    label->setText("A single line far too long to fit in the label's width");
    window->addSubview(label);
    auto wrapped = make<uikit::Label>(uikit::Rect{10, 50, 120, 44});
    wrapped->setNumberOfLines(0);
    wrapped->setText("Many words that wrap onto more lines than the label has room for in its height");
    window->addSubview(wrapped);
    const QImage image = renderer::renderToImage(*window, 1);
    EXPECT_TRUE(paintedIn(image, {10, 10, 120, 24}, Qt::white));
    EXPECT_FALSE(paintedIn(image, {130, 10, 200, 24}, Qt::white)) << "text drawn past the label's right edge";
    EXPECT_TRUE(paintedIn(image, {10, 50, 120, 44}, Qt::white));
    EXPECT_FALSE(paintedIn(image, {10, 94, 300, 100}, Qt::white)) << "lines drawn below the label";
}

TEST_F(Painting, AFocusedInputBringsAKeyboardIntoTheBandTheWindowKeeps) {
    auto window = make<uikit::Window>();
    window->setBackgroundColor(Color::white());
    auto field = make<uikit::TextField>(uikit::Rect{16, 100, 343, 40});
    window->addSubview(field);
    const auto keyboardShown = [&] {
        const QImage image = renderer::renderToImage(*window, 1);
        // The keys are light on a grey band: both show across the bottom 216 points.
        int grey = 0, light = 0;
        for (int y = 667 - 216; y < 667; y += 3)
            for (int x = 0; x < 375; x += 3) {
                const QColor colour = image.pixelColor(x, y);
                grey += !differs(colour, QColor(209, 212, 217), 6);
                light += colour == QColor(Qt::white);
            }
        EXPECT_FALSE(differs(image.pixelColor(200, 300), Qt::white)) << "the keyboard reached above its band";
        return grey > 500 && light > 500;
    };
    EXPECT_FALSE(keyboardShown());
    ASSERT_TRUE(field->becomeFirstResponder());
    ASSERT_EQ(window->keyboardHeight(), 216);
    EXPECT_TRUE(keyboardShown());
    field->resignFirstResponder();
    EXPECT_FALSE(keyboardShown());
}

TEST_F(Painting, ASpinnerKeepsItsSizeInALargerFrame) {
    auto window = make<uikit::Window>();
    window->setBackgroundColor(Color::white());
    auto spinner = make<uikit::ActivityIndicatorView>(2);
    spinner->setFrame({0, 0, 375, 667});
    spinner->startAnimating();
    window->addSubview(spinner);
    const QImage image = renderer::renderToImage(*window, 1);
    EXPECT_TRUE(paintedIn(image, {177, 323, 21, 21}, Qt::white));
    EXPECT_FALSE(paintedIn(image, {0, 0, 375, 320}, Qt::white)) << "the spinner grew with its frame";
    EXPECT_FALSE(paintedIn(image, {0, 346, 375, 321}, Qt::white));
}

TEST_F(Painting, BadInputDrawsNothingAndNeverCrashes) {
    auto window = make<uikit::Window>();
    auto broken = std::make_shared<platform::Image>();
    broken->width = 50;
    broken->height = 40;
    broken->orientation = platform::ImageOrientation::right;
    broken->rgba.resize(10);  // far fewer pixels than it claims
    auto image = make<uikit::ImageView>(broken);
    window->addSubview(image);
    auto odd = make<uikit::View>(uikit::Rect{std::nan(""), 0, 10, 10});
    odd->setBackgroundColor(Color{1, 0, 0, 1});
    window->addSubview(odd);
    auto round = make<uikit::View>(uikit::Rect{60, 60, 30, 30});
    round->setCornerRadius(1e9);
    round->setBorderWidth(-3);
    round->setBackgroundColor(Color{2, -1, std::nan(""), 1});
    window->addSubview(round);
    auto button = make<uikit::Button>(uikit::ButtonType::custom, uikit::Rect{0, 100, 0, 0});
    button->setImage(broken);
    window->addSubview(button);

    const QImage drawn = renderer::renderToImage(*window, 1);
    ASSERT_FALSE(drawn.isNull());
    EXPECT_EQ(drawn.pixelColor(75, 75), QColor(255, 0, 0)) << "colour components are clamped";
    EXPECT_EQ(drawn.pixelColor(25, 20).alpha(), 0) << "an image without its pixels drew something";

    EXPECT_TRUE(renderer::renderToImage(*make<uikit::View>(), 1).isNull());
    EXPECT_TRUE(renderer::renderToImage(*window, 0).isNull());
    EXPECT_TRUE(renderer::renderToImage(*make<uikit::View>(uikit::Rect{0, 0, 1e7, 10}), 1).isNull());
    EXPECT_FALSE(renderer::renderToPNG(*window, "/nonexistent-directory/shot.png"));
    // Where nothing was drawn a picture is white, not clear.
    testing_support::TemporaryDirectory directory;
    ASSERT_TRUE(renderer::renderToPNG(*window, directory.path() + "/broken.png", 1));
    EXPECT_EQ(QImage(QString::fromStdString(directory.path() + "/broken.png")).pixelColor(25, 20), QColor(Qt::white));
}

} // namespace
