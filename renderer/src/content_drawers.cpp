#include "drawing.hpp"

#include "renderer/conversions.hpp"
#include "uikit/button.hpp"
#include "uikit/image_view.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/search_bar.hpp"
#include "uikit/table_view_cell.hpp"
#include "uikit/text_input.hpp"
#include "uikit/web_view.hpp"

#include <map>

namespace renderer {

namespace {
std::map<std::string, ContentDrawer, std::less<>>& registered() {
    static std::map<std::string, ContentDrawer, std::less<>> drawers;
    return drawers;
}
} // namespace

void registerContentDrawer(std::string className, ContentDrawer drawer) {
    if (drawer)
        registered()[std::move(className)] = std::move(drawer);
    else
        unregisterContentDrawer(className);
}

void unregisterContentDrawer(std::string_view className) {
    if (const auto found = registered().find(className); found != registered().end()) registered().erase(found);
}

namespace detail {

void drawContent(const uikit::View& view, QPainter& painter, const PaintContext& context) {
    if (const auto& drawers = registered(); !drawers.empty())
        if (const auto found = drawers.find(view.className()); found != drawers.end()) {
            found->second(view, painter, context);
            return;
        }
    // Most derived kinds first. Tables, stack views and containers are plain views: their
    // background, border and subviews are all they show.
    if (const auto* input = dynamic_cast<const uikit::TextInput*>(&view)) {
        if (dynamic_cast<const uikit::SearchBar*>(input->superview())) drawSearchGlyph(*input, painter, context);
        return drawTextInput(*input, painter, context);
    }
    if (const auto* button = dynamic_cast<const uikit::Button*>(&view)) return drawButton(*button, painter, context);
    if (const auto* label = dynamic_cast<const uikit::Label*>(&view)) return drawLabel(*label, painter, context);
    if (const auto* image = dynamic_cast<const uikit::ImageView*>(&view)) return drawImageView(*image, painter, context);
    if (const auto* spinner = dynamic_cast<const uikit::ActivityIndicatorView*>(&view))
        return drawActivityIndicator(*spinner, painter, context);
    if (const auto* cell = dynamic_cast<const uikit::TableViewCell*>(&view))
        return drawTableViewCell(*cell, painter, context);
    if (const auto* web = dynamic_cast<const uikit::WebView*>(&view)) return drawWebView(*web, painter, context);
    if (const auto* bar = dynamic_cast<const uikit::NavigationBar*>(&view))
        return drawNavigationBar(*bar, painter, context);
    if (const auto* search = dynamic_cast<const uikit::SearchBar*>(&view)) return drawSearchBar(*search, painter, context);
    // New kinds go here, or register a drawer under their class name.
}

double contentOpacity(const uikit::View& view) {
    const auto* button = dynamic_cast<const uikit::Button*>(&view);
    if (!button || button->isEnabled()) return 1;
    // A disabled button fades unless it was given a look of its own for that state.
    const unsigned disabled = uikit::ControlState::disabled;
    const bool ownLook = button->titleColor(disabled) != button->titleColor(uikit::ControlState::normal) ||
                         button->image(disabled) != button->image(uikit::ControlState::normal);
    return ownLook ? 1 : 0.35;
}

QColor effectiveTint(const uikit::View& view) {
    for (const uikit::View* current = &view; current; current = current->superview())
        if (current->tintColor()) return toQColor(*current->tintColor());
    return {0, 122, 255};
}

Qt::Alignment toQtAlignment(uikit::TextAlignment alignment) {
    switch (alignment) {
    case uikit::TextAlignment::center: return Qt::AlignHCenter;
    case uikit::TextAlignment::right: return Qt::AlignRight;
    case uikit::TextAlignment::justified: return Qt::AlignJustify;
    case uikit::TextAlignment::left:
    case uikit::TextAlignment::natural: break;
    }
    return Qt::AlignLeft;
}

} // namespace detail
} // namespace renderer
