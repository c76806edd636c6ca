#pragma once

#include "uikit/view.hpp"

#include <functional>
#include <memory>
#include <string>

namespace uikit {

class ViewController;

enum class InterfaceOrientation { unknown = 0, portrait = 1, portraitUpsideDown = 2, landscapeLeft = 3, landscapeRight = 4 };
enum class UserInterfaceIdiom { phone = 0, pad = 1 };

// The names and contents of the keyboard's notifications, posted on the default centre.
inline constexpr const char* keyboardWillShowNotification = "UIKeyboardWillShowNotification";
inline constexpr const char* keyboardDidShowNotification = "UIKeyboardDidShowNotification";
inline constexpr const char* keyboardWillHideNotification = "UIKeyboardWillHideNotification";
inline constexpr const char* keyboardDidHideNotification = "UIKeyboardDidHideNotification";
// Posted when size, insets, orientation or text size change.
inline constexpr const char* windowEnvironmentDidChangeNotification = "BelvaWindowEnvironmentDidChange";

struct KeyboardInfo {
    Rect endFrame;        // in window coordinates
    double duration = 0;  // seconds
    int curve = 7;
};

// The environment screens are drawn in.
struct Environment {
    Size size{375, 667};
    EdgeInsets safeAreaInsets{20, 0, 0, 0};
    InterfaceOrientation orientation = InterfaceOrientation::portrait;
    UserInterfaceIdiom idiom = UserInterfaceIdiom::phone;
    double scale = 2;
    // The platform's text size category: 1.0 is the default, larger makes text larger.
    double textScale = 1;

    static Environment phonePortrait() { return {}; }
    static Environment phoneLandscape() {
        return {{667, 375}, {0, 44, 21, 44}, InterfaceOrientation::landscapeLeft, UserInterfaceIdiom::phone, 2, 1};
    }
    static Environment tablet() {
        return {{768, 1024}, {20, 0, 0, 0}, InterfaceOrientation::portrait, UserInterfaceIdiom::pad, 2, 1};
    }
};

// The root of a tree on screen: holds the root screen, the environment, the first responder and
// the keyboard.
class Window final : public View {
public:
    explicit Window(Environment environment = {});
    ~Window() override;
    std::string_view className() const override { return "UIWindow"; }

    const Environment& environment() const { return environment_; }
    void setEnvironment(const Environment& environment);

    const std::shared_ptr<ViewController>& rootViewController() const { return root_; }
    // Shows the screen: its view fills the window, and it appears.
    void setRootViewController(std::shared_ptr<ViewController> controller);
    // The screen on top: the root, or whatever it presents, as deep as it goes.
    ViewController* topViewController() const;
    // The window the host made key; the renderer shows it.
    static Window* keyWindow();
    void makeKeyAndVisible();

    View* firstResponder() const { return firstResponder_; }
    bool makeFirstResponder(View* view);
    void resignFirstResponder(View* view);

    // The keyboard slides in or out, posting its notifications; a text input becoming first
    // responder shows it.
    void showKeyboard(double height = 216, double duration = 0.25);
    void hideKeyboard(double duration = 0.25);
    double keyboardHeight() const { return keyboardHeight_; }

    // Runs the layout of the whole tree, as the platform does before drawing.
    void layoutTree() { layoutIfNeeded(); }

    void viewLeftWindow(View& view);

private:
    Environment environment_;
    std::shared_ptr<ViewController> root_;
    View* firstResponder_ = nullptr;
    double keyboardHeight_ = 0;
};

} // namespace uikit
