#pragma once

#include "corvane/corvane.hpp"
#include "dastrel/request_storage.hpp"

#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace dastrel {

// The support providers' library entry: set up once per process from the core object.
class Support {
public:
    // Makes the shared instance for the core, replacing any earlier one.
    static void initialize(std::shared_ptr<corvane::Corvane> withCorvane);
    // The shared instance, or null before `initialize`.
    static std::shared_ptr<Support> instance();
    static void reset();

    explicit Support(std::shared_ptr<corvane::Corvane> corvane) : corvane_(std::move(corvane)) {}

    const std::shared_ptr<corvane::Corvane>& corvane() const { return corvane_; }

    // Asks the handler registered for the request's refresh action to refresh it.
    // True when there was such a handler.
    bool refreshRequest(const std::string& requestId);

    std::optional<std::string> helpCenterLocaleOverride() const;
    void setHelpCenterLocaleOverride(std::optional<std::string> locale);

    // The device's memory of the user's tickets and what of them was read.
    RequestStorage& requestStorage() { return requestStorage_; }

private:
    std::shared_ptr<corvane::Corvane> corvane_;
    mutable std::mutex mutex_;
    std::optional<std::string> helpCenterLocaleOverride_;
    RequestStorage requestStorage_;
};

} // namespace dastrel
