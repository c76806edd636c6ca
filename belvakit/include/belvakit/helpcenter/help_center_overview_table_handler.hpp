#pragma once

#include "belvakit/helpcenter/help_center_overview_cells.hpp"
#include "belvakit/helpcenter/help_center_table_view_model.hpp"
#include "dastrel/help_center_provider.hpp"
#include "uikit/table_view.hpp"

#include <functional>
#include <memory>
#include <optional>

namespace belvakit {

class CRVHelpCenterOverviewTableHandler;

class CRVHelpCenterOverviewTableHandlerDelegate {
public:
    virtual ~CRVHelpCenterOverviewTableHandlerDelegate() = default;
    virtual void tableHandlerDidSelectArticle(CRVHelpCenterOverviewTableHandler& handler,
                                              const dastrel::CRVHelpCenterArticleViewModel& article,
                                              const uikit::IndexPath& indexPath) = 0;
    virtual void tableHandlerDidSelectSeeAllInSection(CRVHelpCenterOverviewTableHandler& handler,
                                                      const dastrel::CRVHelpCenterSectionViewModel& section,
                                                      const uikit::IndexPath& indexPath) = 0;
};

// The overview table's data source and delegate: fetches the overview, fills the rows, measures
// them, and turns a tap on See all into a loading row and a request to the delegate. Main thread.
class CRVHelpCenterOverviewTableHandler final : public uikit::TableViewDataSource,
                                                public uikit::TableViewDelegate,
                                                public std::enable_shared_from_this<CRVHelpCenterOverviewTableHandler> {
public:
    using Completion = std::function<void(std::optional<dastrel::ProviderError>)>;

    // Becomes the table's data source and delegate, with its cells, header and footer.
    static std::shared_ptr<CRVHelpCenterOverviewTableHandler> initWithTableView(const std::shared_ptr<uikit::TableView>& table);

    std::weak_ptr<CRVHelpCenterOverviewTableHandlerDelegate> delegate;
    std::weak_ptr<uikit::TableView> tableView;
    std::shared_ptr<CRVHelpCenterTableViewModel> tableViewModel = std::make_shared<CRVHelpCenterTableViewModel>();

    // Waits for the Help Center settings and the overview; the completion gets the error, also the
    // one an empty answer makes, on the main queue.
    void reloadWithHelpCenterOverviewModel(const dastrel::CRVHelpCenterOverviewContentModel& model, Completion completion);
    void updateWithData(CRVHelpCenterCategories categories);
    void updateSection(const dastrel::CRVHelpCenterSectionViewModel& section,
                       std::vector<dastrel::CRVHelpCenterArticleViewModel> withAllArticles,
                       const uikit::IndexPath& atIndexPath);
    static std::vector<uikit::IndexPath> newRowsFromIndexPath(const uikit::IndexPath& indexPath, int numberOfRows);

    // Data source.
    int numberOfSections(uikit::TableView&) override;
    int numberOfRowsInSection(uikit::TableView&, int section) override;
    std::shared_ptr<uikit::TableViewCell> cellForRowAt(uikit::TableView& table, const uikit::IndexPath& indexPath) override;
    // Delegate.
    double heightForRowAt(uikit::TableView& table, const uikit::IndexPath& indexPath) override;
    double estimatedHeightForRowAt(uikit::TableView& table, const uikit::IndexPath& indexPath) override;
    double heightForHeader(uikit::TableView& table, int section) override;
    double heightForFooter(uikit::TableView&, int) override { return 0; }
    std::shared_ptr<uikit::View> viewForHeader(uikit::TableView& table, int section) override;
    void didSelectRowAt(uikit::TableView& table, const uikit::IndexPath& indexPath) override;

    // Measuring views: prepared per call and never shown.
    const std::shared_ptr<CRVHelpCenterOverviewHeaderView> sizingHeader = std::make_shared<CRVHelpCenterOverviewHeaderView>();
    const std::shared_ptr<CRVHelpCenterOverviewSectionTableViewCell> sizingSectionCell =
        std::make_shared<CRVHelpCenterOverviewSectionTableViewCell>();
    const std::shared_ptr<CRVHelpCenterOverviewArticleTableViewCell> sizingArticleCell =
        std::make_shared<CRVHelpCenterOverviewArticleTableViewCell>();

private:
    void setupTableView(const std::shared_ptr<uikit::TableView>& table);
};

} // namespace belvakit
