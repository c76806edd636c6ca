#include "tivra/state.hpp"

namespace tivra {

State::State() : slices_(std::make_shared<const Slices>()) {}

State::State(const Dictionary& dictionary) {
    auto slices = std::make_shared<Slices>();
    for (const auto& [key, value] : dictionary)
        if (value.has_value()) slices->emplace(key, std::make_shared<const std::any>(value));
    slices_ = std::move(slices);
}

State::State(std::initializer_list<std::pair<const std::string, std::any>> pairs) : State(Dictionary(pairs)) {}

std::vector<std::string> State::keys() const {
    std::vector<std::string> out;
    out.reserve(slices_->size());
    for (const auto& entry : *slices_) out.push_back(entry.first);
    return out;
}

std::size_t State::count() const { return slices_->size(); }

bool State::contains(const std::string& key) const { return slices_->contains(key); }

const std::any* State::value(const std::string& key) const {
    auto found = slices_->find(key);
    return found == slices_->end() ? nullptr : found->second.get();
}

void State::set(const std::string& key, std::any value) {
    if (!value.has_value()) {
        remove(key);
        return;
    }
    mutableSlices()[key] = std::make_shared<const std::any>(std::move(value));
}

void State::remove(const std::string& key) {
    if (contains(key)) mutableSlices().erase(key);
}

State::Dictionary State::dictionary() const {
    Dictionary out;
    for (const auto& [key, value] : *slices_) out.emplace(key, *value);
    return out;
}

State::Slices& State::mutableSlices() {
    // Copy on write: the map is cloned only while another State shares it; slices stay shared.
    if (slices_.use_count() > 1) slices_ = std::make_shared<const Slices>(*slices_);
    return const_cast<Slices&>(*slices_);
}

} // namespace tivra
