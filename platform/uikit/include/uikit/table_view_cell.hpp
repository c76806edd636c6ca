#pragma once

#include "uikit/image_view.hpp"
#include "uikit/label.hpp"

#include <memory>
#include <string>

namespace uikit {

enum class TableViewCellStyle { defaultStyle = 0, value1 = 1, value2 = 2, subtitle = 3 };
enum class TableViewCellSelectionStyle { none = 0, blue = 1, gray = 2, defaultStyle = 3 };
enum class TableViewCellAccessoryType {
    none = 0,
    disclosureIndicator = 1,
    detailDisclosureButton = 2,
    checkmark = 3,
    detailButton = 4
};

// One row of a table. Content goes in `contentView`; the built-in labels and image view are made
// on first use. A table recycles cells: `prepareForReuse` runs before a cell shows another row.
class TableViewCell : public View {
public:
    explicit TableViewCell(TableViewCellStyle style = TableViewCellStyle::defaultStyle,
                           std::string reuseIdentifier = {});
    std::string_view className() const override { return "UITableViewCell"; }

    TableViewCellStyle style() const { return style_; }
    const std::string& reuseIdentifier() const { return reuseIdentifier_; }
    void setReuseIdentifier(std::string identifier) { reuseIdentifier_ = std::move(identifier); }

    const std::shared_ptr<View>& contentView() const { return contentView_; }
    const std::shared_ptr<Label>& textLabel();
    // None for the default style, as on the platform.
    std::shared_ptr<Label> detailTextLabel();
    const std::shared_ptr<ImageView>& imageView();

    TableViewCellSelectionStyle selectionStyle = TableViewCellSelectionStyle::defaultStyle;
    TableViewCellAccessoryType accessoryType() const { return accessoryType_; }
    void setAccessoryType(TableViewCellAccessoryType type);
    // Shown at the trailing edge instead of the accessory type's mark.
    const std::shared_ptr<View>& accessoryView() const { return accessoryView_; }
    void setAccessoryView(std::shared_ptr<View> view);
    EdgeInsets separatorInset{0, 15, 0, 0};
    // The line under the cell; the table shows or hides it by its separator style.
    const std::shared_ptr<View>& separatorView() const { return separatorView_; }
    const std::shared_ptr<View>& backgroundView() const { return backgroundView_; }
    void setBackgroundView(std::shared_ptr<View> view);

    bool isSelected() const { return selected_; }
    virtual void setSelected(bool selected, bool animated = false);
    bool isHighlighted() const { return highlighted_; }
    virtual void setHighlighted(bool highlighted, bool animated = false);

    // Before the table hands the cell out again; subclasses reset what one row set.
    virtual void prepareForReuse();

    // The height the cell needs at the width given: the contentView's constraints when it has
    // any, the built-in labels otherwise. Self-sizing rows ask this.
    Size sizeThatFits(Size size) const override;
    void layoutSubviews() override;
    // A tap selects the cell's row through its table.
    bool handleTap() override;

    static constexpr double defaultHeight = 44;

private:
    Rect contentFrame() const;
    TableViewCellStyle style_;
    std::string reuseIdentifier_;
    std::shared_ptr<View> contentView_;
    std::shared_ptr<View> separatorView_;
    std::shared_ptr<Label> textLabel_;
    std::shared_ptr<Label> detailTextLabel_;
    std::shared_ptr<ImageView> imageView_;
    std::shared_ptr<View> accessoryView_;
    std::shared_ptr<View> accessoryMark_;
    std::shared_ptr<View> backgroundView_;
    TableViewCellAccessoryType accessoryType_ = TableViewCellAccessoryType::none;
    bool selected_ = false;
    bool highlighted_ = false;
};

// The plain view of a section header or footer: a title label.
class TableViewHeaderFooterView : public View {
public:
    TableViewHeaderFooterView();
    std::string_view className() const override { return "UITableViewHeaderFooterView"; }
    const std::shared_ptr<Label>& textLabel() const { return textLabel_; }
    void layoutSubviews() override;
    Size sizeThatFits(Size size) const override;

private:
    std::shared_ptr<Label> textLabel_;
};

// The height `container` needs at `width` under its own constraints: the constraints tying its
// bottom edge are measured from what they hold, and without any the lowest subview decides.
double fittingHeight(View& container, double width);

} // namespace uikit
