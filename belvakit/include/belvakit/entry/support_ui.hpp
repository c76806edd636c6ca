#pragma once

#include "corvane/corvane.hpp"

#include <memory>
#include <optional>
#include <string>

namespace belvakit {

// The host's entry to the system: initialise once with the core object, then build screens.
class SupportUI {
public:
    SupportUI(const SupportUI&) = delete;
    SupportUI& operator=(const SupportUI&) = delete;
    // An absent core object logs an error and leaves any earlier instance in place. Otherwise the
    // support providers are set up and a new instance replaces the old one.
    static void initialize(std::shared_ptr<corvane::Corvane> withCorvane);
    // The shared instance; logs a warning and gives null before initialisation.
    static std::shared_ptr<SupportUI> instance();

    // Asks an open conversation on the ticket to refresh; false when the providers are not set up.
    bool refreshRequest(const std::string& requestId) const;

    std::optional<std::string> helpCenterLocaleOverride() const;
    void setHelpCenterLocaleOverride(std::optional<std::string> locale);

    const std::shared_ptr<corvane::Corvane>& corvane() const { return corvane_; }

private:
    explicit SupportUI(std::shared_ptr<corvane::Corvane> corvane) : corvane_(std::move(corvane)) {}

    std::shared_ptr<corvane::Corvane> corvane_;
};

enum class SupportError { supportNotInitialized };

} // namespace belvakit
