#include "host_app.hpp"

#include "chat_screen.hpp"

#include "belvakit/entry/request_ui.hpp"
#include "belvakit/helpcenter/help_center_ui.hpp"
#include "belvakit/toolkit/theme.hpp"
#include "uikit/label.hpp"
#include "uikit/table_view.hpp"

namespace belvademo {

namespace {

using belvakit::CRVLegacyTheme;

class EntryRows final : public uikit::TableViewDataSource, public uikit::TableViewDelegate {
public:
    EntryRows(std::vector<EntryPoint> entries, uikit::ViewController& home) : entries_(std::move(entries)), home_(home) {}
    int numberOfRowsInSection(uikit::TableView&, int) override { return static_cast<int>(entries_.size()); }
    std::shared_ptr<uikit::TableViewCell> cellForRowAt(uikit::TableView& table, const uikit::IndexPath& path) override {
        const auto theme = CRVLegacyTheme::currentAppliedTheme();
        const auto& entry = entries_[static_cast<std::size_t>(path.row)];
        auto cell = table.dequeueReusableCell("Entry", path);
        cell->textLabel()->setText(entry.title);
        cell->textLabel()->setFont(theme->boldMainFont);
        cell->textLabel()->setTextColor(theme->primaryTextColor);
        cell->detailTextLabel()->setText(entry.subtitle);
        cell->detailTextLabel()->setFont(theme->metaTextFont);
        cell->detailTextLabel()->setTextColor(theme->secondaryTextColor);
        cell->setAccessibilityIdentifier(entry.identifier);
        return cell;
    }
    std::optional<std::string> titleForHeader(uikit::TableView&, int) override { return "Help and support"; }
    double heightForRowAt(uikit::TableView&, const uikit::IndexPath&) override { return 64; }
    void didSelectRowAt(uikit::TableView& table, const uikit::IndexPath& path) override {
        table.deselectRow(path, false);
        if (auto screen = entries_[static_cast<std::size_t>(path.row)].make())
            home_.navigationController()->pushViewController(screen, true);
    }

private:
    std::vector<EntryPoint> entries_;
    uikit::ViewController& home_;
};

// The host's own screen: a welcome above the support entries.
class HomeScreen final : public uikit::ViewController {
public:
    HomeScreen() { setTitle("Orbit Planner"); }
    std::string_view className() const override { return "DemoHomeScreen"; }

    void viewDidLoad() override {
        const auto theme = CRVLegacyTheme::currentAppliedTheme();
        view()->setBackgroundColor(theme->secondaryBackgroundColor);
        view()->setAccessibilityIdentifier("DemoHome");
        rows_ = std::make_shared<EntryRows>(entryPoints(), *this);
        table_ = uikit::make<uikit::TableView>(view()->bounds(), uikit::TableViewStyle::grouped);
        table_->registerCell("Entry", [] {
            return std::make_shared<uikit::TableViewCell>(uikit::TableViewCellStyle::subtitle, "Entry");
        });
        table_->setDataSource(rows_);
        table_->setDelegate(rows_);
        table_->setAccessibilityIdentifier("DemoEntries");
        table_->separatorColor = theme->separatorColor;

        auto welcome = uikit::make<uikit::Label>();
        welcome->setNumberOfLines(0);
        welcome->setFont(theme->subtitleFont);
        welcome->setTextColor(theme->secondaryTextColor);
        welcome->setText("Plans for every day, on every device. Stuck? Read the guides, write to us, or chat with Bela.");
        welcome->setAccessibilityIdentifier("DemoWelcome");
        welcome_ = welcome;
        header_ = uikit::make<uikit::View>();
        header_->addSubview(welcome);
        view()->addSubview(table_);
    }
    void viewWillLayoutSubviews() override {
        const auto bounds = view()->bounds();
        const double top = safeAreaInsets().top;
        table_->setFrame({0, top, bounds.width(), bounds.height() - top});
        const double textWidth = bounds.width() - 40;
        const double height = std::ceil(welcome_->sizeThatFits({textWidth, 1000}).height);
        welcome_->setFrame({20, 20, textWidth, height});
        header_->setFrame({0, 0, bounds.width(), height + 28});
        if (table_->tableHeaderView() != header_ || header_->frame().height() != headerHeight_) {
            headerHeight_ = header_->frame().height();
            table_->setTableHeaderView(header_);
        }
    }

private:
    std::shared_ptr<EntryRows> rows_;
    std::shared_ptr<uikit::TableView> table_;
    std::shared_ptr<uikit::View> header_;
    std::shared_ptr<uikit::Label> welcome_;
    double headerHeight_ = -1;
};

} // namespace

std::vector<EntryPoint> entryPoints() {
    std::vector<EntryPoint> entries;
    entries.push_back({"DemoEntryHelpCenter", "Help Center", "Guides and answers, searchable",
                       [] { return belvakit::CRVHelpCenterUi::buildHelpCenterOverview(); }});
    entries.push_back({"DemoEntryMyRequests", "My requests", "Your tickets and the team's answers",
                       [] { return belvakit::RequestUi::buildRequestList(); }});
    entries.push_back({"DemoEntryNewRequest", "New request", "Write to the support team",
                       [] { return belvakit::RequestUi::buildRequestUi(); }});
    entries.push_back({"DemoEntryChat", "Chat with Bela", "Leave a request in a chat",
                       [] { return ChatScreen::withSupportEngine(); }});
    return entries;
}

std::shared_ptr<uikit::NavigationController> makeHostApp() {
    return std::make_shared<uikit::NavigationController>(std::make_shared<HomeScreen>());
}

} // namespace belvademo
