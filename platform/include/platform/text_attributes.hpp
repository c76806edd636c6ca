#pragma once

#include "platform/color.hpp"
#include "platform/font.hpp"
#include "platform/paragraph_style.hpp"
#include "platform/url.hpp"

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace platform {

// The names of the attributes that styled text knows.
inline constexpr std::string_view fontAttributeName = "font";                       // Font
inline constexpr std::string_view foregroundColorAttributeName = "foregroundColor"; // Color
inline constexpr std::string_view paragraphStyleAttributeName = "paragraphStyle";   // ParagraphStyle
inline constexpr std::string_view kernAttributeName = "kern";                       // double, points
inline constexpr std::string_view linkAttributeName = "link";                       // Url

using AttributeValue = std::variant<Font, Color, ParagraphStyle, double, Url, std::string>;

// A map from attribute name to value, with value semantics. Copies share their storage until one
// of them changes, so passing a style down a tree and stamping it on every run costs no copying.
class TextAttributes {
public:
    struct Entry {
        std::string name;
        AttributeValue value;
        bool operator==(const Entry&) const = default;
    };

    TextAttributes() = default;
    TextAttributes(std::initializer_list<std::pair<std::string_view, AttributeValue>> entries);

    const AttributeValue* find(std::string_view name) const;
    template <typename T>
    const T* get(std::string_view name) const {
        const auto* value = find(name);
        return value ? std::get_if<T>(value) : nullptr;
    }

    void set(std::string_view name, AttributeValue value);
    void remove(std::string_view name);
    // Sets every entry of `other`, overwriting.
    void merge(const TextAttributes& other);

    bool empty() const { return !entries_ || entries_->empty(); }
    std::size_t size() const { return entries_ ? entries_->size() : 0; }
    // In order of name.
    const std::vector<Entry>& entries() const;

    bool operator==(const TextAttributes& other) const;

private:
    std::vector<Entry>& mutableEntries();

    std::shared_ptr<std::vector<Entry>> entries_;
};

} // namespace platform
