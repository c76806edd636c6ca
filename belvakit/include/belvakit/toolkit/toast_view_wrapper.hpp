#pragma once

#include "belvakit/toolkit/toast_view.hpp"

#include <functional>
#include <memory>
#include <string>

namespace belvakit {

// A screen's front door for error toasts: shows at most one at a time, and reports the room it
// takes as its intrinsic height so that the screen can make room. Main thread.
class CRVToastViewWrapper final : public uikit::View {
public:
    using uikit::View::View;
    std::string_view className() const override { return "CRVToastViewWrapper"; }

    // Three seconds, no button.
    void showErrorInViewController(const std::shared_ptr<uikit::ViewController>& viewController,
                                   const std::string& message);
    void showErrorInViewController(const std::shared_ptr<uikit::ViewController>& viewController,
                                   const std::string& message, double duration);
    // Stays until its button is tapped or it is dismissed.
    void showErrorInViewController(const std::shared_ptr<uikit::ViewController>& viewController,
                                   const std::string& message, const std::string& buttonTitle,
                                   std::function<void()> action);
    // A button makes the duration moot. A second error while one shows is dropped.
    void showErrorInViewController(const std::shared_ptr<uikit::ViewController>& viewController,
                                   const std::string& message, double duration,
                                   const std::optional<std::string>& buttonTitle, std::function<void()> action);

    // Takes the error away with an animation, if one shows.
    void dismiss();
    // Hides or shows the toast's view without ending it.
    void hideToastView(bool hidden);
    double topViewOffset() const;

    uikit::Size intrinsicContentSize() const override { return {uikit::noIntrinsicMetric, contentHeight}; }

    std::weak_ptr<uikit::ViewController> viewController;
    std::shared_ptr<CRVToastView> toastView;
    double contentHeight = 0;
    bool isShowingError = false;
    bool isVisible() const { return isShowingError; }
};

} // namespace belvakit
