#include "platform/text_attributes.hpp"

#include <algorithm>

namespace platform {
namespace {

// Entries are few and kept in order of name: the first one at or after `name`.
template <typename Entries>
auto placeOf(Entries& entries, AttributeName name) {
    return std::find_if(entries.begin(), entries.end(),
                        [name](const TextAttributes::Entry& entry) { return entry.name >= name; });
}

} // namespace

TextAttributes::TextAttributes(std::initializer_list<std::pair<AttributeName, AttributeValue>> entries) {
    for (const auto& [name, value] : entries) set(name, value);
}

const AttributeValue* TextAttributes::find(AttributeName name) const {
    if (!entries_) return nullptr;
    const auto found = placeOf(*entries_, name);
    return found != entries_->end() && found->name == name ? &found->value : nullptr;
}

void TextAttributes::set(AttributeName name, AttributeValue value) {
    auto& entries = mutableEntries();
    const auto found = placeOf(entries, name);
    if (found != entries.end() && found->name == name)
        found->value = std::move(value);
    else
        entries.insert(found, Entry{name, std::move(value)});
}

void TextAttributes::remove(AttributeName name) {
    if (!find(name)) return;
    auto& entries = mutableEntries();
    entries.erase(placeOf(entries, name));
}

void TextAttributes::merge(const TextAttributes& other) {
    if (other.empty() || entries_ == other.entries_) return;
    if (empty()) {
        entries_ = other.entries_;
        return;
    }
    for (const auto& entry : other.entries()) set(entry.name, entry.value);
}

const TextAttributes::Entries& TextAttributes::entries() const {
    static const Entries none;
    return entries_ ? *entries_ : none;
}

bool TextAttributes::operator==(const TextAttributes& other) const {
    return entries_ == other.entries_ || entries() == other.entries();
}

TextAttributes::Entries& TextAttributes::mutableEntries() {
    // A sole owner may change its storage in place; anyone else copies it first.
    if (!entries_)
        entries_ = std::make_shared<Entries>();
    else if (entries_.use_count() > 1)
        entries_ = std::make_shared<Entries>(*entries_);
    return *entries_;
}

} // namespace platform
