// `ui_layout`: laying out a 40-view screen (a bar with a title and two buttons, a header, ten rows of
// a box, a label and an image, and a footer of a field and a button pinned by constraints) after its
// window changed width, against setting the same 40 frames by hand.
#include "harness.hpp"

#include "uikit/button.hpp"
#include "uikit/image_view.hpp"
#include "uikit/label.hpp"
#include "uikit/layout_constraint.hpp"
#include "uikit/text_input.hpp"

#include <memory>
#include <vector>

namespace {

using namespace uikit;
using A = LayoutAttribute;

struct Screen {
    std::shared_ptr<View> root;
    std::vector<View*> all;  // every view below the root, in tree order

    template <class T>
    std::shared_ptr<T> add(const std::shared_ptr<View>& parent, Rect frame, unsigned mask) {
        auto view = std::make_shared<T>();
        view->setFrame(frame);
        view->setAutoresizingMask(mask);
        parent->addSubview(view);
        all.push_back(view.get());
        return view;
    }
};

Screen buildScreen() {
    Screen screen;
    screen.root = std::make_shared<View>(Rect(0, 0, 375, 667));
    constexpr unsigned stretch = Autoresizing::flexibleWidth;
    auto bar = screen.add<View>(screen.root, {0, 0, 375, 64}, stretch);
    screen.add<Label>(bar, {80, 20, 215, 44}, stretch)->setText("Requests");
    screen.add<Button>(bar, {8, 27, 60, 30}, Autoresizing::flexibleRightMargin)->setTitle("Back");
    screen.add<Button>(bar, {307, 27, 60, 30}, Autoresizing::flexibleLeftMargin)->setTitle("Add");
    auto content = screen.add<View>(screen.root, {0, 64, 375, 543}, stretch | Autoresizing::flexibleHeight);
    screen.add<Label>(content, {16, 8, 343, 24}, stretch)->setText("Your tickets");
    for (int row = 0; row < 10; ++row) {
        auto box = screen.add<View>(content, {0, 40.0 + row * 50, 375, 50}, stretch);
        screen.add<Label>(box, {60, 5, 299, 40}, stretch)->setText("Ticket " + std::to_string(row));
        screen.add<ImageView>(box, {12, 5, 40, 40}, Autoresizing::flexibleRightMargin);
    }
    // The footer's field and button are pinned to it and to each other.
    auto footer = screen.add<View>(screen.root, {0, 607, 375, 60}, stretch | Autoresizing::flexibleTopMargin);
    auto field = screen.add<TextField>(footer, {}, Autoresizing::none);
    auto send = screen.add<Button>(footer, {}, Autoresizing::none);
    send->setTitle("Send");
    for (const auto& view : std::vector<std::shared_ptr<View>>{field, send})
        view->setTranslatesAutoresizingMaskIntoConstraints(false);
    const auto pin = [](auto first, A a, auto second, A b, double constant) {
        return LayoutConstraint::make(first, a, LayoutRelation::equal, second, b, 1, constant);
    };
    footer->addConstraints({pin(field, A::leading, footer, A::leading, 12), pin(field, A::centerY, footer, A::centerY, 0),
                            pin(field, A::height, nullptr, A::notAnAttribute, 36),
                            pin(send, A::trailing, footer, A::trailing, -12), pin(send, A::centerY, footer, A::centerY, 0),
                            pin(send, A::width, nullptr, A::notAnAttribute, 60),
                            pin(field, A::trailing, send, A::leading, -8)});
    screen.add<View>(footer, {0, 0, 375, 1}, stretch);  // the separator
    screen.root->layoutIfNeeded();
    return screen;
}

void measured(benchmark::State& run) {
    Screen screen = buildScreen();
    double width = 375;
    for (auto _ : run) {
        width = width == 375 ? 376 : 375;
        screen.root->setFrame({0, 0, width, 667});
        screen.root->layoutIfNeeded();
        benchmark::DoNotOptimize(screen.all.back()->frame());
    }
}

// The floor: the same 40 frames, computed once for each width, set one by one on a tree that
// neither resizes nor lays out by itself.
void baseline(benchmark::State& run) {
    Screen screen = buildScreen();
    std::vector<Rect> frames[2];
    for (int side = 0; side < 2; ++side) {
        screen.root->setFrame({0, 0, side == 0 ? 376.0 : 375.0, 667});
        screen.root->layoutIfNeeded();
        for (const View* view : screen.all) frames[side].push_back(view->frame());
    }
    for (View* view : screen.all) {
        view->setAutoresizingMask(Autoresizing::none);
        while (!view->constraints().empty()) view->removeConstraint(view->constraints().front());
    }
    int side = 0;
    for (auto _ : run) {
        side = 1 - side;
        screen.root->setFrame({0, 0, side == 0 ? 376.0 : 375.0, 667});
        for (std::size_t i = 0; i < screen.all.size(); ++i) screen.all[i]->setFrame(frames[side][i]);
        benchmark::DoNotOptimize(screen.all.back()->frame());
    }
}

} // namespace

std::vector<bench::Metric> bench::uiMetrics() { return {{"ui_layout", 3.0, measured, baseline, nullptr}}; }
