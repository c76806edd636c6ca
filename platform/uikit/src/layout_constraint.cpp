#include "uikit/layout_constraint.hpp"

#include "platform/log.hpp"
#include "uikit/view.hpp"

#include <boost/container/small_vector.hpp>

#include <cctype>
#include <cstdint>
#include <limits>
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
    constraint->firstRaw_ = first.get();
    constraint->firstAttribute_ = firstAttribute;
    constraint->relation_ = relation;
    constraint->second_ = second;
    constraint->secondRaw_ = second.get();
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

// A number that may be unknown, held as NaN: the solver's inner loops test and pass these all the
// time, and a plain double is cheaper than an optional there.
class Maybe {
public:
    constexpr Maybe() = default;
    constexpr Maybe(double value) : value_(value) {}
    explicit operator bool() const { return !std::isnan(value_); }
    double operator*() const { return value_; }
    void reset() { value_ = std::numeric_limits<double>::quiet_NaN(); }

private:
    double value_ = std::numeric_limits<double>::quiet_NaN();
};

// One axis of a view being solved: any two of its four values fix the other two.
struct Axis {
    Maybe min, max, size, center;

    Maybe minimum() const {
        if (min) return min;
        if (max && size) return *max - *size;
        if (center && size) return *center - *size / 2;
        if (center && max) return 2 * *center - *max;
        return {};
    }
    Maybe maximum() const {
        if (max) return max;
        if (min && size) return *min + *size;
        if (center && size) return *center + *size / 2;
        if (center && min) return 2 * *center - *min;
        return {};
    }
    Maybe extent() const {
        if (size) return size;
        const auto low = minimum();
        const auto high = maximum();
        if (low && high) return *high - *low;
        return {};
    }
    Maybe middle() const {
        if (center) return center;
        const auto low = minimum();
        const auto high = maximum();
        if (low && high) return (*low + *high) / 2;
        return {};
    }
};

struct Solving {
    explicit Solving(View* placed) : view(placed) {}
    View* view;
    Axis x, y;
};


// The order in which a solve fixed each value, kept by the container: while the constraints and
// the views they place stay the same, a new size of the container replays it instead of searching.
// A constraint as one solve reads it.
struct Active {
    View* first;
    A firstAttribute;
    LayoutRelation relation;
    View* second;
    A secondAttribute;
    double multiplier;
    double constant;
    bool settled = false;
};

// The order in which a solve fixed each value, kept by the container: while the constraints and
// the views they place stay the same, a new size of the container replays it instead of searching.
struct Plan {
    enum : std::uint8_t { forward, backward, intrinsicWidth, intrinsicHeight };
    struct Step {
        std::uint8_t kind;
        std::uint16_t index;  // of the constraint, or of the item for an intrinsic size
    };
    std::vector<Step> steps;
    std::vector<Active> active;
    std::vector<const LayoutConstraint*> sources;  // of `active`, in order
    std::vector<View*> items;

    // Whether the container's constraints read now as they did: the same objects, the same items
    // alive, and those still placed by constraints.
    bool fits(const View& container) const {
        std::size_t next = 0;
        for (const auto& constraint : container.constraints()) {
            if (!constraint->isActive() || !constraint->firstView()) continue;
            if (next == sources.size() || sources[next] != constraint.get()) return false;
            if ((constraint->secondView() == nullptr) != (active[next].second == nullptr)) return false;
            ++next;
        }
        if (next != sources.size()) return false;
        for (const View* item : items)
            if (item->translatesAutoresizingMaskIntoConstraints()) return false;
        return true;
    }
};

class Solver {
public:
    explicit Solver(View& container) : container_(container) {}

    void run() {
        auto* plan = static_cast<Plan*>(container_.layoutPlan().get());
        if (plan && plan->fits(container_)) {
            load(*plan);
        } else {
            plan = nullptr;
            collect();
        }
        if (items_.empty()) return;
        if (!(plan && replay(*plan))) {
            resetAxes();
            Plan recorded;
            recording_ = &recorded;
            for (int round = 0; round < 3; ++round) {
                for (int pass = 0; pass < 8 && equalities(); ++pass) {
                }
                if (!intrinsicSizes()) break;
            }
            recording_ = nullptr;
            // A system that solved cleanly solves the same way while only numbers change; a conflict
            // is solved afresh each time, so it keeps being reported.
            if (conflict_) {
                container_.layoutPlan().reset();
            } else {
                recorded.active.assign(active_.begin(), active_.end());
                recorded.sources.assign(sources_.begin(), sources_.end());
                for (const auto& item : items_) recorded.items.push_back(item.view);
                container_.layoutPlan() = std::make_shared<Plan>(std::move(recorded));
            }
        }
        inequalities();
        place();
        if (conflict_) platform::log::write(platform::LogLevel::warn, "Unable to simultaneously satisfy constraints in " +
                                              std::string(container_.className()));
    }

private:
    void collect() {
        const auto& constraints = container_.constraints();
        for (const auto& constraint : constraints) {
            if (!constraint->isActive()) continue;
            // Nothing is freed while a solve runs: the tree holds the views.
            View* first = constraint->firstView();
            View* second = constraint->secondView();
            if (!first) continue;
            for (View* item : {first, second}) {
                if (!item || item == &container_ || item->translatesAutoresizingMaskIntoConstraints()) continue;
                if (!find(item)) items_.emplace_back(item);
            }
            active_.push_back({first, constraint->firstAttribute(), constraint->relation(), second,
                               constraint->secondAttribute(), constraint->multiplier(), constraint->constant()});
            sources_.push_back(constraint.get());
        }
    }

    // Takes the constraints and items as the plan read them, with today's constants.
    void load(const Plan& plan) {
        for (std::size_t i = 0; i < plan.active.size(); ++i) {
            active_.push_back(plan.active[i]);
            active_.back().constant = plan.sources[i]->constant();
            active_.back().settled = false;
            sources_.push_back(plan.sources[i]);
        }
        for (View* item : plan.items) items_.emplace_back(item);
    }

    Solving* find(View* view) {
        for (auto& item : items_)
            if (item.view == view) return &item;
        return nullptr;
    }

    Axis* axisOf(View* view, A attribute) {
        Solving* found = find(view);
        if (!found) return nullptr;
        return horizontal(attribute) ? &found->x : &found->y;
    }

    // A view that is not solved here stands where it is.
    Maybe fixedValue(View* view, A attribute) const {
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
        default: return {};
        }
    }

    Maybe value(View* view, A attribute) {
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

    void resetAxes() {
        for (auto& item : items_) item.x = item.y = Axis();
        for (auto& c : active_) c.settled = false;
    }

    // Runs the recorded steps on today's numbers; false when one no longer applies.
    bool replay(const Plan& plan) {
        for (const auto& step : plan.steps) {
            if (step.kind == Plan::intrinsicWidth || step.kind == Plan::intrinsicHeight) {
                Solving& item = items_[step.index];
                const Size natural = item.view->intrinsicContentSize();
                const double size = step.kind == Plan::intrinsicWidth ? natural.width : natural.height;
                if (size < 0) return false;
                (step.kind == Plan::intrinsicWidth ? item.x : item.y).size = size;
                continue;
            }
            const Active& c = active_[step.index];
            const bool forward = step.kind == Plan::forward;
            const auto known = forward ? (c.second ? value(c.second, c.secondAttribute) : Maybe(0.0))
                                       : value(c.first, c.firstAttribute);
            if (!known) return false;
            const double multiplier = c.second ? c.multiplier : 0;
            const bool assigned = forward ? assign(c.first, c.firstAttribute, *known * multiplier + c.constant)
                                          : assign(c.second, c.secondAttribute, (*known - c.constant) / c.multiplier);
            if (!assigned) return false;
        }
        return !conflict_;
    }

    void note(std::uint8_t kind, std::size_t index) {
        if (recording_) recording_->steps.push_back({kind, static_cast<std::uint16_t>(index)});
    }

    bool equalities() {
        bool progress = false;
        for (std::size_t index = 0; index < active_.size(); ++index) {
            auto& c = active_[index];
            if (c.relation != LayoutRelation::equal || c.settled) continue;
            const auto right = c.second ? value(c.second, c.secondAttribute) : Maybe(0.0);
            const auto left = value(c.first, c.firstAttribute);
            const double multiplier = c.second ? c.multiplier : 0;
            // Once both sides are known the constraint has done all it can.
            if (right && !left) {
                progress |= c.settled = assign(c.first, c.firstAttribute, *right * multiplier + c.constant);
                if (c.settled) note(Plan::forward, index);
            } else if (left && !right && c.second && c.multiplier != 0) {
                progress |= c.settled = assign(c.second, c.secondAttribute, (*left - c.constant) / c.multiplier);
                if (c.settled) note(Plan::backward, index);
            } else if (left && right) {
                c.settled = true;
                if (std::abs(*left - (*right * multiplier + c.constant)) > 0.5) conflict_ = true;
            }
        }
        return progress;
    }

    // Views still without a size take their natural one; true when any did.
    bool intrinsicSizes() {
        bool any = false;
        for (std::size_t index = 0; index < items_.size(); ++index) {
            auto& solving = items_[index];
            const bool needsWidth = !solving.x.extent();
            const bool needsHeight = !solving.y.extent();
            if (!needsWidth && !needsHeight) continue;  // measuring text is the dear part
            const Size natural = solving.view->intrinsicContentSize();
            if (needsWidth && natural.width >= 0) {
                solving.x.size = natural.width;
                note(Plan::intrinsicWidth, index);
                any = true;
            }
            if (needsHeight && natural.height >= 0) {
                solving.y.size = natural.height;
                note(Plan::intrinsicHeight, index);
                any = true;
            }
        }
        return any;
    }

    void inequalities() {
        for (const auto& c : active_) {
            if (c.relation == LayoutRelation::equal) continue;
            Axis* axis = axisOf(c.first, c.firstAttribute);
            if (!axis) continue;
            const auto right = c.second ? value(c.second, c.secondAttribute) : Maybe(0.0);
            if (!right) continue;
            const double bound = *right * (c.second ? c.multiplier : 0) + c.constant;
            const auto current = value(c.first, c.firstAttribute);
            const bool atLeast = c.relation == LayoutRelation::greaterThanOrEqual;
            if (current && (atLeast ? *current >= bound : *current <= bound)) continue;
            const A attribute = c.firstAttribute;
            if (attribute == A::width || attribute == A::height) {
                // A size bound moves the far edge, keeping the near one.
                const auto low = axis->minimum();
                axis->size = std::max(0.0, bound);
                axis->max.reset();
                axis->center.reset();
                if (low) axis->min = low;
            } else if (!current) {
                assign(c.first, attribute, bound);
            }
        }
    }

    void place() {
        for (auto& solving : items_) {
            View* view = solving.view;
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
    Plan* recording_ = nullptr;
    // Few per container: kept on the stack, found by a scan.
    boost::container::small_vector<Solving, 8> items_;
    boost::container::small_vector<Active, 24> active_;
    boost::container::small_vector<const LayoutConstraint*, 24> sources_;
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
        // The spacing read since the previous element, if any.
        double gap = 0;
        bool hasGap = false;
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
                                                     trail, 1, (hasGap ? gap : 0)));
                hasGap = false;
                continue;
            }
            if (text_.front() == '-') {
                text_.remove_prefix(1);
                if (!text_.empty() && text_.front() == '[') {
                    gap = 8;
                    hasGap = true;
                    continue;
                }
                if (!text_.empty() && text_.front() == '|') {
                    gap = hasGap ? gap : 20;
                    hasGap = true;
                    continue;
                }
                const auto amount = number();
                if (!amount || text_.empty() || text_.front() != '-') return std::nullopt;
                text_.remove_prefix(1);
                gap = *amount;
                hasGap = true;
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
                out.push_back(LayoutConstraint::make(view, lead, LayoutRelation::equal, previous, trail, 1, (hasGap ? gap : 0)));
            } else if (previousIsEdge) {
                View* parent = view->superview();
                if (!parent) return std::nullopt;
                out.push_back(LayoutConstraint::make(view, lead, LayoutRelation::equal, parent->shared_from_this(), lead, 1,
                                                     (hasGap ? gap : 0)));
            }
            hasGap = false;
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
