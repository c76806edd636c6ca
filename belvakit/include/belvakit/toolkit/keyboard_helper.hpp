#pragma once

#include "platform/notification_center.hpp"
#include "uikit/layout_constraint.hpp"
#include "uikit/view.hpp"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace belvakit {

// Listeners by key, each called with the value; in no set order.
template <class Value>
class EventListener {
public:
    std::map<std::string, std::function<void(const Value&)>> items;

    // A listener under a key already taken replaces it.
    void addListener(std::string key, std::function<void(const Value&)> listener) {
        items[std::move(key)] = std::move(listener);
    }
    void removeListener(const std::string& key) { items.erase(key); }
    void notify(const Value& value) const {
        // A copy: a listener may add or remove listeners.
        const auto listeners = items;
        for (const auto& [key, listener] : listeners)
            if (listener) listener(value);
    }
};

class KeyboardHelper {
public:
    virtual ~KeyboardHelper() = default;
    virtual bool keyboardVisible() const = 0;
    // The part of the keyboard over the parent view, above its bottom safe-area inset.
    virtual double keyboardHeight() const = 0;
    // The keyboard's own height.
    virtual double absKeyboardHeight() const = 0;
    virtual EventListener<double>& keyboardWillShowEvent() = 0;
    virtual EventListener<double>& keyboardWillHideEvent() = 0;
    virtual EventListener<double>& keyboardWillAnimateShowingEvent() = 0;
};

// Keeps a bottom constraint of `parentView` clear of the keyboard: on each of the keyboard's
// will-show and will-hide notifications it sets the constraint's constant, lays the parent out in
// the keyboard's animation, and tells its listeners the overlap. The constant moves the
// constraint's item up by the overlap, whichever of its items is the parent.
class ConcreteKeyboardHelper final : public KeyboardHelper {
public:
    ConcreteKeyboardHelper(std::shared_ptr<uikit::LayoutConstraint> bottomConstraint,
                           const std::shared_ptr<uikit::View>& parentView);
    ConcreteKeyboardHelper(const ConcreteKeyboardHelper&) = delete;
    ConcreteKeyboardHelper& operator=(const ConcreteKeyboardHelper&) = delete;
    // Stops observing.
    ~ConcreteKeyboardHelper() override;

    std::shared_ptr<uikit::LayoutConstraint> bottomConstraint;
    std::weak_ptr<uikit::View> parentView;

    bool keyboardVisible() const override { return keyboardVisible_; }
    double keyboardHeight() const override { return keyboardHeight_; }
    double absKeyboardHeight() const override { return absKeyboardHeight_; }
    EventListener<double>& keyboardWillShowEvent() override { return willShow_; }
    EventListener<double>& keyboardWillHideEvent() override { return willHide_; }
    EventListener<double>& keyboardWillAnimateShowingEvent() override { return willAnimateShowing_; }

    void keyboardWillBeShown(const platform::Notification& notification);
    void keyboardWillHide(const platform::Notification& notification);

private:
    void applyConstant(double overlap, double duration, bool showing);

    bool keyboardVisible_ = false;
    double keyboardHeight_ = 0;
    double absKeyboardHeight_ = 0;
    // Where the constraint stood before the keyboard came.
    double restingConstant_ = 0;
    EventListener<double> willShow_;
    EventListener<double> willHide_;
    EventListener<double> willAnimateShowing_;
    std::vector<platform::ObservationToken> observers_;
};

} // namespace belvakit
