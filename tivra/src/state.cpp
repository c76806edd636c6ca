#include "tivra/state.hpp"

#include <algorithm>

namespace tivra {

namespace {
template <class Entries>
auto lowerBound(Entries& entries, const std::string& key) {
    return std::lower_bound(entries.begin(), entries.end(), key,
                            [](const auto& entry, const std::string& wanted) { return *entry.key < wanted; });
}
} // namespace

State::State() : slices_(new Slices()) {}

State::State(const Dictionary& dictionary) : State() {
    auto& entries = mutableSlices().entries;
    for (const auto& [key, value] : dictionary)
        if (value.has_value())
            entries.push_back({std::make_shared<const std::string>(key), std::make_shared<const std::any>(value)});
}

State::State(std::initializer_list<std::pair<const std::string, std::any>> pairs) : State(Dictionary(pairs)) {}

std::vector<std::string> State::keys() const {
    std::vector<std::string> out;
    out.reserve(slices_->entries.size());
    for (const auto& entry : slices_->entries) out.push_back(*entry.key);
    return out;
}

std::size_t State::count() const { return slices_->entries.size(); }

bool State::contains(const std::string& key) const { return find(key) != nullptr; }

const State::Entry* State::find(const std::string& key) const {
    const auto& entries = slices_->entries;
    auto found = lowerBound(entries, key);
    return found != entries.end() && *found->key == key ? &*found : nullptr;
}

const std::any* State::value(const std::string& key) const {
    const Entry* entry = find(key);
    return entry ? entry->value.get() : nullptr;
}

void State::set(const std::string& key, std::any value) {
    if (!value.has_value()) {
        remove(key);
        return;
    }
    auto boxed = std::make_shared<const std::any>(std::move(value));
    auto& entries = mutableSlices().entries;
    auto found = lowerBound(entries, key);
    if (found != entries.end() && *found->key == key)
        found->value = std::move(boxed);
    else
        entries.insert(found, {std::make_shared<const std::string>(key), std::move(boxed)});
}

void State::remove(const std::string& key) {
    if (!contains(key)) return;
    auto& entries = mutableSlices().entries;
    entries.erase(lowerBound(entries, key));
}

State::Dictionary State::dictionary() const {
    Dictionary out;
    for (const auto& entry : slices_->entries) out.emplace(*entry.key, *entry.value);
    return out;
}

State::Slices& State::mutableSlices() {
    // Copy on write: the entries are cloned only while another State shares them; slices stay shared.
    if (slices_->use_count() > 1) {
        boost::intrusive_ptr<Slices> copy(new Slices());
        copy->entries = slices_->entries;
        slices_ = copy;
    }
    return const_cast<Slices&>(*slices_);
}

} // namespace tivra
