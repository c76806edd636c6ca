#include "tivra/state.hpp"

#include <algorithm>

namespace tivra {

namespace {
template <class Keys>
boost::intrusive_ptr<const Keys> noKeys() {
    // Shared by every empty state; never freed, since this reference stays.
    static const boost::intrusive_ptr<const Keys> none(new Keys());
    return none;
}
} // namespace

State::State() : slices_(new Slices()) { const_cast<Slices&>(*slices_).keys = noKeys<Keys>(); }

State::State(const Dictionary& dictionary) : State() {
    auto* keys = new Keys();
    auto& slices = mutableSlices();
    for (const auto& [key, value] : dictionary) {
        if (!value.has_value()) continue;
        keys->names.push_back(key);
        slices.values.push_back(std::make_shared<const std::any>(value));
    }
    slices.keys = keys;
}

State::State(std::initializer_list<std::pair<const std::string, std::any>> pairs) : State(Dictionary(pairs)) {}

std::vector<std::string> State::keys() const { return slices_->keys->names; }

std::size_t State::count() const { return slices_->values.size(); }

bool State::contains(const std::string& key) const { return find(key).second; }

std::pair<std::size_t, bool> State::find(const std::string& key) const {
    const auto& names = slices_->keys->names;
    const auto found = std::lower_bound(names.begin(), names.end(), key);
    return {static_cast<std::size_t>(found - names.begin()), found != names.end() && *found == key};
}

std::optional<std::size_t> State::Layout::indexOf(const std::string& key) const {
    if (!keys_) return std::nullopt;
    const auto& names = keys_->names;
    const auto found = std::lower_bound(names.begin(), names.end(), key);
    if (found == names.end() || *found != key) return std::nullopt;
    return static_cast<std::size_t>(found - names.begin());
}

std::optional<std::size_t> State::indexOf(const std::string& key) const {
    const auto [index, present] = find(key);
    return present ? std::optional<std::size_t>(index) : std::nullopt;
}

const std::any* State::value(const std::string& key) const {
    const auto [index, present] = find(key);
    return present ? slices_->values[index].get() : nullptr;
}

void State::set(const std::string& key, std::any value) {
    if (!value.has_value()) {
        remove(key);
        return;
    }
    auto boxed = std::make_shared<const std::any>(std::move(value));
    const auto [index, present] = find(key);
    auto& slices = mutableSlices();
    const auto at = static_cast<std::ptrdiff_t>(index);
    if (present) {
        slices.values[index] = std::move(boxed);
        return;
    }
    auto* keys = new Keys(*slices.keys);
    keys->names.insert(keys->names.begin() + at, key);
    slices.keys = keys;
    slices.values.insert(slices.values.begin() + at, std::move(boxed));
}

void State::setValueAt(std::size_t index, std::any value) {
    if (!value.has_value() || index >= count()) return;
    auto boxed = std::make_shared<const std::any>(std::move(value));
    mutableSlices().values[index] = std::move(boxed);
}

void State::remove(const std::string& key) {
    const auto [index, present] = find(key);
    if (!present) return;
    auto& slices = mutableSlices();
    const auto at = static_cast<std::ptrdiff_t>(index);
    auto* keys = new Keys(*slices.keys);
    keys->names.erase(keys->names.begin() + at);
    slices.keys = keys;
    slices.values.erase(slices.values.begin() + at);
}

State::Dictionary State::dictionary() const {
    Dictionary out;
    forEach([&](const std::string& key, const std::any& value) { out.emplace(key, value); });
    return out;
}

State State::detachedCopy(const State& other) {
    boost::intrusive_ptr<Slices> slices(new Slices());
    slices->keys = other.slices_->keys;
    slices->values = other.slices_->values;
    return State(std::move(slices));
}

State::Slices& State::mutableSlices() {
    // Copy on write: cloned only while another State shares them; the slices themselves and
    // the key table stay shared.
    if (slices_->use_count() > 1) {
        boost::intrusive_ptr<Slices> copy(new Slices());
        copy->keys = slices_->keys;
        copy->values = slices_->values;
        slices_ = copy;
    }
    return const_cast<Slices&>(*slices_);
}

} // namespace tivra
