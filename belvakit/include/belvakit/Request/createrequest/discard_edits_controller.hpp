#pragma once

#include "uikit/navigation_controller.hpp"
#include "uikit/view_controller.hpp"

#include <functional>
#include <memory>

namespace belvakit {

// A screen that may hold what the user typed and did not send.
class DiscardEditsControllerEditSource {
public:
    virtual ~DiscardEditsControllerEditSource() = default;
    virtual bool hasUnsavedEdits() const = 0;
};

class DiscardEditsControllerDelegate {
public:
    virtual ~DiscardEditsControllerDelegate() = default;
    // The screen was left, its edits, if any, discarded.
    virtual void discardEditsControllerDidLeave() = 0;
};

// Takes over a screen's left bar button, remembering what it did.
class BarButtonInterceptor {
public:
    virtual ~BarButtonInterceptor() = default;
    // Aims the screen's left bar button at `check`; a screen without one gets one.
    virtual void intercept(uikit::ViewController& screen, std::function<void()> check) = 0;
    // Runs what the button did before it was taken over; false when it did nothing of its own.
    virtual bool performOriginalAction() const = 0;
};

class BackButtonInterceptor final : public BarButtonInterceptor {
public:
    void intercept(uikit::ViewController& screen, std::function<void()> check) override;
    bool performOriginalAction() const override;

    // What the button did before; empty for a button this interceptor made.
    std::function<void()> originalBarButtonAction;

private:
    // The item last taken over, so that taking it again keeps the first remembered action.
    std::weak_ptr<uikit::BarButtonItem> intercepted_;
};

// Guards the way out of a screen with unsaved edits: the left bar button asks before it leaves.
class DiscardEditsController final : public std::enable_shared_from_this<DiscardEditsController> {
public:
    // Nothing is intercepted until `prepare`.
    static std::shared_ptr<DiscardEditsController> make(
        const std::shared_ptr<uikit::ViewController>& viewController,
        std::shared_ptr<BarButtonInterceptor> backButtonInterceptor = std::make_shared<BackButtonInterceptor>());

    // Aims the screen's left bar button at `dismiss`. Safe to run at each appearance.
    void prepare();
    // With unsaved edits, an alert offers to discard them; otherwise, or once discarded, the screen
    // is left: by the button's own action, else by a pop, else by dismissing what was presented.
    void dismiss();

    const std::shared_ptr<BarButtonInterceptor>& backButtonInterceptor() const { return backButtonInterceptor_; }
    std::weak_ptr<DiscardEditsControllerEditSource> editSource;
    std::weak_ptr<DiscardEditsControllerDelegate> delegate;
    std::shared_ptr<uikit::ViewController> viewController() const { return viewController_.lock(); }

private:
    DiscardEditsController(const std::shared_ptr<uikit::ViewController>& viewController,
                           std::shared_ptr<BarButtonInterceptor> backButtonInterceptor);
    void leave();

    std::shared_ptr<BarButtonInterceptor> backButtonInterceptor_;
    std::weak_ptr<uikit::ViewController> viewController_;
};

} // namespace belvakit
