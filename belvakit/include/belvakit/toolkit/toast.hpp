#pragma once

#include "belvakit/toolkit/toast_view.hpp"

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace belvakit {

// A registry of toasts by class functions: each toast is presented at once (several may lie over
// each other in one view) and kept until it is dismissed by its view. Presenting is main-thread work;
// the list is guarded by its lock.
class CRVToast {
public:
    using AnimationBlock = CRVToastView::AnimationBlock;
    using ButtonBlock = CRVToastView::ButtonBlock;

    static CRVToast& instance();

    static std::shared_ptr<CRVToastView> showMessage(const std::string& message, CRVToastType type,
                                                     const std::shared_ptr<uikit::ViewController>& viewController,
                                                     double duration, AnimationBlock animation, bool animated);
    static std::shared_ptr<CRVToastView> showMessage(const std::string& message, CRVToastType type,
                                                     const std::shared_ptr<uikit::View>& view,
                                                     const std::shared_ptr<uikit::ViewController>& viewController,
                                                     double duration, AnimationBlock animation, bool animated);
    static std::shared_ptr<CRVToastView> showMessage(const std::string& message, CRVToastType type,
                                                     const std::shared_ptr<uikit::View>& view, double startingAt,
                                                     double duration, AnimationBlock animation, bool animated);
    static std::shared_ptr<CRVToastView> showMessage(const std::string& message, CRVToastType type,
                                                     const std::shared_ptr<uikit::ViewController>& viewController,
                                                     const std::string& buttonText, ButtonBlock buttonAction,
                                                     AnimationBlock animation, bool animated);
    static std::shared_ptr<CRVToastView> showMessage(const std::string& message, CRVToastType type,
                                                     const std::shared_ptr<uikit::View>& view, double startingAt,
                                                     const std::string& buttonText, ButtonBlock buttonAction,
                                                     AnimationBlock animation, bool animated);

    static std::shared_ptr<CRVToastView> buildToastWithMessage(
        const std::string& message, CRVToastType type, const std::shared_ptr<uikit::View>& view,
        const std::shared_ptr<uikit::ViewController>& viewController, double startingAt, double duration,
        const std::optional<std::string>& buttonText, ButtonBlock buttonAction, AnimationBlock animation,
        bool animated);

    // Takes down every toast of the view: the last one shown as asked, the others at once.
    static void dismissForView(const std::shared_ptr<uikit::View>& view, bool animate);
    static void dismissForViewController(const std::shared_ptr<uikit::ViewController>& viewController, bool animate);
    // A negative duration is ignored.
    static void setAnimationDuration(double duration);

    double animationDuration() const;
    std::vector<std::shared_ptr<CRVToastView>> toasts() const;

private:
    CRVToast() = default;
    struct Entry {
        std::shared_ptr<CRVToastView> toast;
        // Where it was shown: a toast that left by itself is still its view's.
        std::weak_ptr<uikit::View> host;
    };
    mutable std::mutex toastsLock_;
    std::vector<Entry> toasts_;
    double animationDuration_ = CR_DefaultAnimationTime;
};

} // namespace belvakit
