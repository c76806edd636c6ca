#include "html_pages.hpp"

#include <list>
#include <memory>

namespace renderer::detail {

namespace {
constexpr std::size_t kept = 8;
}

const HtmlPage& htmlPage(const std::string& html, double width) {
    static std::list<std::unique_ptr<HtmlPage>> pages;  // most recent first
    const double laidOut = HtmlPage::layoutWidth(width);
    for (auto page = pages.begin(); page != pages.end(); ++page)
        if ((*page)->width() == laidOut && (*page)->html() == html) {
            pages.splice(pages.begin(), pages, page);
            return *pages.front();
        }
    pages.push_front(std::make_unique<HtmlPage>(html, width));
    if (pages.size() > kept) pages.pop_back();
    return *pages.front();
}

} // namespace renderer::detail
