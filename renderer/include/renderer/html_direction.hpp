#pragma once

#include <string>
#include <string_view>

namespace renderer {

// The page with each `dir=auto` replaced by the direction a browser gives it: that of the first
// letter with a direction in the element's text, outside scripts, style sheets and descendants
// that set their own. Qt's rich text knows only "ltr" and "rtl". Other markup is kept as written.
std::string resolveAutoDirection(std::string_view html);

} // namespace renderer
