#include "belvakit/helpcenter/help_center_overview_table_handler.hpp"

#include "belvakit/helpcenter/help_center_error_handler_utils.hpp"
#include "platform/dispatch_group.hpp"
#include "platform/main_queue.hpp"

namespace belvakit {

namespace {
constexpr const char* sectionIdentifier = "section";
constexpr const char* articleIdentifier = "article";
constexpr const char* loadingIdentifier = "loading";
constexpr const char* seeAllIdentifier = "seeAll";
constexpr const char* spacerIdentifier = "spacer";
} // namespace

std::shared_ptr<CRVHelpCenterOverviewTableHandler> CRVHelpCenterOverviewTableHandler::initWithTableView(
    const std::shared_ptr<uikit::TableView>& table) {
    auto handler = std::make_shared<CRVHelpCenterOverviewTableHandler>();
    handler->tableView = table;
    handler->setupTableView(table);
    return handler;
}

void CRVHelpCenterOverviewTableHandler::setupTableView(const std::shared_ptr<uikit::TableView>& table) {
    if (!table) return;
    table->setDataSource(shared_from_this());
    table->setDelegate(shared_from_this());
    table->setTableFooterView(std::make_shared<CRVHelpCenterOverviewFooterView>());
    table->separatorStyle = uikit::TableViewCellSeparatorStyle::none;
    table->registerCell<CRVHelpCenterOverviewSectionTableViewCell>(sectionIdentifier);
    table->registerCell<CRVHelpCenterOverviewArticleTableViewCell>(articleIdentifier);
    table->registerCell<CRVHelpCenterOverviewLoadingTableViewCell>(loadingIdentifier);
    table->registerCell<CRVHelpCenterOverviewSeeAllTableViewCell>(seeAllIdentifier);
    table->registerCell<CRVHelpCenterOverviewSpacerTableViewCell>(spacerIdentifier);
}

void CRVHelpCenterOverviewTableHandler::reloadWithHelpCenterOverviewModel(
    const dastrel::CRVHelpCenterOverviewContentModel& model, Completion completion) {
    // A fresh model for every fetch, so that a retry never shows an old expansion.
    tableViewModel = std::make_shared<CRVHelpCenterTableViewModel>();
    tableViewModel->maxNumberOfUnexpandedArticles = model.initialNumberOfArticles;

    struct Shared {
        platform::DispatchGroup group;
        std::string locale;
        std::optional<dastrel::ProviderError> error;
    };
    auto shared = std::make_shared<Shared>();
    std::weak_ptr<CRVHelpCenterOverviewTableHandler> weakSelf = weak_from_this();

    // The settings are only waited for: the overview shows once they have been refreshed.
    shared->group.enter();
    dastrel::CRVHelpCenterSettingsProvider::getHelpCenterSettingsWithCallback([shared](auto settings) {
        if (settings && settings->locale) shared->locale = *settings->locale;
        shared->group.leave();
    });

    shared->group.enter();
    dastrel::CRVHelpCenterProvider::make()->getHelpCenterOverviewWithHelpCenterOverviewModel(
        model, [shared, weakSelf, model](auto categories, auto error) {
            if (error) {
                shared->error = error;
            } else if (categories && !categories->empty()) {
                if (auto self = weakSelf.lock()) self->updateWithData(std::move(*categories));
            } else {
                shared->error = CRVHelpCenterErrorHandlerUtils::buildErrorForEmptyReturnForHelpCenterModel(model);
            }
            shared->group.leave();
        });

    shared->group.notify(platform::MainQueue::shared(), [shared, weakSelf, completion = std::move(completion)] {
        if (!weakSelf.lock()) return;
        if (completion) completion(shared->error);
    });
}

void CRVHelpCenterOverviewTableHandler::updateWithData(CRVHelpCenterCategories categories) {
    tableViewModel->updateWithCategories(std::move(categories));
    tableViewModel->rebuildLookup();
    if (auto table = tableView.lock()) table->reloadData();
}

void CRVHelpCenterOverviewTableHandler::updateSection(const dastrel::CRVHelpCenterSectionViewModel& section,
                                                      std::vector<dastrel::CRVHelpCenterArticleViewModel> withAllArticles,
                                                      const uikit::IndexPath& atIndexPath) {
    tableViewModel->updateSection(section, std::move(withAllArticles), atIndexPath);
    if (auto table = tableView.lock()) table->reloadData();
}

std::vector<uikit::IndexPath> CRVHelpCenterOverviewTableHandler::newRowsFromIndexPath(const uikit::IndexPath& indexPath,
                                                                                    int numberOfRows) {
    std::vector<uikit::IndexPath> rows;
    for (int offset = 0; offset < numberOfRows; ++offset) rows.push_back({indexPath.section, indexPath.row + offset});
    return rows;
}

int CRVHelpCenterOverviewTableHandler::numberOfSections(uikit::TableView&) {
    return tableViewModel->numberOfTableSecitons();
}

int CRVHelpCenterOverviewTableHandler::numberOfRowsInSection(uikit::TableView&, int section) {
    return tableViewModel->numberOfRowsInTableSection(section);
}

std::shared_ptr<uikit::TableViewCell> CRVHelpCenterOverviewTableHandler::cellForRowAt(uikit::TableView& table,
                                                                                     const uikit::IndexPath& indexPath) {
    const auto& model = *tableViewModel;
    switch (model.cellTypeForIndexPath(indexPath)) {
    case CRVHelpCenterCellTypeSection: {
        auto cell = table.dequeueReusableCell(sectionIdentifier, indexPath);
        auto* section = model.sectionAtIndexPath(indexPath);
        if (auto* typed = dynamic_cast<CRVHelpCenterOverviewSectionTableViewCell*>(cell.get()); typed && section)
            typed->prepareWithModel(*section, indexPath);
        return cell;
    }
    case CRVHelpCenterCellTypeArticle: {
        auto cell = table.dequeueReusableCell(articleIdentifier, indexPath);
        auto* article = model.articleAtIndexPath(indexPath);
        if (auto* typed = dynamic_cast<CRVHelpCenterOverviewArticleTableViewCell*>(cell.get()); typed && article)
            typed->prepareWithModel(*article);
        return cell;
    }
    case CRVHelpCenterCellTypeLoading: {
        auto cell = table.dequeueReusableCell(loadingIdentifier, indexPath);
        if (auto* typed = dynamic_cast<CRVHelpCenterOverviewLoadingTableViewCell*>(cell.get()))
            typed->spinner->startAnimating();
        return cell;
    }
    case CRVHelpCenterCellTypeSeeAll: {
        auto cell = table.dequeueReusableCell(seeAllIdentifier, indexPath);
        auto* section = model.sectionAtIndexPath(indexPath);
        if (auto* typed = dynamic_cast<CRVHelpCenterOverviewSeeAllTableViewCell*>(cell.get()); typed && section)
            typed->prepareWithModel(*section);
        return cell;
    }
    case CRVHelpCenterCellTypeSpacer: return table.dequeueReusableCell(spacerIdentifier, indexPath);
    default: return std::make_shared<uikit::TableViewCell>();
    }
}

double CRVHelpCenterOverviewTableHandler::heightForRowAt(uikit::TableView& table, const uikit::IndexPath& indexPath) {
    const auto& model = *tableViewModel;
    switch (model.cellTypeForIndexPath(indexPath)) {
    case CRVHelpCenterCellTypeLoading:
    case CRVHelpCenterCellTypeSeeAll: return 44.0;
    case CRVHelpCenterCellTypeSection:
        if (auto* section = model.sectionAtIndexPath(indexPath)) {
            sizingSectionCell->prepareWithModel(*section, indexPath);
            return sizingSectionCell->heightOfCellForWidth(table.frame().width());
        }
        return 10.0;
    case CRVHelpCenterCellTypeArticle:
        if (auto* article = model.articleAtIndexPath(indexPath)) {
            sizingArticleCell->prepareWithModel(*article);
            return sizingArticleCell->heightOfCellForWidth(table.frame().width());
        }
        return 10.0;
    default: return 10.0;
    }
}

double CRVHelpCenterOverviewTableHandler::estimatedHeightForRowAt(uikit::TableView& table, const uikit::IndexPath& indexPath) {
    return heightForRowAt(table, indexPath);
}

double CRVHelpCenterOverviewTableHandler::heightForHeader(uikit::TableView& table, int section) {
    const auto* category = tableViewModel->categoryForSection(section);
    if (!category) return 0;
    sizingHeader->prepareWithCategory(*category);
    return sizingHeader->heightForHeaderWidth(table.frame().width());
}

std::shared_ptr<uikit::View> CRVHelpCenterOverviewTableHandler::viewForHeader(uikit::TableView&, int section) {
    const auto* category = tableViewModel->categoryForSection(section);
    if (!category) return nullptr;
    auto header = std::make_shared<CRVHelpCenterOverviewHeaderView>();
    header->prepareWithCategory(*category);
    return header;
}

void CRVHelpCenterOverviewTableHandler::didSelectRowAt(uikit::TableView& table, const uikit::IndexPath& indexPath) {
    // Hold on: the delegate may replace the model while it is being read.
    const auto model = tableViewModel;
    const int type = model->cellTypeForIndexPath(indexPath);
    table.deselectRow(indexPath, true);
    if (type == CRVHelpCenterCellTypeArticle) {
        const auto* article = model->articleAtIndexPath(indexPath);
        if (auto listener = delegate.lock(); listener && article) {
            const auto chosen = *article;
            listener->tableHandlerDidSelectArticle(*this, chosen, indexPath);
        }
        return;
    }
    if (type != CRVHelpCenterCellTypeSeeAll) return;
    table.beginUpdates();
    model->didSelectSeeAllAtIndexPath(indexPath);
    table.reloadRows({indexPath}, uikit::TableViewRowAnimation::fade);
    table.endUpdates();
    const auto* section = model->sectionAtIndexPath(indexPath);
    if (auto listener = delegate.lock(); listener && section) {
        const auto chosen = *section;
        listener->tableHandlerDidSelectSeeAllInSection(*this, chosen, indexPath);
    }
}

} // namespace belvakit
