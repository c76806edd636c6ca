#pragma once

#include "uikit/view_controller.hpp"

#include <memory>
#include <vector>

namespace uikit {

class Button;
class Label;
class SearchController;

// The bar on top of a navigation controller: the top screen's title (or title view) and its bar
// items as buttons.
class NavigationBar final : public View {
public:
    static constexpr double height = 44;
    std::string_view className() const override { return "UINavigationBar"; }

    void show(const NavigationItem& item, bool canGoBack, std::function<void()> back);
    void layoutSubviews() override;
    const std::shared_ptr<Label>& titleLabel() const { return titleLabel_; }
    // The bar's height below the status bar: the title row, and the search bar when the item has one.
    double contentHeight() const;

private:
    std::shared_ptr<View> buttonFor(const BarButtonItem& item, const std::string& fallbackIdentifier);
    std::shared_ptr<Label> titleLabel_;
    std::shared_ptr<View> titleView_;
    std::shared_ptr<View> left_;
    std::shared_ptr<View> right_;
    std::weak_ptr<SearchController> search_;
    std::shared_ptr<View> searchBar_;
    bool collapsed_ = false;
};

// A stack of screens under a bar; the top one shows.
class NavigationController final : public ViewController {
public:
    explicit NavigationController(Ptr root = nullptr);
    std::string_view className() const override { return "UINavigationController"; }

    const std::vector<Ptr>& viewControllers() const { return stack_; }
    ViewController* topViewController() const { return stack_.empty() ? nullptr : stack_.back().get(); }
    // The top screen, or what it presents.
    ViewController* visibleViewController() const;
    void pushViewController(const Ptr& controller, bool animated);
    Ptr popViewController(bool animated);
    void popToRootViewController(bool animated);
    void setViewControllers(std::vector<Ptr> controllers, bool animated);

    bool isNavigationBarHidden() const { return barHidden_; }
    void setNavigationBarHidden(bool hidden, bool animated = false);
    const std::shared_ptr<NavigationBar>& navigationBar() const { return bar_; }
    // Shows the top screen's item again after it changed.
    void refreshBar();

    void loadView() override;
    void viewWillLayoutSubviews() override;

private:
    void show(ViewController* leaving, bool animated);
    std::vector<Ptr> stack_;
    std::shared_ptr<NavigationBar> bar_;
    bool barHidden_ = false;
};

} // namespace uikit
