#pragma once

namespace platform {

// A set of Unicode code points.
class CharacterSet {
public:
    // Space separators, tab, the line and paragraph separators, and U+000A...U+000D, U+0085.
    static CharacterSet whitespaceAndNewlines();

    bool contains(char32_t codePoint) const { return test_(codePoint); }

private:
    using Test = bool (*)(char32_t);
    explicit CharacterSet(Test test) : test_(test) {}
    Test test_;
};

} // namespace platform
