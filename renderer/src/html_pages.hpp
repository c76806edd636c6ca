#pragma once

#include "renderer/html_page.hpp"

#include <string>

namespace renderer::detail {

// The page laid out for the HTML at the width, shared by measuring, drawing and link taps so a
// page is laid out once while it shows. The last few pages are kept. Main thread only.
const HtmlPage& htmlPage(const std::string& html, double width);

} // namespace renderer::detail
