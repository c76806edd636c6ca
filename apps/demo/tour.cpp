#include "tour.hpp"

#include "host_app.hpp"

#include "belvakit/Request/requestlist/refresh_control.hpp"
#include "belvakit/entry/version.hpp"
#include "platform/clock.hpp"
#include "platform/log.hpp"
#include "platform/main_queue.hpp"
#include "renderer/application.hpp"
#include "renderer/offscreen.hpp"
#include "renderer/qt_html_measurer.hpp"
#include "renderer/qt_text_measurer.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/probe.hpp"
#include "uikit/search_bar.hpp"
#include "uikit/text_input.hpp"
#include "uikit/view_controller.hpp"
#include "uikit/web_view.hpp"

#include <QApplication>

#include <cstdio>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <mutex>
#include <algorithm>
#include <cctype>
#include <cmath>
#include <sstream>

namespace belvademo {

namespace {

// Dates move with virtual time, so "2 min ago" means two minutes of the tour.
class VirtualWallClock final : public platform::WallClock {
public:
    VirtualWallClock(std::shared_ptr<platform::ManualScheduler> time, double start)
        : time_(std::move(time)), start_(start) {}
    double now() const override {
        return start_ + std::chrono::duration<double>(time_->now().time_since_epoch()).count();
    }

private:
    std::shared_ptr<platform::ManualScheduler> time_;
    double start_;
};

// Keeps the log lines of the step under way, to show them when the step fails.
class StepLog final : public platform::LogSink {
public:
    void write(platform::LogLevel level, std::string_view message) override {
        if (level < platform::LogLevel::warn) return;
        std::lock_guard lock(mutex_);
        lines_.push_back(std::string(platform::toString(level)) + ": " + std::string(message));
    }
    std::vector<std::string> take() {
        std::lock_guard lock(mutex_);
        return std::exchange(lines_, {});
    }

private:
    std::mutex mutex_;
    std::vector<std::string> lines_;
};

// The text of a page, without its markup, its style sheet or its scripts.
std::string pageText(const std::string& html) {
    std::string text;
    std::size_t at = 0;
    auto lower = [](std::string value) {
        for (auto& c : value) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        return value;
    };
    while (at < html.size()) {
        if (html[at] != '<') {
            const auto next = html.find('<', at);
            text += html.substr(at, next - at);
            at = next == std::string::npos ? html.size() : next;
            continue;
        }
        const auto close = html.find('>', at);
        if (close == std::string::npos) break;
        const std::string tag = lower(html.substr(at + 1, close - at - 1));
        at = close + 1;
        for (const char* hidden : {"style", "script"})
            if (tag.rfind(hidden, 0) == 0) {
                const auto end = lower(html).find(std::string("</") + hidden, at);
                at = end == std::string::npos ? html.size() : html.find('>', end) + 1;
            }
        text += ' ';
    }
    for (const auto& [entity, character] : std::vector<std::pair<std::string, std::string>>{
             {"&amp;", "&"}, {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&#39;", "'"}, {"&nbsp;", " "}}) {
        for (auto found = text.find(entity); found != std::string::npos; found = text.find(entity, found + character.size()))
            text.replace(found, entity.size(), character);
    }
    std::string collapsed;
    for (const char c : text) {
        const bool space = std::isspace(static_cast<unsigned char>(c)) != 0;
        if (space && (collapsed.empty() || collapsed.back() == ' ')) continue;
        collapsed += space ? ' ' : c;
    }
    while (!collapsed.empty() && collapsed.back() == ' ') collapsed.pop_back();
    return collapsed;
}

std::string shortened(const std::string& text, std::size_t length) {
    if (text.size() <= length) return text;
    std::size_t cut = length;
    // Never in the middle of a character.
    while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80) --cut;
    return text.substr(0, cut) + "...";
}

bool onNavigationBar(const uikit::View& view) {
    for (const auto* v = view.superview(); v; v = v->superview())
        if (dynamic_cast<const uikit::NavigationBar*>(v)) return true;
    return false;
}

const std::string* textOf(const uikit::View& view) {
    if (const auto* input = dynamic_cast<const uikit::TextInput*>(&view))
        return input->text().empty() ? &input->placeholder() : &input->text();
    if (const auto* label = dynamic_cast<const uikit::Label*>(&view)) return &label->text();
    return nullptr;
}

// Deletes pictures an earlier tour left, so the folder holds this walk's only.
void clearOldPictures(const std::filesystem::path& directory) {
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(directory, error)) {
        const auto name = entry.path().filename().string();
        const bool numbered = name.size() > 8 && std::isdigit(static_cast<unsigned char>(name[0])) &&
                              std::isdigit(static_cast<unsigned char>(name[1])) &&
                              std::isdigit(static_cast<unsigned char>(name[2])) && name[3] == '-';
        if (numbered && entry.path().extension() == ".png") std::filesystem::remove(entry.path(), error);
    }
}

} // namespace

std::vector<uikit::View*> Tour::shownViews(const std::function<bool(const uikit::View&)>& predicate) {
    window_->layoutTree();
    const uikit::Rect screen = window_->bounds();
    return uikit::findAll(*window_, [&](const uikit::View& view) {
        if (!predicate(view) || !uikit::isShown(view)) return false;
        for (const uikit::View* v = &view; v; v = v->superview())
            if (v->alpha() < 0.01) return false;
        const auto frame = view.convert(view.bounds(), nullptr);
        // On the screen, not scrolled or slid out of it.
        return frame.maxX() > screen.minX() && frame.minX() < screen.maxX() && frame.maxY() > screen.minY() &&
               frame.minY() < screen.maxY() && frame.width() > 0 && frame.height() > 0;
    });
}

Failure Tour::tapText(const std::string& text) {
    const auto found = shownViews([&](const uikit::View& view) {
        const auto* shown = textOf(view);
        return shown && !dynamic_cast<const uikit::TextInput*>(&view) && shown->find(text) != std::string::npos;
    });
    // The innermost and latest drawn, as a finger would meet it.
    if (found.empty()) return "no \"" + text + "\" on the screen to tap";
    if (!uikit::tap(*found.back())) return "\"" + text + "\" did not take the tap";
    return std::nullopt;
}

Failure Tour::tapIdentifier(const std::string& identifier) {
    const auto found = shownViews([&](const uikit::View& view) { return view.accessibilityIdentifier() == identifier; });
    if (found.empty()) return "no " + identifier + " on the screen to tap";
    if (!uikit::tap(*found.back())) return identifier + " did not take the tap";
    return std::nullopt;
}

Failure Tour::typeInto(const std::string& identifier, const std::string& text) {
    const auto found = shownViews([&](const uikit::View& view) {
        return view.accessibilityIdentifier() == identifier && dynamic_cast<const uikit::TextInput*>(&view);
    });
    if (found.empty()) return "no " + identifier + " on the screen to type into";
    auto* input = dynamic_cast<uikit::TextInput*>(found.back());
    if (!input->isEnabled() || !input->editable) return identifier + " does not take text";
    uikit::typeText(*input, text);
    return std::nullopt;
}

Failure Tour::search(const std::string& text) {
    const auto found = shownViews([](const uikit::View& view) { return dynamic_cast<const uikit::SearchBar*>(&view); });
    if (found.empty()) return std::string("no search bar on the screen");
    uikit::typeText(*static_cast<uikit::SearchBar*>(found.back())->textField(), text);
    return std::nullopt;
}

Failure Tour::back() {
    const auto found = shownViews([](const uikit::View& view) {
        return onNavigationBar(view) &&
               (view.accessibilityIdentifier() == "BackButton" || view.accessibilityIdentifier() == "CRVbackButton");
    });
    if (found.empty()) return std::string("no back button on the bar");
    uikit::tap(*found.back());
    return std::nullopt;
}

Failure Tour::pullToRefresh() {
    // The control waits above the list's first row, out of sight until pulled.
    const auto found = uikit::findAll(*window_, [](const uikit::View& view) {
        return dynamic_cast<const belvakit::RefreshControl*>(&view) && view.superview() && uikit::isShown(*view.superview());
    });
    if (found.empty()) return std::string("nothing on the screen to pull");
    static_cast<belvakit::RefreshControl*>(found.back())->userDidPull();
    return std::nullopt;
}

void Tour::dismissKeyboard() {
    if (auto* responder = window_->firstResponder()) window_->resignFirstResponder(responder);
}

std::vector<std::string> Tour::screenTexts() {
    std::vector<std::string> texts;
    auto views = shownViews([](const uikit::View& view) {
        if (dynamic_cast<const uikit::WebView*>(&view)) return true;
        const auto* text = textOf(view);
        return text && !text->empty() && !onNavigationBar(view);
    });
    // What an opaque view drawn later covers whole (a screen pushed or presented over another)
    // doesn't show.
    const auto painted = shownViews([](const uikit::View& view) {
        const auto& colour = view.backgroundColor();
        return colour && colour->alpha >= 0.99;
    });
    const auto order = uikit::findAll(*window_, [](const uikit::View&) { return true; });
    auto rank = [&](const uikit::View* view) { return std::find(order.begin(), order.end(), view) - order.begin(); };
    std::erase_if(views, [&](const uikit::View* view) {
        const auto frame = view->convert(view->bounds(), nullptr);
        const auto at = rank(view);
        return std::any_of(painted.begin(), painted.end(), [&](const uikit::View* cover) {
            if (rank(cover) <= at || cover->isDescendantOf(*view)) return false;
            const auto area = cover->convert(cover->bounds(), nullptr);
            return area.minX() <= frame.minX() && area.minY() <= frame.minY() && area.maxX() >= frame.maxX() &&
                   area.maxY() >= frame.maxY();
        });
    });
    // As the eye reads them: top to bottom, then left to right.
    std::stable_sort(views.begin(), views.end(), [](const uikit::View* a, const uikit::View* b) {
        const auto first = a->convert(a->bounds(), nullptr);
        const auto second = b->convert(b->bounds(), nullptr);
        if (std::abs(first.minY() - second.minY()) > 2) return first.minY() < second.minY();
        return first.minX() < second.minX();
    });
    for (auto* view : views) {
        if (const auto* page = dynamic_cast<const uikit::WebView*>(view)) {
            const auto text = pageText(page->html());
            if (!text.empty()) texts.push_back(text);
        } else {
            texts.push_back(*textOf(*view));
        }
    }
    return texts;
}

std::string Tour::screenTitle() {
    std::string title;
    for (auto* view : shownViews([](const uikit::View& view) {
             const auto* text = textOf(view);
             return text && !text->empty() && onNavigationBar(view) && !dynamic_cast<const uikit::TextInput*>(&view);
         })) {
        const auto& text = *textOf(*view);
        // The back button's and the bar buttons' titles aside, the title is the bar's middle.
        const auto frame = view->convert(view->bounds(), nullptr);
        if (frame.midX() > window_->bounds().width() * 0.3 && frame.midX() < window_->bounds().width() * 0.7)
            title += (title.empty() ? "" : " ") + text;
    }
    return title;
}

bool Tour::shows(const std::string& text) {
    for (const auto& shown : screenTexts())
        if (shown.find(text) != std::string::npos) return true;
    return screenTitle().find(text) != std::string::npos;
}

bool Tour::showsIdentifier(const std::string& identifier) {
    return !shownViews([&](const uikit::View& view) { return view.accessibilityIdentifier() == identifier; }).empty();
}

void Tour::pass(double seconds) { waitFor([] { return false; }, seconds); }

bool Tour::waitFor(const std::function<bool()>& done, double seconds) {
    auto& main = platform::MainQueue::shared();
    const int ticks = static_cast<int>(std::ceil(seconds * 100));
    for (int tick = 0;; ++tick) {
        while (main.runPending() > 0) {
        }
        window_->layoutTree();
        if (done()) return true;
        if (tick >= ticks) return false;
        // Work on other threads (the caches) posts back within a moment of real time.
        if (tick % 4 == 0) {
            bool once = false;
            main.runUntil([&] { return std::exchange(once, true); }, platform::milliseconds(5));
        }
        time_->advance(platform::milliseconds(10));
    }
}

void Tour::restartHostApp() {
    dismissKeyboard();
    window_->setRootViewController(nullptr);
    pass(1);  // what the screens left behind ends
    window_->setRootViewController(makeHostApp());
    window_->layoutTree();
    pass(0.5);
}

namespace {

Failure missing(Tour& tour, const Expectation& expect) {
    for (const auto& identifier : expect.identifiers)
        if (!tour.showsIdentifier(identifier)) return "no " + identifier + " on the screen";
    for (const auto& text : expect.texts)
        if (!tour.shows(text)) return "no \"" + text + "\" on the screen";
    if (expect.check) return expect.check(tour);
    return std::nullopt;
}

std::string describeScreen(Tour& tour) {
    std::string line = "[" + tour.screenTitle() + "]";
    std::size_t count = 0;
    for (const auto& text : tour.screenTexts()) {
        if (line.size() > 220) {
            line += " ...";
            break;
        }
        line += (count++ == 0 ? " " : " | ") + shortened(text, 60);
    }
    return line;
}

} // namespace

int runTour(int& argc, char** argv, const std::string& directory) {
    const auto application = renderer::startApplication(argc, argv, true);
    renderer::installQtTextMeasurer();
    renderer::installQtHTMLMeasurer();
    auto time = std::make_shared<platform::ManualScheduler>();
    const auto realTime = platform::MainQueue::shared().setScheduler(time);
    const auto realClock = platform::setWallClock(std::make_shared<VirtualWallClock>(time, platform::now()));
    auto stepLog = std::make_shared<StepLog>();
    const auto previousSink = platform::log::setSink(stepLog);
    std::filesystem::create_directories(directory);
    clearOldPictures(directory);

    int failures = 0;
    int passedOver = 0;
    {
        DemoDesk desk({});
        desk.setAgentAnswers(true);
        auto window = std::make_shared<uikit::Window>(uikit::Environment::phonePortrait());
        window->makeKeyAndVisible();
        Tour tour(window, time, desk);
        std::cout << "BelvaKit " << belvakit::libraryVersion() << ": a tour of the host app on the embedded help desk at "
                  << desk.accountUrl() << "\n";

        int number = 0;
        for (const auto& chapter : tourChapters()) {
            std::cout << "\n" << chapter.title << "\n";
            tour.restartHostApp();
            stepLog->take();
            bool failed = false;
            for (const auto& step : chapter.steps) {
                if (const auto missingPiece = (!failed && step.notYet) ? step.notYet(tour) : std::nullopt) {
                    ++passedOver;
                    std::cout << "--- " << step.name << ": " << step.action
                              << " => not in the library yet: " << *missingPiece << "\n";
                    continue;
                }
                ++number;
                std::ostringstream label;
                label << std::setw(3) << std::setfill('0') << number << "-" << step.name;
                if (failed) {
                    ++failures;
                    std::cout << label.str() << ": " << step.action << " => skipped, the chapter stopped\n";
                    continue;
                }
                Failure failure = step.act ? step.act(tour) : std::nullopt;
                if (!failure && !tour.waitFor([&] { return !missing(tour, step.expect); }, step.within))
                    failure = missing(tour, step.expect);
                tour.pass(0.6);  // animations come to rest for the picture
                const auto path = (std::filesystem::path(directory) / (label.str() + ".png")).string();
                if (!renderer::renderToPNG(*window, path) && !failure) failure = "the screen could not be drawn";
                if (failure) {
                    failed = true;
                    ++failures;
                    std::cout << label.str() << ": " << step.action << " => FAILED: " << *failure << "; "
                              << describeScreen(tour) << "\n";
                    for (const auto& line : stepLog->take()) std::cout << "      log " << line << "\n";
                } else {
                    std::cout << label.str() << ": " << step.action << " => " << describeScreen(tour) << "\n";
                    stepLog->take();
                }
            }
        }
        tour.dismissKeyboard();
        window->setRootViewController(nullptr);
        tour.pass(2);
    }
    platform::log::setSink(previousSink);
    platform::setWallClock(realClock);
    platform::MainQueue::shared().setScheduler(realTime);
    std::cout << "\n" << (failures == 0 ? "Every step reached its screen." : std::to_string(failures) + " step(s) did not.");
    if (passedOver > 0) std::cout << " " << passedOver << " step(s) wait for the library.";
    std::cout << " Pictures: " << std::filesystem::absolute(directory).lexically_normal().string() << "\n";
    return failures == 0 ? 0 : 1;
}

} // namespace belvademo
