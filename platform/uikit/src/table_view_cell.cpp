#include "uikit/table_view_cell.hpp"

#include "uikit/layout_constraint.hpp"
#include "uikit/table_view.hpp"

#include <algorithm>
#include <cmath>

namespace uikit {

namespace {

constexpr double margin = 15;
constexpr double accessoryWidth = 38;  // the platform's room for a chevron or a check mark

bool hasActiveConstraints(const View& view) {
    return std::any_of(view.constraints().begin(), view.constraints().end(),
                       [](const auto& constraint) { return constraint->isActive(); });
}

Size fitted(const std::shared_ptr<Label>& label, double width) {
    if (!label || label->text().empty() || label->isHidden()) return {0, 0};
    return label->sizeThatFits({std::max(1.0, width), 0});
}

const char* accessoryGlyph(TableViewCellAccessoryType type) {
    switch (type) {
    case TableViewCellAccessoryType::disclosureIndicator: return "\u203A";
    case TableViewCellAccessoryType::checkmark: return "\u2713";
    case TableViewCellAccessoryType::detailButton:
    case TableViewCellAccessoryType::detailDisclosureButton: return "\u24D8";
    case TableViewCellAccessoryType::none: break;
    }
    return "";
}

} // namespace

TableViewCell::TableViewCell(TableViewCellStyle style, std::string reuseIdentifier)
    : View({0, 0, 320, defaultHeight}), style_(style), reuseIdentifier_(std::move(reuseIdentifier)),
      contentView_(make<View>(Rect(0, 0, 320, defaultHeight))), separatorView_(make<View>()) {
    setBackgroundColor(platform::Color::white());
    addSubview(contentView_);
    separatorView_->setUserInteractionEnabled(false);
    separatorView_->setBackgroundColor(platform::Color{0.78, 0.78, 0.8, 1});
    addSubview(separatorView_);
}

const std::shared_ptr<Label>& TableViewCell::textLabel() {
    if (!textLabel_) {
        textLabel_ = make<Label>();
        textLabel_->setFont(platform::Font::systemFont(17));
        textLabel_->setUserInteractionEnabled(false);
        contentView_->addSubview(textLabel_);
        setNeedsLayout();
    }
    return textLabel_;
}

std::shared_ptr<Label> TableViewCell::detailTextLabel() {
    if (style_ == TableViewCellStyle::defaultStyle) return nullptr;
    if (!detailTextLabel_) {
        detailTextLabel_ = make<Label>();
        detailTextLabel_->setFont(platform::Font::systemFont(style_ == TableViewCellStyle::subtitle ? 12 : 17));
        detailTextLabel_->setTextColor(style_ == TableViewCellStyle::value1 ? platform::Color{0.56, 0.56, 0.58, 1}
                                                                            : platform::Color::black());
        if (style_ == TableViewCellStyle::value1) detailTextLabel_->setTextAlignment(TextAlignment::right);
        detailTextLabel_->setUserInteractionEnabled(false);
        contentView_->addSubview(detailTextLabel_);
        setNeedsLayout();
    }
    return detailTextLabel_;
}

const std::shared_ptr<ImageView>& TableViewCell::imageView() {
    if (!imageView_) {
        imageView_ = make<ImageView>();
        contentView_->insertSubview(imageView_, 0);
        setNeedsLayout();
    }
    return imageView_;
}

void TableViewCell::setAccessoryType(TableViewCellAccessoryType type) {
    accessoryType_ = type;
    if (accessoryMark_) accessoryMark_->removeFromSuperview();
    accessoryMark_ = nullptr;
    if (type != TableViewCellAccessoryType::none) {
        auto mark = make<Label>();
        mark->setText(accessoryGlyph(type));
        mark->setTextColor(platform::Color{0.78, 0.78, 0.8, 1});
        mark->setTextAlignment(TextAlignment::center);
        mark->setUserInteractionEnabled(false);
        accessoryMark_ = mark;
        addSubview(accessoryMark_);
    }
    setNeedsLayout();
}

void TableViewCell::setAccessoryView(std::shared_ptr<View> view) {
    if (accessoryView_) accessoryView_->removeFromSuperview();
    accessoryView_ = std::move(view);
    if (accessoryView_) addSubview(accessoryView_);
    setNeedsLayout();
}

void TableViewCell::setBackgroundView(std::shared_ptr<View> view) {
    if (backgroundView_) backgroundView_->removeFromSuperview();
    backgroundView_ = std::move(view);
    if (backgroundView_) insertSubview(backgroundView_, 0);
    setNeedsLayout();
}

void TableViewCell::setSelected(bool selected, bool) {
    selected_ = selected;
    if (selectionStyle != TableViewCellSelectionStyle::none) highlighted_ = selected;
}

void TableViewCell::setHighlighted(bool highlighted, bool) { highlighted_ = highlighted; }

void TableViewCell::prepareForReuse() {
    selected_ = false;
    highlighted_ = false;
    setAlpha(1);
    setHidden(false);
}

Rect TableViewCell::contentFrame() const {
    double trailing = 0;
    if (accessoryView_)
        trailing = accessoryView_->frame().width() + margin;
    else if (accessoryType_ != TableViewCellAccessoryType::none)
        trailing = accessoryWidth;
    return {0, 0, std::max(0.0, frame().width() - trailing), frame().height()};
}

Size TableViewCell::sizeThatFits(Size size) const {
    const double width = size.width > 0 ? size.width : frame().width();
    double trailing = 0;
    if (accessoryView_)
        trailing = accessoryView_->frame().width() + margin;
    else if (accessoryType_ != TableViewCellAccessoryType::none)
        trailing = accessoryWidth;
    const double content = std::max(0.0, width - trailing);
    if (hasActiveConstraints(*contentView_)) return {width, std::ceil(fittingHeight(*contentView_, content))};
    // The built-in labels, with the platform's margins.
    const double imageWidth = imageView_ && imageView_->image() ? imageView_->intrinsicContentSize().width + margin : 0;
    const double imageHeight = imageView_ && imageView_->image() ? imageView_->intrinsicContentSize().height : 0;
    const double textWidth = std::max(1.0, content - 2 * margin - imageWidth);
    const Size text = fitted(textLabel_, style_ == TableViewCellStyle::subtitle || style_ == TableViewCellStyle::defaultStyle
                                            ? textWidth
                                            : textWidth / 2);
    const Size detail = fitted(detailTextLabel_, style_ == TableViewCellStyle::subtitle ? textWidth : textWidth / 2);
    const double texts = style_ == TableViewCellStyle::subtitle ? text.height + detail.height : std::max(text.height, detail.height);
    const double needed = std::max(texts, imageHeight) + 22;
    return {width, std::ceil(std::max(defaultHeight, needed))};
}

void TableViewCell::layoutSubviews() {
    View::layoutSubviews();
    const Rect whole{0, 0, frame().width(), frame().height()};
    if (backgroundView_) backgroundView_->setFrame(whole);
    if (accessoryView_) {
        Size size = accessoryView_->frame().size;
        if (size.width <= 0 || size.height <= 0) size = accessoryView_->sizeThatFits({0, 0});
        accessoryView_->setFrame({whole.maxX() - margin - size.width, std::floor((whole.height() - size.height) / 2),
                                  size.width, size.height});
    }
    const Rect content = contentFrame();
    if (accessoryMark_ && !accessoryView_) accessoryMark_->setFrame({content.maxX(), 0, accessoryWidth - 8, whole.height()});
    contentView_->setFrame(content);
    separatorView_->setFrame({separatorInset.left, whole.height() - 0.5,
                              std::max(0.0, whole.width() - separatorInset.left - separatorInset.right), 0.5});
    // Built-in views, placed by the style when the content is not constrained.
    double x = margin;
    if (imageView_ && imageView_->image()) {
        const Size size = imageView_->intrinsicContentSize();
        imageView_->setFrame({x, std::floor((content.height() - size.height) / 2), size.width, size.height});
        x += size.width + margin;
    }
    const double width = std::max(0.0, content.width() - x - margin);
    const auto place = [&](const std::shared_ptr<Label>& label, double left, double top, double w) {
        if (!label) return;
        const Size size = fitted(label, w);
        label->setFrame({left, top, w, size.height});
    };
    const Size text = fitted(textLabel_, width);
    const Size detail = fitted(detailTextLabel_, width);
    switch (style_) {
    case TableViewCellStyle::defaultStyle:
        place(textLabel_, x, std::floor((content.height() - text.height) / 2), width);
        break;
    case TableViewCellStyle::subtitle: {
        const double top = std::floor((content.height() - text.height - detail.height) / 2);
        place(textLabel_, x, top, width);
        place(detailTextLabel_, x, top + text.height, width);
        break;
    }
    case TableViewCellStyle::value1:
        place(textLabel_, x, std::floor((content.height() - text.height) / 2), width / 2);
        place(detailTextLabel_, x + width / 2, std::floor((content.height() - detail.height) / 2), width / 2);
        break;
    case TableViewCellStyle::value2:
        place(textLabel_, x, std::floor((content.height() - text.height) / 2), width / 4);
        place(detailTextLabel_, x + width / 4 + 6, std::floor((content.height() - detail.height) / 2),
              std::max(0.0, width * 3 / 4 - 6));
        break;
    }
}

bool TableViewCell::handleTap() {
    for (View* parent = superview(); parent; parent = parent->superview())
        if (auto* table = dynamic_cast<TableView*>(parent)) return table->didTapCell(*this);
    return View::handleTap();
}

TableViewHeaderFooterView::TableViewHeaderFooterView() : View({0, 0, 320, 28}), textLabel_(make<Label>()) {
    setBackgroundColor(platform::Color{0.97, 0.97, 0.97, 1});
    textLabel_->setFont(platform::Font::systemFont(13));
    textLabel_->setTextColor(platform::Color{0.43, 0.43, 0.45, 1});
    textLabel_->setUserInteractionEnabled(false);
    addSubview(textLabel_);
}

Size TableViewHeaderFooterView::sizeThatFits(Size size) const {
    const double width = size.width > 0 ? size.width : frame().width();
    const Size text = textLabel_->sizeThatFits({std::max(1.0, width - 2 * margin), 0});
    return {width, std::max(28.0, std::ceil(text.height) + 12)};
}

void TableViewHeaderFooterView::layoutSubviews() {
    View::layoutSubviews();
    const double width = std::max(0.0, frame().width() - 2 * margin);
    const Size text = textLabel_->sizeThatFits({std::max(1.0, width), 0});
    textLabel_->setFrame({margin, std::max(0.0, frame().height() - text.height - 6), width, text.height});
}

namespace {

using A = LayoutAttribute;

double edgeOf(const View& view, A attribute, const View& container) {
    const Rect rect = view.convert(view.bounds(), &container);
    switch (attribute) {
    case A::top: return rect.minY();
    case A::bottom: return rect.maxY();
    case A::height: return rect.height();
    case A::centerY: return rect.midY();
    default: return rect.maxY();
    }
}

} // namespace

double fittingHeight(View& container, double width) {
    const Rect old = container.frame();
    container.setFrame({old.origin, {width, old.height()}});
    std::vector<std::shared_ptr<LayoutConstraint>> ties;
    std::optional<double> fixedHeight;
    double minimumHeight = 0;
    for (const auto& constraint : container.constraints()) {
        if (!constraint->isActive()) continue;
        const auto first = constraint->firstItem();
        const auto second = constraint->secondItem();
        const bool firstIsContainer = first.get() == &container;
        const bool secondIsContainer = second.get() == &container;
        if (firstIsContainer && !second && constraint->firstAttribute() == A::height) {
            if (constraint->relation() == LayoutRelation::equal) fixedHeight = constraint->constant();
            if (constraint->relation() == LayoutRelation::greaterThanOrEqual)
                minimumHeight = std::max(minimumHeight, constraint->constant());
            continue;
        }
        const bool tiesBottom = (firstIsContainer && constraint->firstAttribute() == A::bottom && second) ||
                                (secondIsContainer && constraint->secondAttribute() == A::bottom && first);
        if (tiesBottom) ties.push_back(constraint);
    }
    // The bottom follows the content: solve without the ties, then read where they would put it.
    for (const auto& tie : ties) tie->setActive(false);
    solveConstraints(container);
    solveConstraints(container);  // again, now that wrapped labels know their widths
    double needed = 0;
    bool measured = false;
    for (const auto& tie : ties) {
        tie->setActive(true);
        const auto first = tie->firstItem();
        const auto second = tie->secondItem();
        // Only a tie that holds the bottom down from below sets a height.
        const auto upper = first.get() == &container ? LayoutRelation::lessThanOrEqual : LayoutRelation::greaterThanOrEqual;
        if (tie->relation() == upper) continue;
        double bottom = 0;
        if (first.get() == &container) {
            bottom = edgeOf(*second, tie->secondAttribute(), container) * tie->multiplier() + tie->constant();
        } else {
            if (tie->multiplier() == 0) continue;
            bottom = (edgeOf(*first, tie->firstAttribute(), container) - tie->constant()) / tie->multiplier();
        }
        needed = std::max(needed, bottom);
        measured = true;
    }
    if (!measured)
        for (const auto& child : container.subviews())
            if (!child->isHidden()) needed = std::max(needed, child->frame().maxY());
    if (fixedHeight) needed = *fixedHeight;
    needed = std::max(needed, minimumHeight);
    container.setFrame(old);
    return needed;
}

} // namespace uikit
