#pragma once

#include "uikit/view.hpp"

#include <memory>
#include <vector>

namespace uikit {

enum class LayoutAxis { horizontal = 0, vertical = 1 };
// Proportional and centring distributions are laid out as `fill`.
enum class StackViewDistribution { fill = 0, fillEqually = 1, fillProportionally = 2, equalSpacing = 3, equalCentering = 4 };
enum class StackViewAlignment { fill = 0, leading = 1, firstBaseline = 2, center = 3, trailing = 4, lastBaseline = 5 };

// Lays its arranged views out in a row or a column by their natural sizes (or their own width and
// height constraints). Hidden arranged views take no room.
class StackView : public View {
public:
    explicit StackView(std::vector<std::shared_ptr<View>> arrangedSubviews = {});
    std::string_view className() const override { return "UIStackView"; }

    const std::vector<std::shared_ptr<View>>& arrangedSubviews() const { return arranged_; }
    void addArrangedSubview(const std::shared_ptr<View>& view);
    void insertArrangedSubview(const std::shared_ptr<View>& view, std::size_t index);
    // Stops arranging the view; it stays a subview, as on the platform.
    void removeArrangedSubview(const std::shared_ptr<View>& view);

    LayoutAxis axis() const { return axis_; }
    void setAxis(LayoutAxis axis);
    double spacing() const { return spacing_; }
    void setSpacing(double spacing);
    StackViewAlignment alignment() const { return alignment_; }
    void setAlignment(StackViewAlignment alignment);
    StackViewDistribution distribution() const { return distribution_; }
    void setDistribution(StackViewDistribution distribution);
    EdgeInsets layoutMargins;
    bool layoutMarginsRelativeArrangement = false;

    Size intrinsicContentSize() const override;
    Size sizeThatFits(Size) const override { return intrinsicContentSize(); }
    void layoutSubviews() override;

private:
    Size naturalSize(const View& view) const;
    std::vector<std::shared_ptr<View>> shown() const;
    std::vector<std::shared_ptr<View>> arranged_;
    LayoutAxis axis_ = LayoutAxis::horizontal;
    double spacing_ = 0;
    StackViewAlignment alignment_ = StackViewAlignment::fill;
    StackViewDistribution distribution_ = StackViewDistribution::fill;
};

} // namespace uikit
