#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace dastrel {

enum class CRVHelpCenterOverviewGroupType : unsigned { none = 0, section = 1, category = 2 };

// What the Help Center overview is to show.
struct CRVHelpCenterOverviewContentModel {
    CRVHelpCenterOverviewGroupType groupType = CRVHelpCenterOverviewGroupType::none;
    std::vector<std::int64_t> groupIds;
    std::optional<std::vector<std::string>> labels;
    unsigned initialNumberOfArticles = 5;

    static CRVHelpCenterOverviewContentModel defaultContent() { return {}; }
    bool operator==(const CRVHelpCenterOverviewContentModel&) const = default;
};

} // namespace dastrel
