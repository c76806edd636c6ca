#pragma once

#include "belvakit/attachments/request_attachment.hpp"
#include "dastrel/custom_field.hpp"
#include "dastrel/help_center_overview_content_model.hpp"
#include "mirrowset/configuration.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorvel {
class Engine;
}

namespace belvakit {

using CRVConfiguration = mirrowset::Configuration;
using EngineList = std::vector<std::shared_ptr<quorvel::Engine>>;

// How a request screen is filled in and what it sends along.
class RequestUiConfiguration final : public CRVConfiguration {
public:
    std::string subject;
    std::vector<std::string> tags;
    std::vector<dastrel::CustomField> customFields;
    std::optional<std::int64_t> ticketFormID;
    std::vector<RequestAttachment> fileAttachments;

    bool isEqual(const CRVConfiguration& other) const override;
};

// What the Help Center overview shows and offers.
class HelpCenterUiConfiguration final : public CRVConfiguration {
public:
    bool showContactOptions = true;
    bool showContactOptionsOnEmptySearch = true;
    EngineList engines;
    dastrel::CRVHelpCenterOverviewContentModel overviewContentModel =
        dastrel::CRVHelpCenterOverviewContentModel::defaultContent();

    const EngineList& objcEngines() const { return engines; }

    // These live in the content model.
    const std::optional<std::vector<std::string>>& labels() const { return overviewContentModel.labels; }
    void setLabels(std::optional<std::vector<std::string>> labels) { overviewContentModel.labels = std::move(labels); }
    dastrel::CRVHelpCenterOverviewGroupType groupType() const { return overviewContentModel.groupType; }
    void setGroupType(dastrel::CRVHelpCenterOverviewGroupType type) { overviewContentModel.groupType = type; }
    const std::vector<std::int64_t>& groupIds() const { return overviewContentModel.groupIds; }
    void setGroupIds(std::vector<std::int64_t> ids) { overviewContentModel.groupIds = std::move(ids); }
};

// What an article screen offers.
class ArticleUiConfiguration final : public CRVConfiguration {
public:
    bool showContactOptions = true;
    EngineList engines;

    const EngineList& objcEngines() const { return engines; }

    bool isEqual(const CRVConfiguration& other) const override;
};

} // namespace belvakit
