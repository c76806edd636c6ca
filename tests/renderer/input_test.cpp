#include "renderer/input.hpp"
#include "renderer/kit_widget.hpp"
#include "scene.hpp"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

#include <gtest/gtest.h>

namespace {

using namespace renderer_test;
using uikit::make;

class Input : public QtMeasuredTest {
protected:
    void click(QWidget& widget, QPointF at, QPointF releasedAt) {
        QMouseEvent press(QEvent::MouseButtonPress, at, widget.mapToGlobal(at), Qt::LeftButton, Qt::LeftButton,
                          Qt::NoModifier);
        QApplication::sendEvent(&widget, &press);
        QMouseEvent release(QEvent::MouseButtonRelease, releasedAt, widget.mapToGlobal(releasedAt), Qt::LeftButton,
                            Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&widget, &release);
    }
    void click(QWidget& widget, QPointF at) { click(widget, at, at); }
    void key(QWidget& widget, int code, const QString& text = {}) {
        QKeyEvent event(QEvent::KeyPress, code, Qt::NoModifier, text);
        QApplication::sendEvent(&widget, &event);
    }
    static QPointF centreOf(const uikit::View& view) {
        const uikit::Rect frame = view.convert(view.bounds(), nullptr);
        return {frame.midX(), frame.midY()};
    }
};

TEST_F(Input, TheDrawnKeyboardsKeysTypeAndItsBandHidesWhatIsUnderIt) {
    auto window = make<uikit::Window>();
    auto field = make<uikit::TextField>(uikit::Rect{16, 100, 343, 40});
    window->addSubview(field);
    int hiddenTaps = 0;
    auto hidden = make<uikit::Button>(uikit::ButtonType::custom, uikit::Rect{0, 500, 375, 167});
    hidden->addTarget(uikit::ControlEvent::touchUpInside, [&] { ++hiddenTaps; });
    window->addSubview(hidden);
    renderer::KitWidget widget(window);
    widget.show();

    click(widget, {187, 600});
    EXPECT_EQ(hiddenTaps, 1) << "without a keyboard the button takes the click";
    ASSERT_TRUE(field->becomeFirstResponder());
    // Rows of 216 points from 451: q w e … along the top, then a s d …, z x c …, and the space bar.
    const double unit = (375 - 6 - 54) / 10.0;
    const auto letterAt = [&](int row, double column) { return QPointF(3 + column * (unit + 6) + unit / 2, 451 + 8 + 21 + row * 53); };
    click(widget, letterAt(0, 5));   // y
    click(widget, letterAt(1, 0.5)); // a
    click(widget, letterAt(2, 3.5)); // c
    click(widget, {187, 451 + 8 + 21 + 3 * 53});  // space
    click(widget, letterAt(0, 0));   // q
    EXPECT_EQ(field->text(), "yac q");
    click(widget, {375 - 3 - unit * 0.6, 451 + 8 + 21 + 2 * 53});  // delete
    EXPECT_EQ(field->text(), "yac ");
    click(widget, {1, 451 + 4});  // the band, between keys
    EXPECT_EQ(hiddenTaps, 1) << "a click on the keyboard reached the button under it";
    int returns = 0;
    field->shouldReturn = [&] {
        ++returns;
        return true;
    };
    click(widget, {375 - 3 - unit, 451 + 8 + 21 + 3 * 53});  // return
    EXPECT_EQ(returns, 1);
}

TEST_F(Input, AClickReachesTheButtonUnderItAndTheWidgetShowsWhatTheKitChanged) {
    const auto scene = makeScene();
    renderer::KitWidget widget(scene->window);
    widget.show();
    EXPECT_EQ(widget.size(), QSize(375, 667));

    click(widget, centreOf(*scene->sendButton));
    EXPECT_EQ(scene->sends, 1);
    // On the button's title, a subview that takes no taps itself: still the button's.
    click(widget, centreOf(*scene->sendButton->titleLabel()));
    EXPECT_EQ(scene->sends, 2);

    click(widget, centreOf(*scene->sendButton) + QPointF(0, 40));
    EXPECT_EQ(scene->sends, 2) << "a click beside the button";
    click(widget, centreOf(*scene->sendButton), centreOf(*scene->sendButton) + QPointF(0, 30));
    EXPECT_EQ(scene->sends, 2) << "a drag is not a click";

    int disabledTaps = 0;
    scene->disabledButton->addTarget(uikit::ControlEvent::touchUpInside, [&] { ++disabledTaps; });
    click(widget, centreOf(*scene->disabledButton));
    EXPECT_EQ(disabledTaps, 0);

    // What the kit changes the widget shows: the half-clear blue view turned red.
    EXPECT_NEAR(widget.grab().toImage().pixelColor(320, 194).blue(), 251, 3);
    scene->halfClear->setBackgroundColor(platform::Color{1, 0, 0, 1});
    const QColor after = widget.grab().toImage().pixelColor(320, 194);
    EXPECT_NEAR(after.red(), 248, 3);
    EXPECT_NEAR(after.blue(), 123, 3);
}

TEST_F(Input, TypedKeysReachTheFocusedInput) {
    const auto scene = makeScene();
    renderer::KitWidget widget(scene->window);
    int returns = 0;
    scene->emptyField->shouldReturn = [&] {
        ++returns;
        return true;
    };

    click(widget, centreOf(*scene->emptyField));
    ASSERT_TRUE(scene->emptyField->isFirstResponder());
    key(widget, Qt::Key_H, "h");
    key(widget, Qt::Key_I, "i");
    key(widget, Qt::Key_Eacute, QString::fromUtf8("\u00e9"));
    EXPECT_EQ(scene->emptyField->text(), "hi\u00e9");
    key(widget, Qt::Key_Backspace, "\b");
    EXPECT_EQ(scene->emptyField->text(), "hi") << "one character, both its bytes";
    key(widget, Qt::Key_C, QString(QChar(3)));  // control-C
    EXPECT_EQ(scene->emptyField->text(), "hi");
    key(widget, Qt::Key_Return, "\r");
    EXPECT_EQ(returns, 1);
    EXPECT_EQ(scene->emptyField->text(), "hi");
    EXPECT_EQ(scene->typedField->text(), "hello@example.com") << "only the focused field takes keys";

    click(widget, centreOf(*scene->notes));
    key(widget, Qt::Key_A, "a");
    key(widget, Qt::Key_Return, "\r");
    key(widget, Qt::Key_B, "b");
    EXPECT_EQ(scene->notes->text().substr(scene->notes->text().size() - 3), "a\nb") << "a text view takes new lines";

    key(widget, Qt::Key_Escape);
    EXPECT_EQ(scene->window->firstResponder(), nullptr);
    EXPECT_FALSE(renderer::typeKey(*scene->window, Qt::Key_X, "x")) << "no input to type into";
}

TEST_F(Input, TheWheelScrollsTheInnermostListThatCanMove) {
    auto window = make<uikit::Window>();
    auto outer = make<uikit::ScrollView>(uikit::Rect{0, 0, 375, 667});
    outer->setContentSize({375, 2000});
    auto inner = make<uikit::ScrollView>(uikit::Rect{0, 100, 375, 200});
    inner->setContentSize({375, 300});
    outer->addSubview(inner);
    window->addSubview(outer);
    renderer::KitWidget widget(window);

    const auto wheel = [&](QPointF at, int notches) {
        QWheelEvent event(at, widget.mapToGlobal(at), QPoint(), QPoint(0, -120 * notches), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&widget, &event);
    };
    wheel({100, 150}, 1);
    EXPECT_EQ(inner->contentOffset().y, 40);
    EXPECT_EQ(outer->contentOffset().y, 0);
    wheel({100, 150}, 5);
    EXPECT_EQ(inner->contentOffset().y, 100) << "kept within its content";
    wheel({100, 150}, 1);
    EXPECT_EQ(outer->contentOffset().y, 40) << "at its end, the list around it scrolls";
    wheel({100, 500}, -2);
    EXPECT_EQ(outer->contentOffset().y, 0);

    EXPECT_FALSE(renderer::scrollAt(*window, {100, 150}, 0, std::nan("")));
}

} // namespace
