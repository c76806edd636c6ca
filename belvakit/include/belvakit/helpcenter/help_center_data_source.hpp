#pragma once

#include "dastrel/help_center_provider.hpp"
#include "uikit/table_view.hpp"

#include <any>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace belvakit {

// The base of the Help Center's provider-backed lists. Subclasses fetch in `reloadData` and hand
// the list to `callback`, and make the cells.
class CRVHelpCenterDataSource : public uikit::TableViewDataSource, public std::enable_shared_from_this<CRVHelpCenterDataSource> {
public:
    using Callback = std::function<void(std::optional<std::vector<std::any>> items, std::optional<dastrel::ProviderError> error)>;

    // Makes the data source with its provider and its callback, which holds it weakly.
    template <class DataSource, class... Args>
    static std::shared_ptr<DataSource> create(Args&&... args) {
        auto source = std::make_shared<DataSource>(std::forward<Args>(args)...);
        source->setUpCallback();
        return source;
    }

    bool hasItems = false;
    std::vector<std::any> items;
    std::shared_ptr<dastrel::CRVHelpCenterProvider> provider = dastrel::CRVHelpCenterProvider::make();
    Callback callback;

    std::size_t itemCount() const { return items.size(); }
    // Empty for a row outside the list.
    std::any itemAtIndexPath(const uikit::IndexPath& indexPath) const;

    virtual void reloadData() {}
    virtual std::string cellIdentifierForDataSource() const { return "CRVSupportTableViewCell"; }

    int numberOfRowsInSection(uikit::TableView&, int) override { return static_cast<int>(items.size()); }
    // The base class has no cells of its own: none (the table stands in a blank one).
    std::shared_ptr<uikit::TableViewCell> cellForRowAt(uikit::TableView&, const uikit::IndexPath&) override;

private:
    void setUpCallback();
};

} // namespace belvakit
