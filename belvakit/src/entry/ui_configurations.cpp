#include "belvakit/entry/ui_configurations.hpp"

namespace belvakit {

bool RequestUiConfiguration::isEqual(const CRVConfiguration& other) const {
    const auto* configuration = dynamic_cast<const RequestUiConfiguration*>(&other);
    return configuration && configuration->subject == subject && configuration->tags == tags &&
           configuration->customFields == customFields && configuration->ticketFormID == ticketFormID &&
           configuration->fileAttachments == fileAttachments;
}

bool ArticleUiConfiguration::isEqual(const CRVConfiguration& other) const {
    const auto* configuration = dynamic_cast<const ArticleUiConfiguration*>(&other);
    // Engines are objects: the same engines, in the same order.
    return configuration && configuration->showContactOptions == showContactOptions &&
           configuration->engines == engines;
}

} // namespace belvakit
