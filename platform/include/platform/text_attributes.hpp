#pragma once

#include "platform/color.hpp"
#include "platform/font.hpp"
#include "platform/paragraph_style.hpp"
#include "platform/url.hpp"

#include <boost/container/small_vector.hpp>

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace platform {

// The attributes that styled text knows, and the type of value each takes.
enum class AttributeName {
    font,             // Font
    foregroundColor,  // Color
    paragraphStyle,   // ParagraphStyle
    kern,             // double, points
    link,             // URL
};
inline constexpr AttributeName fontAttributeName = AttributeName::font;
inline constexpr AttributeName foregroundColorAttributeName = AttributeName::foregroundColor;
inline constexpr AttributeName paragraphStyleAttributeName = AttributeName::paragraphStyle;
inline constexpr AttributeName kernAttributeName = AttributeName::kern;
inline constexpr AttributeName linkAttributeName = AttributeName::link;

using AttributeValue = std::variant<Font, Color, ParagraphStyle, double, URL, std::string>;

// A map from attribute name to value, with value semantics. Copies share their storage until one
// of them changes, so passing a style down a tree and stamping it on every run costs no copying.
class TextAttributes {
public:
    struct Entry {
        AttributeName name;
        AttributeValue value;
        bool operator==(const Entry&) const = default;
    };

    TextAttributes() = default;
    TextAttributes(std::initializer_list<std::pair<AttributeName, AttributeValue>> entries);

    const AttributeValue* find(AttributeName name) const;
    template <typename T>
    const T* get(AttributeName name) const {
        const auto* value = find(name);
        return value ? std::get_if<T>(value) : nullptr;
    }

    void set(AttributeName name, AttributeValue value);
    void remove(AttributeName name);
    // Sets every entry of `other`, overwriting.
    void merge(const TextAttributes& other);

    bool empty() const { return !entries_ || entries_->empty(); }
    std::size_t size() const { return entries_ ? entries_->size() : 0; }
    // A map seldom holds more than a handful of entries: they live in the one shared block.
    using Entries = boost::container::small_vector<Entry, 6>;

    // In order of name.
    const Entries& entries() const;

    bool operator==(const TextAttributes& other) const;
    // True when both are copies of one map, with no change since; cheaper than ==.
    bool isSameStorage(const TextAttributes& other) const { return entries_ == other.entries_; }

private:
    Entries& mutableEntries();

    std::shared_ptr<Entries> entries_;
};

} // namespace platform
