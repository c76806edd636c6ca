// `render_frame`: painting offscreen a screen whose table holds 10,000 rows, scrolled to its
// middle, against the same screen whose table holds 100 rows, scrolled to its middle: a frame must
// cost what is on screen, not what is off it.
#include "harness.hpp"

#include "renderer/application.hpp"
#include "renderer/offscreen.hpp"
#include "renderer/qt_text_measurer.hpp"
#include "uikit/table_view.hpp"
#include "uikit/window.hpp"

#include <QApplication>
#include <QImage>

#include <memory>
#include <string>

namespace {

class Rows final : public uikit::TableViewDataSource {
public:
    explicit Rows(int count) : count_(count) {}
    int numberOfRowsInSection(uikit::TableView&, int) override { return count_; }
    std::shared_ptr<uikit::TableViewCell> cellForRowAt(uikit::TableView& table, const uikit::IndexPath& path) override {
        auto cell = table.dequeueReusableCell("Row", path);
        std::string title = "Ticket ";
        title.append(std::to_string(path.row)).append(": the parcel has not arrived");
        std::string detail = "Updated ";
        detail.append(std::to_string(path.row % 60)).append(" minutes ago");
        cell->textLabel()->setText(std::move(title));
        cell->detailTextLabel()->setText(std::move(detail));
        return cell;
    }

private:
    int count_;
};

// Qt's application lives for the whole run once drawing is first asked for.
void ensureApplication() {
    static int argc = 1;
    static char name[] = "belva-bench";
    static char* argv[] = {name, nullptr};
    static const auto application = [] {
        auto started = renderer::startApplication(argc, argv, true);
        renderer::installQtTextMeasurer();
        return started;
    }();
}

struct Screen {
    std::shared_ptr<uikit::Window> window = std::make_shared<uikit::Window>();
    std::shared_ptr<Rows> rows;
    std::shared_ptr<uikit::TableView> table;

    explicit Screen(int count) : rows(std::make_shared<Rows>(count)) {
        table = std::make_shared<uikit::TableView>(window->bounds());
        table->rowHeight = 60;
        table->registerCell("Row", [] {
            return std::make_shared<uikit::TableViewCell>(uikit::TableViewCellStyle::subtitle, "Row");
        });
        table->setDataSource(rows);
        window->addSubview(table);
        window->layoutTree();
        table->scrollToRow({0, count / 2}, uikit::TableViewScrollPosition::middle, false);
        window->layoutTree();
    }
};

void paint(benchmark::State& run, int rows) {
    ensureApplication();
    Screen screen(rows);
    for (auto _ : run) {
        // A frame as the window draws one: the tree laid out, then painted.
        screen.table->setNeedsLayout();
        QImage frame = renderer::renderToImage(*screen.window, 1);
        benchmark::DoNotOptimize(frame.constBits());
    }
}

void measured(benchmark::State& run) { paint(run, 10000); }
void baseline(benchmark::State& run) { paint(run, 100); }

} // namespace

std::vector<bench::Metric> bench::renderMetrics() { return {{"render_frame", 1.3, measured, baseline, nullptr}}; }
