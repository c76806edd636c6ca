#pragma once

#include "uikit/geometry.hpp"

#include <memory>
#include <string>
#include <string_view>

namespace uikit {

// How tall a page of HTML is when laid out at a width. Tests get a deterministic estimate; the
// renderer installs a real layout.
class HTMLMeasurer {
public:
    virtual ~HTMLMeasurer() = default;
    virtual Size measure(const std::string& html, double width) const = 0;
};

// The page's text (tags dropped, blocks and <br> as line breaks, entities decoded) wrapped in
// glyphs 8 points wide on lines 20 points high, inside margins of 8 points.
class TextEstimateHTMLMeasurer final : public HTMLMeasurer {
public:
    static constexpr double glyphWidth = 8;
    static constexpr double lineHeight = 20;
    static constexpr double margin = 8;
    Size measure(const std::string& html, double width) const override;
};

// The text a page shows, one line per block: what is inside <head>, <script> and <style> is left
// out, runs of white space become one space, and the common entities are decoded.
std::string visibleTextOfHTML(std::string_view html);

const HTMLMeasurer& htmlMeasurer();
// Replaces the measurer and returns the previous one; none puts the estimate back.
std::shared_ptr<const HTMLMeasurer> setHTMLMeasurer(std::shared_ptr<const HTMLMeasurer> measurer);

} // namespace uikit
