#include "belvakit/helpcenter/help_center_data_source.hpp"

namespace belvakit {

std::any CRVHelpCenterDataSource::itemAtIndexPath(const uikit::IndexPath& indexPath) const {
    if (indexPath.row < 0 || static_cast<std::size_t>(indexPath.row) >= items.size()) return {};
    return items[static_cast<std::size_t>(indexPath.row)];
}

std::shared_ptr<uikit::TableViewCell> CRVHelpCenterDataSource::cellForRowAt(uikit::TableView&, const uikit::IndexPath&) {
    return nullptr;
}

void CRVHelpCenterDataSource::setUpCallback() {
    std::weak_ptr<CRVHelpCenterDataSource> weakSelf = weak_from_this();
    callback = [weakSelf](std::optional<std::vector<std::any>> list, std::optional<dastrel::ProviderError>) {
        auto self = weakSelf.lock();
        if (!self || !list) return;
        self->hasItems = !list->empty();
        self->items = std::move(*list);
    };
}

} // namespace belvakit
