#include "scene.hpp"

#include "platform/attributed_string.hpp"
#include "platform/url.hpp"

#include <cmath>
#include <cstdlib>
#include <functional>

namespace renderer_test {

using platform::Color;
using platform::Font;
using uikit::make;

namespace {

platform::ImagePtr imageOf(int width, int height, const std::function<void(int, int, std::uint8_t*)>& paint) {
    auto image = std::make_shared<platform::Image>();
    image->width = width;
    image->height = height;
    image->rgba.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            paint(x, y, &image->rgba[(static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + x) * 4]);
    return image;
}

} // namespace

platform::ImagePtr gradientImage(int width, int height) {
    return imageOf(width, height, [&](int x, int y, std::uint8_t* pixel) {
        pixel[0] = static_cast<std::uint8_t>(255 * x / std::max(1, width - 1));
        pixel[1] = 120;
        pixel[2] = static_cast<std::uint8_t>(255 * y / std::max(1, height - 1));
        pixel[3] = 255;
    });
}

platform::ImagePtr discMask(int size) {
    const double r = size / 2.0;
    return imageOf(size, size, [&](int x, int y, std::uint8_t* pixel) {
        pixel[0] = pixel[1] = pixel[2] = 0;
        pixel[3] = std::hypot(x + 0.5 - r, y + 0.5 - r) <= r - 1 ? 255 : 0;
    });
}

QColor pixelAt(const QImage& image, double x, double y, double scale) {
    return image.pixelColor(static_cast<int>(x * scale), static_cast<int>(y * scale));
}

bool differs(const QColor& a, const QColor& b, int tolerance) {
    return std::abs(a.red() - b.red()) > tolerance || std::abs(a.green() - b.green()) > tolerance ||
           std::abs(a.blue() - b.blue()) > tolerance || std::abs(a.alpha() - b.alpha()) > tolerance;
}

namespace {

std::shared_ptr<uikit::Label> label(const std::string& text, uikit::Rect frame, Font font, Color color) {
    auto made = make<uikit::Label>(frame);
    made->setText(text);
    made->setFont(font);
    made->setTextColor(color);
    return made;
}

platform::AttributedString styledText() {
    platform::AttributedString text;
    text.append("Bold ", {{platform::AttributeName::font, Font::boldSystemFont(17)}});
    text.append("italic ", {{platform::AttributeName::font, *Font::named(".System-Italic", 17)},
                            {platform::AttributeName::foregroundColor, Color::fromRGB(128, 0, 160)}});
    text.append("and a link", {{platform::AttributeName::font, Font::systemFont(17)},
                               {platform::AttributeName::link, *platform::URL::parse("https://help.example.com")}});
    text.append(" in one styled label that wraps onto its next line and is cut at the end of its third line "
                "because it goes on for far longer than three lines could ever hold",
                {{platform::AttributeName::font, Font::systemFont(15)},
                 {platform::AttributeName::foregroundColor, Color::fromRGB(60, 60, 67)}});
    return text;
}

std::shared_ptr<uikit::TextField> field(uikit::Rect frame) {
    auto made = make<uikit::TextField>(frame);
    made->setBackgroundColor(Color::white());
    made->setCornerRadius(6);
    made->setBorderWidth(1);
    made->setBorderColor(Color::fromRGB(200, 200, 205));
    made->textInsets = {0, 10, 0, 10};
    return made;
}

// A white phone window whose root is a navigation controller around a screen of that title.
std::shared_ptr<uikit::ViewController> showScreen(std::shared_ptr<uikit::Window>& window, const std::string& title,
                                                  std::shared_ptr<uikit::NavigationController>* navigation = nullptr) {
    window = make<uikit::Window>(uikit::Environment::phonePortrait());
    window->setBackgroundColor(Color::white());
    auto screen = std::make_shared<uikit::ViewController>();
    screen->setTitle(title);
    auto controller = std::make_shared<uikit::NavigationController>(screen);
    window->setRootViewController(controller);
    if (navigation) *navigation = controller;
    return screen;
}

} // namespace

std::unique_ptr<Scene> makeScene() {
    auto scene = std::make_unique<Scene>();
    auto screen = showScreen(scene->window, "Renderer", &scene->navigation);
    screen->navigationItem().rightBarButtonItem = std::make_shared<uikit::BarButtonItem>(uikit::BarButtonItem{"Edit"});
    scene->window->makeKeyAndVisible();
    scene->screen = screen->view();
    auto& view = *scene->screen;
    view.setBackgroundColor(Color::fromRGB(242, 242, 247));

    view.addSubview(label("Every kind of view", {16, 72, 343, 28}, Font::boldSystemFont(22), Color::fromRGB(20, 20, 30)));
    scene->styledLabel = make<uikit::Label>(uikit::Rect{16, 104, 343, 62});
    scene->styledLabel->setAttributedText(styledText());
    scene->styledLabel->setNumberOfLines(3);
    view.addSubview(scene->styledLabel);

    scene->sendButton = make<uikit::Button>(uikit::ButtonType::system, uikit::Rect{16, 176, 120, 36});
    scene->sendButton->setTitle("Send");
    scene->sendButton->setImage(discMask(14));
    scene->sendButton->setBackgroundColor(Color::white());
    scene->sendButton->setCornerRadius(8);
    scene->sendButton->setBorderWidth(1);
    scene->sendButton->setBorderColor(Color::fromRGB(0, 122, 255));
    scene->sendButton->addTarget(uikit::ControlEvent::touchUpInside, [raw = scene.get()] { ++raw->sends; });
    scene->sendButton->setAccessibilityIdentifier("send");
    view.addSubview(scene->sendButton);

    scene->disabledButton = make<uikit::Button>(uikit::ButtonType::system, uikit::Rect{150, 176, 120, 36});
    scene->disabledButton->setTitle("Disabled");
    scene->disabledButton->setEnabled(false);
    view.addSubview(scene->disabledButton);

    scene->halfClear = make<uikit::View>(uikit::Rect{290, 180, 60, 28});
    scene->halfClear->setBackgroundColor(Color{0, 0, 1, 1});
    scene->halfClear->setAlpha(0.5);
    view.addSubview(scene->halfClear);

    scene->photo = make<uikit::ImageView>(gradientImage(160, 90));
    scene->photo->setFrame({16, 224, 96, 96});
    scene->photo->contentMode = uikit::ContentMode::scaleAspectFill;
    scene->photo->setClipsToBounds(true);
    scene->photo->setCornerRadius(14);
    view.addSubview(scene->photo);

    scene->templateIcon = make<uikit::ImageView>(discMask(40));
    scene->templateIcon->setFrame({128, 252, 40, 40});
    scene->templateIcon->templateRendering = true;
    scene->templateIcon->setTintColor(Color{0.9, 0.1, 0.1, 1});
    view.addSubview(scene->templateIcon);

    scene->spinner = make<uikit::ActivityIndicatorView>(2);
    scene->spinner->setFrame({186, 262, 20, 20});
    scene->spinner->startAnimating();
    view.addSubview(scene->spinner);

    auto dark = make<uikit::View>(uikit::Rect{226, 240, 64, 64});
    dark->setBackgroundColor(Color{0, 0, 0, 0.75});
    dark->setCornerRadius(12);
    auto white = make<uikit::ActivityIndicatorView>(0);
    white->setFrame({14, 14, 37, 37});
    white->startAnimating();
    dark->addSubview(white);
    view.addSubview(dark);

    scene->hiddenView = make<uikit::View>(uikit::Rect{306, 240, 50, 50});
    scene->hiddenView->setBackgroundColor(Color{1, 0, 0, 1});
    scene->hiddenView->setHidden(true);
    view.addSubview(scene->hiddenView);

    scene->emptyField = field({16, 332, 343, 36});
    scene->emptyField->setPlaceholder("Email address");
    scene->emptyField->setAccessibilityIdentifier("email");
    view.addSubview(scene->emptyField);

    scene->typedField = field({16, 376, 343, 36});
    scene->typedField->setText("hello@example.com");
    view.addSubview(scene->typedField);
    scene->typedField->becomeFirstResponder();

    scene->notes = make<uikit::TextView>(uikit::Rect{16, 420, 343, 64});
    scene->notes->setBackgroundColor(Color::white());
    scene->notes->setCornerRadius(6);
    scene->notes->textInsets = {6, 8, 6, 8};
    scene->notes->setText("A text view wraps its text onto as many lines as it needs, from its top.");
    view.addSubview(scene->notes);

    scene->list = make<uikit::ScrollView>(uikit::Rect{16, 494, 343, 140});
    scene->list->setBackgroundColor(Color::white());
    scene->list->setCornerRadius(10);
    for (int i = 0; i < 20; ++i) {
        auto row = make<uikit::View>(uikit::Rect{0, 44.0 * i, 343, 44});
        row->addSubview(label("Row " + std::to_string(i + 1), {16, 12, 200, 20}, Font::systemFont(15), Color::black()));
        auto separator = make<uikit::View>(uikit::Rect{16, 43, 327, 1});
        separator->setBackgroundColor(Color::fromRGB(200, 200, 205));
        row->addSubview(separator);
        scene->list->addSubview(row);
        scene->rows.push_back(row);
    }
    scene->list->setContentSize({343, 44 * 20});
    scene->list->setContentOffset({0, 66});
    view.addSubview(scene->list);

    scene->toast = make<uikit::View>(uikit::Rect{40, 616, 295, 40});
    scene->toast->setBackgroundColor(Color{0.15, 0.15, 0.18, 0.95});
    scene->toast->setCornerRadius(20);
    scene->toast->addSubview(label("Saved", {0, 10, 295, 20}, Font::boldSystemFont(15), Color::white()));
    static_cast<uikit::Label&>(*scene->toast->subviews().front()).setTextAlignment(uikit::TextAlignment::center);
    view.addSubview(scene->toast);

    // The field keeps its caret, but the keyboard would cover the lower views the scene shows.
    scene->window->hideKeyboard(0);
    scene->window->layoutTree();
    return scene;
}

const char* const sampleArticle =
    "<h2>Resetting a password</h2>"
    "<p><a href=\"https://help.example.com/reset\">Open the reset page</a> and follow the steps it gives you, "
    "one after another, until the new password is saved. <a href=\"/hc/articles/2\">Related article</a></p>";

namespace {

class ArticleRows final : public uikit::TableViewDataSource {
public:
    int numberOfRowsInSection(uikit::TableView&, int) override { return 40; }
    std::shared_ptr<uikit::TableViewCell> cellForRowAt(uikit::TableView& table, const uikit::IndexPath& path) override {
        auto cell = table.dequeueReusableCell("article", path);
        cell->textLabel()->setText("Article " + std::to_string(path.row + 1));
        cell->detailTextLabel()->setText("Updated " + std::to_string(path.row + 2) + " days ago");
        cell->setAccessoryType(uikit::TableViewCellAccessoryType::disclosureIndicator);
        return cell;
    }
    std::optional<std::string> titleForHeader(uikit::TableView&, int) override { return "Articles"; }
};

} // namespace

std::unique_ptr<ListScene> makeListScene() {
    auto scene = std::make_unique<ListScene>();
    auto screen = showScreen(scene->window, "Help");
    auto& view = *screen->view();

    scene->searchBar = make<uikit::SearchBar>();
    scene->searchBar->setFrame({0, 64, 375, uikit::SearchBar::height});
    scene->searchBar->setPlaceholder("Search articles");
    view.addSubview(scene->searchBar);

    scene->table = make<uikit::TableView>(uikit::Rect{0, 120, 375, 260});
    scene->table->registerCell("article", [] {
        return std::make_shared<uikit::TableViewCell>(uikit::TableViewCellStyle::subtitle, "article");
    });
    scene->rows = std::make_shared<ArticleRows>();
    scene->table->setDataSource(scene->rows);
    view.addSubview(scene->table);
    scene->table->selectRow(uikit::IndexPath{0, 1}, false, uikit::TableViewScrollPosition::none);

    std::vector<std::shared_ptr<uikit::View>> chips;
    for (const char* word : {"Billing", "Account", "Orders"}) {
        auto chip = label(word, {}, Font::systemFont(14), Color::fromRGB(0, 90, 200));
        chip->setBackgroundColor(Color::fromRGB(225, 236, 252));
        chip->setTextAlignment(uikit::TextAlignment::center);
        chips.push_back(chip);
    }
    scene->stack = make<uikit::StackView>(chips);
    scene->stack->setFrame({16, 388, 343, 28});
    scene->stack->setSpacing(8);
    scene->stack->setDistribution(uikit::StackViewDistribution::fillEqually);
    view.addSubview(scene->stack);

    scene->web = make<uikit::WebView>(uikit::Rect{0, 424, 375, 243});
    scene->web->setNavigationDelegate(scene->navigation);
    scene->web->loadHTMLString(sampleArticle, platform::URL::parse("https://help.example.com/hc/articles/1"));
    view.addSubview(scene->web);

    scene->window->layoutTree();
    return scene;
}

} // namespace renderer_test
