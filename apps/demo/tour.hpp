#pragma once

#include "demo_desk.hpp"
#include "platform/scheduler.hpp"
#include "uikit/window.hpp"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace belvademo {

// What went wrong in a gesture or a check; nothing when all went well.
using Failure = std::optional<std::string>;

// The user's hands and eyes on the host app in a phone window, in virtual time.
class Tour {
public:
    Tour(std::shared_ptr<uikit::Window> window, std::shared_ptr<platform::ManualScheduler> time, DemoDesk& desk)
        : window_(std::move(window)), time_(std::move(time)), desk_(desk) {}

    // Gestures. A text matches a shown, on-screen label, button or input that contains it.
    Failure tapText(const std::string& text);
    Failure tapIdentifier(const std::string& identifier);
    Failure typeInto(const std::string& identifier, const std::string& text);
    // Types into the search bar on the screen; a trailing "\n" is the search button.
    Failure search(const std::string& text);
    // The bar's back button.
    Failure back();
    // Pulls the list on the screen down and lets go.
    Failure pullToRefresh();
    // The keyboard goes away, as after a tap outside the input.
    void dismissKeyboard();

    // What the screen shows: texts top to bottom (a web page as its text), and the bar's title.
    std::vector<std::string> screenTexts();
    std::string screenTitle();
    bool shows(const std::string& text);
    bool showsIdentifier(const std::string& identifier);

    // Virtual time runs on by `seconds`, or until `done`; false when `done` never held.
    void pass(double seconds);
    bool waitFor(const std::function<bool()>& done, double seconds);

    uikit::Window& window() const { return *window_; }
    DemoDesk& desk() const { return desk_; }
    // Starts the host app afresh on its home screen.
    void restartHostApp();
    // Values one step leaves for the next (a ticket's id).
    std::map<std::string, std::string> notes;

private:
    std::vector<uikit::View*> shownViews(const std::function<bool(const uikit::View&)>& predicate);

    std::shared_ptr<uikit::Window> window_;
    std::shared_ptr<platform::ManualScheduler> time_;
    DemoDesk& desk_;
};

// What a step must show before it counts as reached.
struct Expectation {
    std::vector<std::string> identifiers;
    std::vector<std::string> texts;
    // Further checks, such as what the help desk holds.
    std::function<Failure(Tour&)> check;
};

// One step of the tour: what the user does, and what the screen must then show within `within`
// seconds. Its picture is named after it.
struct TourStep {
    std::string name;
    std::string action;
    std::function<Failure(Tour&)> act;
    Expectation expect;
    double within = 10;
    // Why the library can't take this step yet, if it can't: the step is then passed over, said so.
    std::function<Failure(Tour&)> notYet;
};

// Steps from the home screen that build on each other; a failed step ends its chapter.
struct TourChapter {
    std::string title;
    std::vector<TourStep> steps;
};

// Every screen and state the demo walks through, as far as the library has the screens.
std::vector<TourChapter> tourChapters();

// Walks the tour offscreen, printing a line per step and writing DIR/NNN-<step>.png; 0 when every
// step reached its screen.
int runTour(int& argc, char** argv, const std::string& directory);

} // namespace belvademo
