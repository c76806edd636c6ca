#include "belvakit/helpcenter/help_center_search_result_view_controller.hpp"

#include "belvakit/entry/localized_strings.hpp"
#include "belvakit/toolkit/appearance_applicator.hpp"
#include "belvakit/toolkit/ui_util.hpp"
#include "dastrel/help_center_provider.hpp"
#include "uikit/window.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace belvakit {

namespace {

constexpr double noResultsTop = 40;
constexpr double noResultsSide = 20;
constexpr double buttonGap = 20;
constexpr double buttonMinimumHeight = 40;

} // namespace

std::shared_ptr<CRVHelpCenterSearchResultViewController> CRVHelpCenterSearchResultViewController::make() {
    return std::shared_ptr<CRVHelpCenterSearchResultViewController>(new CRVHelpCenterSearchResultViewController());
}

void CRVHelpCenterSearchResultViewController::loadView() {
    uikit::ViewController::loadView();
    const auto& root = view();
    root->setAccessibilityIdentifier("CRVsearchResultsView");
    const auto self = std::static_pointer_cast<CRVHelpCenterSearchResultViewController>(shared_from_this());

    tableView = uikit::make<uikit::TableView>();
    tableView->setAccessibilityIdentifier("CRVsearchResultsTable");
    tableView->registerCell<CRVHelpCenterSearchResultTableViewCell>(CRVSearchResultReuseIdentifier);
    tableView->rowHeight = uikit::automaticDimension;
    tableView->estimatedRowHeight = estimatedSearchResultHight;
    tableView->setTableFooterView(uikit::make<uikit::View>());
    tableView->setDataSource(self);
    tableView->setDelegate(self);
    root->addSubview(tableView);

    noResultsView = uikit::make<uikit::View>();
    noResultsView->setAccessibilityIdentifier("CRVsearchNoResultsView");
    noResultsView->setHidden(true);
    noResultsLabel = uikit::make<uikit::Label>();
    noResultsLabel->setAccessibilityIdentifier("CRVsearchNoResultsLabel");
    noResultsLabel->setNumberOfLines(0);
    noResultsLabel->setTextAlignment(uikit::TextAlignment::center);
    noResultsView->addSubview(noResultsLabel);
    contactSupportButton = CRVUIUtil::buildButtonWithFrame({}, localized(LocalizedKey::helpCenterSupportContactSupport));
    contactSupportButton->setAccessibilityIdentifier("CRVsearchContactSupportButton");
    contactSupportButton->setAccessibilityLabel(localized(LocalizedKey::helpCenterSupportContactSupport));
    contactSupportButton->addTarget(uikit::ControlEvent::touchUpInside,
                                    [weak = std::weak_ptr(self)] {
                                        if (const auto strong = weak.lock()) strong->contactSupportTapped();
                                    });
    noResultsView->addSubview(contactSupportButton);
    root->addSubview(noResultsView);

    loadingSpinner = uikit::make<uikit::ActivityIndicatorView>();
    loadingSpinner->setAccessibilityIdentifier("CRVsearchLoadingSpinner");
    root->addSubview(loadingSpinner);

    toastWrapper = uikit::make<CRVToastViewWrapper>();
    root->addSubview(toastWrapper);

    applyTheme(*CRVLegacyTheme::currentAppliedTheme());
}

void CRVHelpCenterSearchResultViewController::applyTheme(const CRVLegacyTheme& theme) {
    view()->setBackgroundColor(theme.emptyBackgroundColor);
    noResultsView->setBackgroundColor(theme.emptyBackgroundColor);
    tableView->setBackgroundColor(theme.secondaryBackgroundColor);
    noResultsLabel->setTextColor(theme.primaryTextColor);
    noResultsLabel->setFont(theme.subHeaderFont);
    loadingSpinner->setStyle(CRVAppearanceApplicator::isDarkColor(theme.primaryBackgroundColor) ? 1 : 2);
}

void CRVHelpCenterSearchResultViewController::viewWillAppear(bool animated) {
    uikit::ViewController::viewWillAppear(animated);
    const auto owner = delegate.lock();
    contactSupportButton->setHidden(!owner || !owner->shouldShowContactOptions());
}

void CRVHelpCenterSearchResultViewController::viewDidDisappear(bool animated) {
    uikit::ViewController::viewDidDisappear(animated);
    numberOfSearches = 0;
}

void CRVHelpCenterSearchResultViewController::viewDidLayoutSubviews() {
    const uikit::Rect bounds = view()->bounds();
    uikit::EdgeInsets safe;
    if (const auto* window = view()->window()) safe = window->environment().safeAreaInsets;
    tableView->setFrame(bounds);
    noResultsView->setFrame(bounds);
    toastWrapper->setFrame({0, 0, bounds.width(), toastWrapper->contentHeight});

    const double side = noResultsSide + std::max(safe.left, safe.right);
    const double labelWidth = std::max(1.0, bounds.width() - 2 * side);
    const double labelHeight = std::ceil(noResultsLabel->sizeThatFits({labelWidth, 0}).height);
    noResultsLabel->setFrame({side, noResultsTop, labelWidth, labelHeight});
    const uikit::Size button = contactSupportButton->sizeThatFits({labelWidth, 0});
    const double buttonWidth = std::min(labelWidth, std::ceil(button.width));
    contactSupportButton->setFrame({std::floor((bounds.width() - buttonWidth) / 2), noResultsTop + labelHeight + buttonGap,
                                    buttonWidth, std::max(buttonMinimumHeight, std::ceil(button.height))});

    const uikit::Size spinner = loadingSpinner->intrinsicContentSize();
    loadingSpinner->setFrame({std::floor((bounds.width() - spinner.width) / 2), noResultsTop, spinner.width, spinner.height});
}

void CRVHelpCenterSearchResultViewController::updateSearchResultsForSearchController(uikit::SearchController&) {
    view()->setHidden(numberOfSearches == 0);
}

void CRVHelpCenterSearchResultViewController::searchControllerStartedSearch(uikit::SearchController&) {
    ++numberOfSearches;
    view()->setHidden(false);
    data.clear();
    tableView->reloadData();
    tableView->setHidden(false);
    noResultsView->setHidden(true);
    loadingSpinner->startAnimating();
}

void CRVHelpCenterSearchResultViewController::searchControllerDidUpdateWithResults(
    uikit::SearchController& searchController, const std::optional<std::vector<dastrel::CRVHelpCenterArticle>>& results) {
    loadViewIfNeeded();
    loadingSpinner->stopAnimating();
    searchTerm = searchController.searchBar()->text();
    const std::size_t count = results ? results->size() : 0;
    tableView->setHidden(count == 0);
    noResultsView->setHidden(count != 0);
    if (count != 0) {
        data = *results;
        tableView->reloadData();
    } else {
        noResultsLabel->setAttributedText(noResultsString());
        view()->setNeedsLayout();
    }
}

platform::AttributedString CRVHelpCenterSearchResultViewController::noResultsString() const {
    const double size = noResultsLabel ? noResultsLabel->font().pointSize() : CRVLegacyTheme::currentAppliedTheme()->subHeaderFont.pointSize();
    platform::AttributedString text(localized(LocalizedKey::helpCenterSearchNoResultsTitle),
                                    {{platform::AttributeName::font, platform::Font::systemFont(size)}});
    text.append(" \"" + searchTerm + "\"", {{platform::AttributeName::font, platform::Font::boldSystemFont(size)}});
    return text;
}

int CRVHelpCenterSearchResultViewController::numberOfRowsInSection(uikit::TableView&, int) {
    return static_cast<int>(data.size());
}

std::shared_ptr<uikit::TableViewCell> CRVHelpCenterSearchResultViewController::cellForRowAt(uikit::TableView& table,
                                                                                           const uikit::IndexPath& indexPath) {
    auto cell = table.dequeueReusableCell(CRVSearchResultReuseIdentifier, indexPath);
    const auto row = static_cast<std::size_t>(indexPath.row);
    auto* result = dynamic_cast<CRVHelpCenterSearchResultTableViewCell*>(cell.get());
    if (!result || row >= data.size()) return cell;
    result->prepareWithArticle(data[row], searchTerm);
    char identifier[48];
    std::snprintf(identifier, sizeof identifier, "CRVsearchResultsCell%d", indexPath.row);
    result->setAccessibilityIdentifier(identifier);
    result->adjustInsetForLastArticle(row + 1 == data.size());
    return cell;
}

void CRVHelpCenterSearchResultViewController::didSelectRowAt(uikit::TableView& table, const uikit::IndexPath& indexPath) {
    table.deselectRow(indexPath, true);
    const auto row = static_cast<std::size_t>(indexPath.row);
    if (row >= data.size()) return;
    // A copy: the delegate may start another search that replaces the rows.
    const dastrel::CRVHelpCenterArticle article = data[row];
    if (const auto owner = delegate.lock()) owner->searchResultControllerDidSelectArticle(*this, article);
    // One view recorded per opened result; what the server answers changes nothing here.
    dastrel::CRVHelpCenterProvider::make()->submitRecordArticleView(article, [](std::optional<dastrel::ProviderError>) {});
}

void CRVHelpCenterSearchResultViewController::contactSupportTapped() {
    if (const auto owner = delegate.lock()) owner->searchResultControllerDidSelectContactSupport(*this);
}

} // namespace belvakit
