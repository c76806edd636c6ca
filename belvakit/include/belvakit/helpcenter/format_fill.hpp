#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace belvakit {

// A localised format with its "%@" places filled in order, in one pass, so a value holding "%@"
// is never filled itself. A place without a value is left empty; a format without places stays
// as it is.
inline std::string fillFormat(std::string_view format, std::initializer_list<std::string_view> values) {
    std::string out;
    auto value = values.begin();
    std::size_t from = 0;
    for (auto at = format.find("%@"); at != std::string_view::npos; at = format.find("%@", from)) {
        out.append(format.substr(from, at - from));
        if (value != values.end()) out.append(*value++);
        from = at + 2;
    }
    out.append(format.substr(from));
    return out;
}

} // namespace belvakit
