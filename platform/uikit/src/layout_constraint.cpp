#include "uikit/layout_constraint.hpp"

#include "platform/log.hpp"
#include "uikit/view.hpp"

#include <cctype>
#include <cmath>
#include <map>
#include <optional>

namespace uikit {

std::shared_ptr<LayoutConstraint> LayoutConstraint::make(const std::shared_ptr<View>& first,
                                                         LayoutAttribute firstAttribute, LayoutRelation relation,
                                                         const std::shared_ptr<View>& second,
                                                         LayoutAttribute secondAttribute, double multiplier,
                                                         double constant) {
    auto constraint = std::make_shared<LayoutConstraint>();
    constraint->first_ = first;
    constraint->firstAttribute_ = firstAttribute;
    constraint->relation_ = relation;
    constraint->second_ = second;
    constraint->secondAttribute_ = second ? secondAttribute : LayoutAttribute::notAnAttribute;
    constraint->multiplier_ = multiplier;
    constraint->constant_ = constant;
    return constraint;
}

namespace {

using A = LayoutAttribute;

bool horizontal(A attribute) {
    return attribute == A::left || attribute == A::right || attribute == A::leading || attribute == A::trailing ||
           attribute == A::width || attribute == A::centerX;
}

// One axis of a view being solved: any two of its four values fix the other two.
struct Axis {
    std::optional<double> min, max, size, center;

    std::optional<double> minimum() const {
        if (min) return min;
        if (max && size) return *max - *size;
        if (center && size) return *center - *size / 2;
        if (center && max) return 2 * *center - *max;
        return std::nullopt;
    }
    std::optional<double> maximum() const {
        if (max) return max;
        if (min && size) return *min + *size;
        if (center && size) return *center + *size / 2;
        if (center && min) return 2 * *center - *min;
        return std::nullopt;
    }
    std::optional<double> extent() const {
        if (size) return size;
        const auto low = minimum();
        const auto high = maximum();
        if (low && high) return *high - *low;
        return std::nullopt;
    }
    std::optional<double> middle() const {
        if (center) return center;
        const auto low = minimum();
        const auto high = maximum();
        if (low && high) return (*low + *high) / 2;
        return std::nullopt;
    }
};

struct Solving {
    View* view;
    Axis x, y;
};

class Solver {
public:
    explicit Solver(View& container) : container_(container) {}

    void run() {
        collect();
        if (items_.empty()) return;
        for (int round = 0; round < 3; ++round) {
            for (int pass = 0; pass < 8 && equalities(); ++pass) {
            }
            if (!intrinsicSizes()) break;
        }
        inequalities();
        place();
        if (conflict_) platform::log::write(platform::LogLevel::warn, "Unable to simultaneously satisfy constraints in " +
                                              std::string(container_.className()));
    }

private:
    void collect() {
        for (const auto& constraint : container_.constraints()) {
            if (!constraint->isActive()) continue;
            for (const auto& item : {constraint->firstItem(), constraint->secondItem()}) {
                if (!item || item.get() == &container_ || item->translatesAutoresizingMaskIntoConstraints()) continue;
                if (!items_.contains(item.get())) items_.emplace(item.get(), Solving{item.get(), {}, {}});
            }
            active_.push_back(constraint);
        }
    }

    Axis* axisOf(View* view, A attribute) {
        const auto found = items_.find(view);
        if (found == items_.end()) return nullptr;
        return horizontal(attribute) ? &found->second.x : &found->second.y;
    }

    // A view that is not solved here stands where it is.
    std::optional<double> fixedValue(View* view, A attribute) const {
        const Rect frame = view == &container_ ? Rect({}, container_.frame().size)
                                               : view->convert(view->bounds(), &container_);
        switch (attribute) {
        case A::left: case A::leading: return frame.minX();
        case A::right: case A::trailing: return frame.maxX();
        case A::top: return frame.minY();
        case A::bottom: return frame.maxY();
        case A::width: return frame.width();
        case A::height: return frame.height();
        case A::centerX: return frame.midX();
        case A::centerY: return frame.midY();
        default: return std::nullopt;
        }
    }

    std::optional<double> value(View* view, A attribute) {
        if (attribute == A::notAnAttribute) return 0.0;
        Axis* axis = axisOf(view, attribute);
        if (!axis) return fixedValue(view, attribute);
        switch (attribute) {
        case A::left: case A::leading: case A::top: return axis->minimum();
        case A::right: case A::trailing: case A::bottom: return axis->maximum();
        case A::width: case A::height: return axis->extent();
        default: return axis->middle();
        }
    }

    bool assign(View* view, A attribute, double to) {
        Axis* axis = axisOf(view, attribute);
        if (!axis) return false;
        if (const auto known = value(view, attribute)) {
            if (std::abs(*known - to) > 0.5) conflict_ = true;
            return false;
        }
        switch (attribute) {
        case A::left: case A::leading: case A::top: axis->min = to; break;
        case A::right: case A::trailing: case A::bottom: axis->max = to; break;
        case A::width: case A::height: axis->size = std::max(0.0, to); break;
        default: axis->center = to; break;
        }
        return true;
    }

    bool equalities() {
        bool progress = false;
        for (const auto& constraint : active_) {
            if (constraint->relation() != LayoutRelation::equal) continue;
            const auto first = constraint->firstItem();
            const auto second = constraint->secondItem();
            if (!first) continue;
            const auto right = second ? value(second.get(), constraint->secondAttribute()) : std::optional(0.0);
            const auto left = value(first.get(), constraint->firstAttribute());
            if (right && !left) {
                progress |= assign(first.get(), constraint->firstAttribute(),
                                   *right * (second ? constraint->multiplier() : 0) + constraint->constant());
            } else if (left && !right && second && constraint->multiplier() != 0) {
                progress |= assign(second.get(), constraint->secondAttribute(),
                                   (*left - constraint->constant()) / constraint->multiplier());
            } else if (left && right) {
                const double wanted = *right * (second ? constraint->multiplier() : 0) + constraint->constant();
                if (std::abs(*left - wanted) > 0.5) conflict_ = true;
            }
        }
        return progress;
    }

    // Views still without a size take their natural one; true when any did.
    bool intrinsicSizes() {
        bool any = false;
        for (auto& [view, solving] : items_) {
            const Size natural = view->intrinsicContentSize();
            if (!solving.x.extent() && natural.width >= 0) {
                solving.x.size = natural.width;
                any = true;
            }
            if (!solving.y.extent() && natural.height >= 0) {
                solving.y.size = natural.height;
                any = true;
            }
        }
        return any;
    }

    void inequalities() {
        for (const auto& constraint : active_) {
            if (constraint->relation() == LayoutRelation::equal) continue;
            const auto first = constraint->firstItem();
            const auto second = constraint->secondItem();
            if (!first) continue;
            Axis* axis = axisOf(first.get(), constraint->firstAttribute());
            if (!axis) continue;
            const auto right = second ? value(second.get(), constraint->secondAttribute()) : std::optional(0.0);
            if (!right) continue;
            const double bound = *right * (second ? constraint->multiplier() : 0) + constraint->constant();
            const auto current = value(first.get(), constraint->firstAttribute());
            const bool atLeast = constraint->relation() == LayoutRelation::greaterThanOrEqual;
            if (current && (atLeast ? *current >= bound : *current <= bound)) continue;
            const A attribute = constraint->firstAttribute();
            if (attribute == A::width || attribute == A::height) {
                // A size bound moves the far edge, keeping the near one.
                const auto low = axis->minimum();
                axis->size = std::max(0.0, bound);
                axis->max.reset();
                axis->center.reset();
                if (low) axis->min = low;
            } else if (!current) {
                assign(first.get(), attribute, bound);
            }
        }
    }

    void place() {
        for (auto& [view, solving] : items_) {
            const Rect old = view->frame();
            const auto settle = [](Axis& axis, double oldOrigin, double oldSize) {
                if (!axis.extent()) axis.size = oldSize;
                if (!axis.minimum()) axis.min = oldOrigin;
                return std::pair(*axis.minimum(), std::max(0.0, *axis.extent()));
            };
            const auto [x, width] = settle(solving.x, old.minX(), old.width());
            const auto [y, height] = settle(solving.y, old.minY(), old.height());
            Rect frame{x, y, width, height};
            // Solved in the container; placed in the view's own parent.
            if (View* parent = view->superview(); parent && parent != &container_)
                frame = container_.convert(frame, parent);
            view->setFrame(frame);
        }
    }

    View& container_;
    std::map<View*, Solving> items_;
    std::vector<std::shared_ptr<LayoutConstraint>> active_;
    bool conflict_ = false;
};

// Reads a visual format one element at a time.
class VisualFormat {
public:
    VisualFormat(std::string_view text, const std::map<std::string, double>& metrics,
                 const std::map<std::string, std::shared_ptr<View>>& views)
        : text_(text), metrics_(metrics), views_(views) {}

    std::optional<std::vector<std::shared_ptr<LayoutConstraint>>> parse() {
        bool vertical = false;
        if (text_.starts_with("V:")) {
            vertical = true;
            text_.remove_prefix(2);
        } else if (text_.starts_with("H:")) {
            text_.remove_prefix(2);
        }
        const A lead = vertical ? A::top : A::leading;
        const A trail = vertical ? A::bottom : A::trailing;
        const A extent = vertical ? A::height : A::width;
        std::vector<std::shared_ptr<LayoutConstraint>> out;
        std::shared_ptr<View> previous;  // null before the first element
        bool previousIsEdge = false;
        std::optional<double> gap;       // the spacing read since the previous element
        while (!text_.empty()) {
            if (text_.front() == '|') {
                text_.remove_prefix(1);
                if (!previous) {
                    previousIsEdge = true;
                    continue;
                }
                View* parent = previous->superview();
                if (!parent) return std::nullopt;
                out.push_back(LayoutConstraint::make(parent->shared_from_this(), trail, LayoutRelation::equal, previous,
                                                     trail, 1, gap.value_or(0)));
                gap.reset();
                continue;
            }
            if (text_.front() == '-') {
                text_.remove_prefix(1);
                if (!text_.empty() && text_.front() == '[') {
                    gap = 8;
                    continue;
                }
                if (!text_.empty() && text_.front() == '|') {
                    gap = gap.value_or(20);
                    continue;
                }
                const auto amount = number();
                if (!amount || text_.empty() || text_.front() != '-') return std::nullopt;
                text_.remove_prefix(1);
                gap = *amount;
                continue;
            }
            if (text_.front() != '[') return std::nullopt;
            const auto close = text_.find(']');
            if (close == std::string_view::npos) return std::nullopt;
            std::string_view inside = text_.substr(1, close - 1);
            text_.remove_prefix(close + 1);
            std::optional<std::pair<LayoutRelation, double>> size;
            if (const auto open = inside.find('('); open != std::string_view::npos) {
                std::string_view predicate = inside.substr(open + 1, inside.find(')') - open - 1);
                inside = inside.substr(0, open);
                LayoutRelation relation = LayoutRelation::equal;
                if (predicate.starts_with("==")) predicate.remove_prefix(2);
                else if (predicate.starts_with(">=")) relation = LayoutRelation::greaterThanOrEqual, predicate.remove_prefix(2);
                else if (predicate.starts_with("<=")) relation = LayoutRelation::lessThanOrEqual, predicate.remove_prefix(2);
                const auto amount = valueOf(predicate);
                if (!amount) return std::nullopt;
                size = std::pair(relation, *amount);
            }
            const auto found = views_.find(std::string(inside));
            if (found == views_.end() || !found->second) return std::nullopt;
            const auto& view = found->second;
            if (size) out.push_back(LayoutConstraint::make(view, extent, size->first, nullptr, A::notAnAttribute, 1, size->second));
            if (previous) {
                out.push_back(LayoutConstraint::make(view, lead, LayoutRelation::equal, previous, trail, 1, gap.value_or(0)));
            } else if (previousIsEdge) {
                View* parent = view->superview();
                if (!parent) return std::nullopt;
                out.push_back(LayoutConstraint::make(view, lead, LayoutRelation::equal, parent->shared_from_this(), lead, 1,
                                                     gap.value_or(0)));
            }
            gap.reset();
            previous = view;
            previousIsEdge = false;
        }
        return out;
    }

private:
    std::optional<double> valueOf(std::string_view token) const {
        if (token.empty()) return std::nullopt;
        if (const auto metric = metrics_.find(std::string(token)); metric != metrics_.end()) return metric->second;
        try {
            std::size_t used = 0;
            const double amount = std::stod(std::string(token), &used);
            if (used != token.size()) return std::nullopt;
            return amount;
        } catch (...) {
            return std::nullopt;
        }
    }
    std::optional<double> number() {
        std::string_view token;
        if (!text_.empty() && text_.front() == '(') {
            const auto close = text_.find(')');
            if (close == std::string_view::npos) return std::nullopt;
            token = text_.substr(1, close - 1);
            text_.remove_prefix(close + 1);
        } else {
            std::size_t end = 0;
            while (end < text_.size() && (std::isalnum(static_cast<unsigned char>(text_[end])) || text_[end] == '.')) ++end;
            token = text_.substr(0, end);
            text_.remove_prefix(end);
        }
        return valueOf(token);
    }

    std::string_view text_;
    const std::map<std::string, double>& metrics_;
    const std::map<std::string, std::shared_ptr<View>>& views_;
};

} // namespace

std::vector<std::shared_ptr<LayoutConstraint>> LayoutConstraint::constraintsWithVisualFormat(
    std::string_view format, const std::map<std::string, double>& metrics,
    const std::map<std::string, std::shared_ptr<View>>& views) {
    auto parsed = VisualFormat(format, metrics, views).parse();
    if (!parsed) {
        platform::log::write(platform::LogLevel::warn, "Unable to parse constraint format: " + std::string(format));
        return {};
    }
    return *parsed;
}

void solveConstraints(View& container) { Solver(container).run(); }

} // namespace uikit
