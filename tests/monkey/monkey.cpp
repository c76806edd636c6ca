#include "monkey.hpp"

#include "harness.hpp"

#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/conversation/input_field.hpp"
#include "belvakit/Request/conversation/message_list.hpp"
#include "belvakit/Request/conversation/request_controller.hpp"
#include "belvakit/Request/conversation/request_table_state.hpp"
#include "belvakit/Request/createrequest/create_request_controller.hpp"
#include "belvakit/Request/queue/local_id_store.hpp"
#include "belvakit/Request/requestlist/request_list_refresh_action_handler.hpp"
#include "belvakit/Request/requestlist/request_list_view_controller.hpp"
#include "belvakit/attachments/cache.hpp"
#include "belvakit/entry/localized_strings.hpp"
#include "belvakit/entry/request_container_controller.hpp"
#include "belvakit/entry/shared_store.hpp"
#include "corvane/corvane.hpp"
#include "platform/notification_center.hpp"
#include "platform/trimming.hpp"
#include "uikit/alert_controller.hpp"
#include "uikit/label.hpp"
#include "uikit/probe.hpp"
#include "uikit/scroll_view.hpp"
#include "uikit/table_view.hpp"
#include "uikit/table_view_cell.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <map>
#include <random>
#include <set>
#include <sstream>
#include <stdexcept>

namespace monkey {

Figures& Figures::operator+=(const Figures& other) {
    seeds += other.seeds;
    events += other.events;
    checks += other.checks;
    faults += other.faults;
    sends += other.sends;
    delivered += other.delivered;
    failedWithRetry += other.failedWithRetry;
    deleted += other.deleted;
    return *this;
}

namespace {

using namespace belvakit;

// An invariant that did not hold; ends the run.
class Violation final : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Texts. Every text the monkey types carries a marker "#m<serial>#" of its own, so that what
// reaches the help desk or the disk can be traced to the send it came from. Nothing else typed
// holds a '#'.

constexpr const char* plainWords[] = {"hello", "printer", "blank", "page", "refund", "order", "please", "thanks",
                                      "why", "now", "still", "broken", "A", "z", "42", "ok?"};
constexpr const char* wideWords[] = {"héllo",  "wörld",  "ñandú", "日本語",     "中文",  "😀",    "👍🏽",     "✓",
                                     "€",      "Ωμέγα",  "Привет", "שלום",      "مرحبا", "e\u0301", "🇫🇷",    "\u200b",
                                     "ﬁle",    "ẞ",      "𝔘𝔫𝔦",  "\u202eabc", "ǅ",     "Ⅻ",     "\u00a0"};
constexpr const char* oddWords[] = {"<b>bold</b>", "&amp;", "<script>alert(1)</script>", "\"quoted\"", "'single'",
                                    "\\",          "%s%n",  "{{x}}",                     "\t",         "\n",
                                    "  ",          "<a href=\"https://belva.example.com/hc/en-us/articles/1-x\">l</a>",
                                    "](x)",        "\r\n"};

template <std::size_t N>
const char* pick(std::mt19937_64& rng, const char* const (&from)[N]) {
    return from[std::uniform_int_distribution<std::size_t>(0, N - 1)(rng)];
}

std::string markerText(long serial) { return "#m" + std::to_string(serial) + "#"; }

// The last complete marker in the text.
std::optional<long> markerOf(std::string_view text) {
    std::optional<long> found;
    for (std::size_t i = 0; i + 3 < text.size(); ++i) {
        if (text[i] != '#' || text[i + 1] != 'm') continue;
        std::size_t j = i + 2;
        long value = 0;
        while (j < text.size() && j < i + 14 && std::isdigit(static_cast<unsigned char>(text[j]))) {
            value = value * 10 + (text[j] - '0');
            ++j;
        }
        if (j > i + 2 && j < text.size() && text[j] == '#') found = value;
    }
    return found;
}

bool blank(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; });
}

// A text for a step line: escaped, and cut when long.
std::string printable(std::string_view text, std::size_t limit = 40) {
    std::string out = "\"";
    std::size_t shown = 0;
    for (std::size_t i = 0; i < text.size() && shown < limit; ++i, ++shown) {
        const char c = text[i];
        if (c == '\n') out += "\\n";
        else if (c == '\t') out += "\\t";
        else if (c == '\r') out += "\\r";
        else if (c == '"') out += "\\\"";
        else out += c;
    }
    // Never cut a character of several bytes in two.
    while (!out.empty() && (static_cast<unsigned char>(out.back()) & 0xC0) == 0x80) out.pop_back();
    if (!out.empty() && (static_cast<unsigned char>(out.back()) & 0xC0) == 0xC0) out.pop_back();
    out += "\"";
    if (text.size() > limit) out += "…(" + std::to_string(text.size()) + " bytes)";
    return out;
}

// Views.

bool interactive(const uikit::View& view) {
    for (const uikit::View* current = &view; current; current = current->superview())
        if (!current->isUserInteractionEnabled()) return false;
    return true;
}

bool onScreen(const uikit::View& view, const uikit::Window& window) {
    if (!uikit::isShown(view) || view.window() != &window) return false;
    const uikit::Rect frame = view.convert(view.bounds(), nullptr);
    const uikit::Rect screen = window.bounds();
    return frame.width() > 0 && frame.height() > 0 && frame.maxX() > screen.minX() && frame.minX() < screen.maxX() &&
           frame.maxY() > screen.minY() && frame.minY() < screen.maxY();
}

template <class T>
T* ancestor(uikit::View* view) {
    for (; view; view = view->superview())
        if (auto* found = dynamic_cast<T*>(view)) return found;
    return nullptr;
}

// The screen whose view holds this one, of type T.
template <class T>
T* owningScreen(const uikit::View* view) {
    for (; view; view = view->superview())
        if (auto* found = dynamic_cast<T*>(view->viewController())) return found;
    return nullptr;
}

template <class T>
std::vector<T*> viewsOf(uikit::View& root, const uikit::Window& window,
                        const std::function<bool(const T&)>& also = nullptr) {
    std::vector<T*> found;
    for (auto* view : uikit::findAll(root, [&](const uikit::View& candidate) {
             const auto* typed = dynamic_cast<const T*>(&candidate);
             return typed && onScreen(candidate, window) && (!also || also(*typed));
         }))
        found.push_back(dynamic_cast<T*>(view));
    return found;
}

// Every screen of the tree: children, navigation stacks and presented screens.
void visitScreens(uikit::ViewController& screen, const std::function<void(uikit::ViewController&)>& visit,
                  std::set<const uikit::ViewController*>& seen) {
    if (!seen.insert(&screen).second) return;
    visit(screen);
    for (const auto& child : screen.childViewControllers()) visitScreens(*child, visit, seen);
    if (auto* navigation = dynamic_cast<uikit::NavigationController*>(&screen))
        for (const auto& stacked : navigation->viewControllers()) visitScreens(*stacked, visit, seen);
    if (const auto& presented = screen.presentedViewController()) visitScreens(*presented, visit, seen);
}

std::string describe(const uikit::View& view) {
    std::string text = std::string(view.className());
    if (!view.accessibilityIdentifier().empty()) text += "[" + view.accessibilityIdentifier() + "]";
    if (const auto* button = dynamic_cast<const uikit::Button*>(&view)) {
        if (const auto& label = button->titleLabel(); label && !label->text().empty()) text += " " + printable(label->text(), 24);
        if (!button->isEnabled()) text += " (disabled)";
    } else if (const auto* label = dynamic_cast<const uikit::Label*>(&view); label && !label->text().empty()) {
        text += " " + printable(label->text(), 24);
    }
    if (auto* screen = owningScreen<uikit::ViewController>(&view)) text += " in " + std::string(screen->className());
    return text;
}

bool isUuid(const std::string& id) { return id.size() == 36 && std::count(id.begin(), id.end(), '-') == 4; }
bool isNumber(const std::string& id) {
    return !id.empty() && std::all_of(id.begin(), id.end(), [](char c) { return std::isdigit(static_cast<unsigned char>(c)); });
}

// The ledger: what the user sent, from the test's side.

// Which conversation a send was typed into: the ticket the screen was opened on, a new ticket of
// its own, a conversation kept only on the device (opened by its local id), the form of a new
// request, or an id that names nothing.
enum class GroupKind { ticket, fresh, local, form, bogus };

struct Group {
    GroupKind kind = GroupKind::fresh;
    std::string name;    // unique per conversation the user typed into
    std::string ticket;  // for `ticket`: the id it was opened on
};

struct Sent {
    long marker = 0;
    std::string text;
    Group group;
    int step = 0;
    bool deleted = false;
};

struct StoredMessage {
    std::string key;
    DeliveryStatus status;
};

class Run {
public:
    Run(const Options& options, Result& result)
        : options_(options), result_(result), rng_(options.seed),
          conversationsOn_(std::bernoulli_distribution(0.85)(rng_)), app_(options.seed, conversationsOn_) {
        endUserId_ = app_.desk->tickets()->endUser().userId;
        app_.log->echo = options.echoLog;
        note("start: conversations " + std::string(conversationsOn_ ? "on" : "off"));
    }

    void go() {
        for (step_ = 1; step_ <= options_.events; ++step_) {
            registerScreens();
            healExpiredFaults();
            event();
            ++result_.figures.events;
            expect(app_.settle(), "work on another thread never finished");
            app_.layout();
            registerScreens();
            checkScreens();
            checkDesk();
            if (options_.watch) watch();
        }
        finish();
    }

    std::vector<std::string> log() const { return app_.log->lines(); }

    std::vector<std::string> holdings() {
        std::vector<std::string> lines;
        auto& tickets = *app_.desk->tickets();
        for (const auto& request : tickets.requests()) {
            std::string line = "ticket " + request.requestId + " (" + request.status + "):";
            for (const auto& comment : tickets.comments(request.requestId)) {
                const auto marker = markerOf(comment.body);
                line += comment.authorId != endUserId_ ? " agent" : marker ? " " + markerText(*marker) : " user";
            }
            lines.push_back(line);
        }
        for (const auto& [key, list] : storedConversations()) {
            std::string line = "stored " + key + " (ticket " + list.remoteRequestId.value_or("-") + "):";
            for (const auto& message : list.messages) {
                const std::string* body = bodyOf(message);
                const auto marker = body ? markerOf(*body) : std::nullopt;
                line += " " + (marker ? markerText(*marker) : std::string(rawValue(belvakit::type(message)))) + "/" +
                        statusName(status(message));
            }
            lines.push_back(line);
        }
        return lines;
    }

private:
    // Steps and checks.

    // One line per event: what a step does after its first part joins its line.
    void note(const std::string& line) {
        if (options_.echo) std::cout << "#" << step_ << " " << line << std::endl;
        if (notedStep_ == step_ && !result_.steps.empty()) {
            result_.steps.back() += "; " + line;
        } else {
            result_.steps.push_back("#" + std::to_string(step_) + " " + line);
            notedStep_ = step_;
        }
    }

    void expect(bool holds, const std::string& what) {
        if (!holds) throw Violation(what);
        ++result_.figures.checks;
    }

    template <class T>
    T uniform(T low, T high) {
        if constexpr (std::is_floating_point_v<T>)
            return std::uniform_real_distribution<T>(low, high)(rng_);
        else
            return std::uniform_int_distribution<T>(low, high)(rng_);
    }
    bool chance(double p) { return std::bernoulli_distribution(p)(rng_); }
    template <class T>
    T* any(const std::vector<T*>& from) {
        return from.empty() ? nullptr : from[uniform<std::size_t>(0, from.size() - 1)];
    }

    uikit::View& layer() const { return *app_.top().view(); }
    const uikit::Window& window() const { return *app_.window; }

    // Events.

    void event() {
        struct Choice {
            int weight;
            void (Run::*run)();
        };
        static const Choice choices[] = {
            {18, &Run::tapControl}, {6, &Run::tapPoint},  {14, &Run::type},       {2, &Run::erase},
            {12, &Run::send},       {6, &Run::retry},     {5, &Run::scroll},      {2, &Run::pull},
            {5, &Run::back},        {7, &Run::hostOpen},  {2, &Run::hostLeave},   {4, &Run::push},
            {10, &Run::wait},       {8, &Run::fault},     {3, &Run::agentWrites}, {1, &Run::foreground},
            {1, &Run::rotate},
        };
        int total = 0;
        for (const auto& choice : choices) total += choice.weight;
        int roll = uniform(0, total - 1);
        for (const auto& choice : choices) {
            if (roll < choice.weight) return (this->*choice.run)();
            roll -= choice.weight;
        }
    }

    std::vector<uikit::View*> tappables() {
        return viewsOf<uikit::View>(layer(), window(), [](const uikit::View& view) {
            if (!interactive(view)) return false;
            if (dynamic_cast<const uikit::Control*>(&view)) return true;
            if (dynamic_cast<const uikit::TableViewCell*>(&view)) return true;
            return view.hasTapActions();
        });
    }

    void tapControl() {
        auto* target = any(tappables());
        if (!target) return wait();
        note("tap " + describe(*target));
        tapTracked(*target, [target] { uikit::tap(*target); });
    }

    void tapPoint() {
        const auto bounds = window().bounds();
        const uikit::Point point{uniform(0.0, bounds.width() - 1), uniform(0.0, bounds.height() - 1)};
        auto* hit = app_.window->hitTest(point);
        std::ostringstream line;
        line << "tap at (" << std::lround(point.x) << ", " << std::lround(point.y) << ") on "
             << (hit ? describe(*hit) : "nothing");
        note(line.str());
        if (!hit) return;
        tapTracked(*hit, [this, point] { uikit::tapAt(*app_.window, point); });
    }

    // Reads what a tap is about to do, from the view it lands on, so the ledger learns of sends and
    // of deleted failed sends.
    void tapTracked(uikit::View& target, const std::function<void()>& tap) {
        auto* button = ancestor<uikit::Button>(&target);
        if (button && button->accessibilityIdentifier() == "CRVsendButton") {
            if (auto* field = ancestor<InputField>(button)) {
                auto* screen = owningScreen<RequestController>(field);
                const std::string text = field->textView->text();
                const bool enabled = button->isEnabled();
                tap();
                if (screen && enabled && !blank(text)) recordSend(text, groupOf(*screen));
                return;
            }
            if (auto* form = formBehind(*button)) {
                // The form sends its description trimmed of the platform's white space.
                const std::string text = platform::trimmingWhitespaceAndNewlines(form->descriptionTextview()->input()->text());
                const auto before = form->state().sending;
                const auto alive = std::static_pointer_cast<CreateRequestController>(form->shared_from_this());
                const Group group = formGroup(*form);
                tap();
                if (alive->state().sending == CreateRequestState::Sending::sending &&
                    before != CreateRequestState::Sending::sending && !text.empty())
                {
                    // Sent again after a failure, the form's text as the user left it takes the
                    // place of what it failed to send.
                    if (before == CreateRequestState::Sending::failure)
                        if (auto earlier = formSends_.find(alive.get()); earlier != formSends_.end()) {
                            note("the form sends again in place of " + markerText(earlier->second));
                            ledger_.erase(earlier->second);
                        }
                    if (auto marker = recordSend(text, group)) formSends_[alive.get()] = *marker;
                    else formSends_.erase(alive.get());
                }
                return;
            }
        }
        if (button && button->accessibilityIdentifier() == localized(LocalizedKey::requestsCreateRequestFailedDelete)) {
            auto* sheet = owningScreen<uikit::AlertController>(button);
            if (sheet && dynamic_cast<RequestController*>(sheet->presentingViewController())) {
                // Read off the deletion itself: the screen may go, and the table show another
                // conversation, before the wait is over.
                std::set<long> removed;
                auto listening = sharedStore()->addActionListener([&removed](const tivra::Action& action) {
                    if (const auto* deletion = tivra::actionAs<Actions::DeleteMessages>(action))
                        for (const auto& message : deletion->messages)
                            if (const auto* text = message.getIf<UserMessage>())
                                if (auto marker = markerOf(text->body)) removed.insert(*marker);
                });
                tap();
                // The sheet's choice runs once it has gone.
                app_.advance(platform::milliseconds(400));
                listening.removeListener();
                for (long marker : removed)
                    if (auto found = ledger_.find(marker); found != ledger_.end()) {
                        found->second.deleted = true;
                        note("deleted " + markerText(marker));
                    }
                return;
            }
        }
        tap();
    }

    CreateRequestController* formBehind(uikit::View& barButton) {
        auto* bar = ancestor<uikit::NavigationBar>(&barButton);
        auto* navigation = bar ? owningScreen<uikit::NavigationController>(bar) : nullptr;
        auto* container = navigation ? dynamic_cast<RequestContainerController*>(navigation->topViewController()) : nullptr;
        return container ? dynamic_cast<CreateRequestController*>(container->activeController().get()) : nullptr;
    }

    std::string freshText() {
        const long serial = ++serial_;
        const int kind = uniform(0, 99);
        std::vector<std::string> parts;
        if (kind < 45) {
            for (int i = uniform(1, 6); i > 0; --i) parts.push_back(pick(rng_, plainWords));
        } else if (kind < 75) {
            for (int i = uniform(1, 8); i > 0; --i) parts.push_back(chance(0.6) ? pick(rng_, wideWords) : pick(rng_, plainWords));
        } else if (kind < 92) {
            for (int i = uniform(1, 5); i > 0; --i) parts.push_back(chance(0.5) ? pick(rng_, oddWords) : pick(rng_, wideWords));
        } else {
            // Very long: pages of text in one message.
            for (int i = uniform(150, 400); i > 0; --i) parts.push_back(chance(0.3) ? pick(rng_, wideWords) : pick(rng_, plainWords));
        }
        parts.insert(parts.begin() + uniform<std::size_t>(0, parts.size()), markerText(serial));
        std::string text;
        for (const auto& part : parts) {
            if (!text.empty() && chance(0.85)) text += ' ';
            text += part;
        }
        return text;
    }

    // Nothing, or only space: what a send button must refuse.
    std::string emptyText() {
        static const char* const blanks[] = {"", " ", "\n", "\t \n ", "\u00a0"};
        return blanks[uniform<std::size_t>(0, std::size(blanks) - 1)];
    }

    std::vector<uikit::TextInput*> inputs() {
        return viewsOf<uikit::TextInput>(layer(), window(), [](const uikit::TextInput& input) {
            return input.editable && input.isEnabled() && interactive(input);
        });
    }

    void type() {
        auto shown = inputs();
        if (shown.empty()) return tapControl();
        uikit::TextInput* input = nullptr;
        for (auto* candidate : shown)
            if (candidate->accessibilityIdentifier() == "CRVmessageBodyField" && chance(0.6)) input = candidate;
        if (!input) input = any(shown);
        const std::string text = chance(0.12) ? emptyText() : freshText();
        note("type " + printable(text) + " into " + describe(*input));
        uikit::typeText(*input, text);
    }

    void erase() {
        auto* input = any(inputs());
        if (!input) return wait();
        const int count = chance(0.3) ? 10000 : uniform(1, 12);
        note("erase " + std::to_string(count) + " from " + describe(*input));
        input->becomeFirstResponder();
        for (int i = 0; i < count && !input->text().empty(); ++i) input->deleteBackward();
    }

    // Types if need be, then taps the send button of the conversation or of the form.
    void send() {
        auto fields = viewsOf<InputField>(layer(), window());
        if (auto* field = any(fields)) {
            if (blank(field->textView->text()) || chance(0.3)) {
                const std::string text = chance(0.08) ? emptyText() : freshText();
                note("type " + printable(text) + " into the message field");
                uikit::typeText(*field->textView, text);
            }
            note("tap send " + describe(*field->sendButton));
            return tapTracked(*field->sendButton, [field] { uikit::tap(*field->sendButton); });
        }
        auto sends = viewsOf<uikit::Button>(layer(), window(), [](const uikit::Button& button) {
            return button.accessibilityIdentifier() == "CRVsendButton";
        });
        auto* button = any(sends);
        if (!button) return type();
        if (auto* form = formBehind(*button)) {
            const auto& input = form->descriptionTextview()->input();
            if (blank(input->text()) || chance(0.3)) {
                const std::string text = freshText();
                note("type " + printable(text) + " into the description");
                uikit::typeText(*input, text);
                app_.layout();
                button = any(viewsOf<uikit::Button>(layer(), window(), [](const uikit::Button& shown) {
                    return shown.accessibilityIdentifier() == "CRVsendButton";
                }));
                if (!button) return;
            }
        }
        note("tap send " + describe(*button));
        tapTracked(*button, [button] { uikit::tap(*button); });
    }

    // A failed message's retry button, and a choice on its sheet.
    void retry() {
        auto* button = any(viewsOf<uikit::View>(layer(), window(), [](const uikit::View& view) {
            return view.accessibilityIdentifier() == "CRVretryButton" && interactive(view);
        }));
        if (!button) return send();
        note("tap retry " + describe(*button));
        tapTracked(*button, [button] { uikit::tap(*button); });
        app_.advance(platform::milliseconds(350));
        auto* sheet = dynamic_cast<uikit::AlertController*>(&app_.top());
        if (!sheet) return;
        const int roll = uniform(0, 99);
        const auto key = roll < 65 ? LocalizedKey::requestsCreateRequestFailedRetry
                         : roll < 85 ? LocalizedKey::requestsCreateRequestFailedDelete
                                     : LocalizedKey::requestsLeftBarButtonTitleCancel;
        auto* choice = uikit::findByIdentifier(*sheet->view(), localized(key));
        if (!choice) return;
        note("choose " + printable(localized(key)));
        tapTracked(*choice, [choice] { uikit::tap(*choice); });
    }

    void scroll() {
        auto* view = any(viewsOf<uikit::ScrollView>(layer(), window()));
        if (!view) return wait();
        const double reach = std::max(0.0, view->contentSize().height - view->bounds().height());
        const uikit::Point offset{0, chance(0.2) ? uniform(-200.0, reach + 200) : uniform(0.0, reach)};
        note("scroll " + describe(*view) + " to " + std::to_string(std::lround(offset.y)));
        view->setContentOffset(offset, chance(0.5));
    }

    void pull() {
        std::vector<RequestListViewController*> lists;
        for (auto* view : uikit::findAll(layer(), [](const uikit::View& view) {
                 return dynamic_cast<RequestListViewController*>(view.viewController()) != nullptr;
             }))
            lists.push_back(dynamic_cast<RequestListViewController*>(view->viewController()));
        auto* list = any(lists);
        if (!list || !list->refreshController || !uikit::isShown(*list->view())) return scroll();
        note("pull to refresh the request list");
        list->refreshController->userDidPull();
    }

    // The top bar's way back: its back or cancel button.
    void back() {
        auto* button = any(viewsOf<uikit::View>(layer(), window(), [](const uikit::View& view) {
            const auto& id = view.accessibilityIdentifier();
            return (id == "BackButton" || id == "CRVbackButton" || id == "CRVcancelButton") && interactive(view);
        }));
        if (!button) return hostLeave();
        note("tap back " + describe(*button));
        tapTracked(*button, [button] { uikit::tap(*button); });
    }

    void hostOpen() {
        const bool present = chance(0.4);
        const std::string how = present ? " (presented)" : " (pushed)";
        switch (uniform(0, 3)) {
        case 0:
            note("host opens the request list" + how);
            app_.showTickets(present);
            break;
        case 1:
            note("host opens a new request" + how);
            app_.showNewRequest(present);
            break;
        case 2: {
            const std::string id = someTicketId();
            note("host opens ticket " + printable(id) + how);
            app_.showTicket(id, present);
            break;
        }
        default:
            note("host opens the Help Center" + how);
            app_.showHelpCenter(present);
        }
    }

    void hostLeave() {
        switch (uniform(0, 2)) {
        case 0:
            note("host pops one screen");
            app_.navigation->popViewController(chance(0.5));
            break;
        case 1:
            note("host pops to its root");
            app_.popToRoot(chance(0.5));
            break;
        default:
            note("host dismisses the top screen");
            app_.dismissTop(chance(0.5));
        }
    }

    std::string someTicketId() {
        const auto requests = app_.desk->tickets()->requests();
        const int roll = uniform(0, 99);
        if (roll < 75 && !requests.empty()) return requests[uniform<std::size_t>(0, requests.size() - 1)].requestId;
        if (roll < 85) {
            // A ticket kept only on the device, by its local id, as its failed row in the list names it.
            const auto& local = localKeys();
            if (!local.empty()) return local[uniform<std::size_t>(0, local.size() - 1)];
        }
        static const char* const odd[] = {"999999", "0", "-1", "", "héllo", "../Tickets", "12abc", "9223372036854775808"};
        return odd[uniform<std::size_t>(0, std::size(odd) - 1)];
    }

    // A push from the host's notification service.
    void push() {
        auto& registry = corvane::Corvane::instance()->actionHandlerRegistry();
        if (chance(0.3)) {
            note("push: Request_List_Refresh");
            if (auto handler = registry.handler(RequestListRefreshActionHandler::defaultActionName)) handler->handle({});
            return;
        }
        const std::string id = someTicketId();
        const std::string name = RequestDetailRefreshActionHandler::actionName(id);
        auto handler = registry.handler(name);
        const int roll = uniform(0, 9);
        note("push: " + printable(name) + (handler ? "" : " (no handler)") +
             (roll == 0 ? " without request_id" : roll == 1 ? " with a number for request_id" : ""));
        if (!handler) return;
        if (roll == 0) handler->handle({});
        else if (roll == 1) handler->handle({{"request_id", std::any(42)}});
        else handler->handle({{"request_id", std::any(id)}});
    }

    void wait() {
        const int roll = uniform(0, 9);
        const auto duration = roll < 6   ? platform::milliseconds(uniform(10, 300))
                              : roll < 9 ? platform::milliseconds(uniform(300, 3000))
                                         : platform::milliseconds(uniform(3000, 30000));
        note("wait " + std::to_string(std::chrono::duration_cast<std::chrono::milliseconds>(duration).count()) + " ms");
        expect(app_.advance(duration), "work on another thread never finished");
    }

    void fault() {
        ++result_.figures.faults;
        auto& tickets = *app_.desk->tickets();
        auto& help = *app_.desk->helpCenter();
        switch (uniform(0, 10)) {
        case 0:
        case 1:
            ticketsOffline_ = !ticketsOffline_;
            note(std::string("help desk goes ") + (ticketsOffline_ ? "offline" : "online"));
            tickets.setOffline(ticketsOffline_);
            lasts(ticketsOffline_);
            break;
        case 2: {
            const int most = std::array{0, 200, 1000, 3000}[uniform<std::size_t>(0, 3)];
            note("help desk latency 0.." + std::to_string(most) + " ms");
            tickets.setLatencyRange(platform::Duration::zero(), platform::milliseconds(most),
                                    static_cast<unsigned>(options_.seed + step_));
            help.setLatency(platform::milliseconds(most / 2));
            break;
        }
        case 3:
        case 4: {
            const int count = uniform(1, 3);
            note("the next " + std::to_string(count) + " calls to the help desk fail");
            tickets.failNext(count);
            break;
        }
        case 5:
            unauthorized_ = unauthorized_ ? false : chance(0.5);
            note(std::string("help desk answers ") + (unauthorized_ ? "401 from now" : "normally again"));
            tickets.setUnauthorized(unauthorized_);
            lasts(unauthorized_);
            break;
        case 6:
            helpOffline_ = !helpOffline_;
            note(std::string("Help Center goes ") + (helpOffline_ ? "offline" : "online"));
            help.setOffline(helpOffline_);
            lasts(helpOffline_);
            break;
        case 7:
            note("the next Help Center call fails");
            help.failNext(1);
            break;
        case 8:
            settingsFailing_ = !settingsFailing_;
            note(std::string("settings ") + (settingsFailing_ ? "fail" : "answer again"));
            app_.desk->settings()->setFailing(settingsFailing_);
            lasts(settingsFailing_);
            break;
        case 9: {
            autoReply_ = !autoReply_;
            note(std::string("the agent ") + (autoReply_ ? "answers each comment" : "stops answering"));
            if (autoReply_) {
                const long delay = uniform(0, 5000);
                tickets.setAutoReply(app_.agentId, [delay](const dastrel::CRVRequest&, const dastrel::CRVComment& comment)
                                                       -> std::optional<sandbox::TicketDesk::Reply> {
                    if (comment.body.size() % 3 == 0) return std::nullopt;
                    return sandbox::TicketDesk::Reply{"Thanks, looking into it.", "<p>Thanks, <b>looking</b> into it.</p>",
                                                      platform::milliseconds(delay)};
                });
            } else {
                tickets.setAutoReply(app_.agentId, nullptr);
            }
            break;
        }
        default: {
            const auto requests = tickets.requests();
            if (requests.empty()) return;
            const auto& id = requests[uniform<std::size_t>(0, requests.size() - 1)].requestId;
            const bool close = chance(0.5);
            note("the agent " + std::string(close ? "closes" : "reopens") + " ticket " + id);
            tickets.setStatus(id, close ? "closed" : "open");
        }
        }
    }

    // Outages and 401s pass, as they do: each lasts a few events unless flipped back before.
    void lasts(bool& flag) { endsAt_[&flag] = step_ + uniform(2, 25); }

    void healExpiredFaults() {
        for (auto& [flag, end] : endsAt_) {
            if (end != step_ || !*flag) continue;
            *flag = false;
            auto& tickets = *app_.desk->tickets();
            if (flag == &ticketsOffline_) {
                note("help desk comes back online");
                tickets.setOffline(false);
            } else if (flag == &unauthorized_) {
                note("help desk answers normally again");
                tickets.setUnauthorized(false);
            } else if (flag == &helpOffline_) {
                note("Help Center comes back online");
                app_.desk->helpCenter()->setOffline(false);
            } else if (flag == &settingsFailing_) {
                note("settings answer again");
                app_.desk->settings()->setFailing(false);
            }
        }
    }

    void agentWrites() {
        const auto requests = app_.desk->tickets()->requests();
        if (requests.empty()) return wait();
        const auto& id = requests[uniform<std::size_t>(0, requests.size() - 1)].requestId;
        const int roll = uniform(0, 3);
        std::string body = roll == 0   ? "Could you send a photo?"
                           : roll == 1 ? "See our article about it."
                           : roll == 2 ? std::string("Ω ") + pick(rng_, wideWords) + " " + pick(rng_, oddWords)
                                       : "";
        std::optional<std::string> html;
        if (roll == 1) html = "<p>See <a href=\"https://belva.example.com/hc/en-us/articles/360001-returns\">our article</a>.</p>";
        if (roll == 3) html = "<p><i>unclosed <b>tags";
        note("the agent writes on ticket " + id + ": " + printable(body));
        app_.desk->tickets()->addAgentComment(id, app_.agentId, body, html);
    }

    void foreground() {
        note("the app returns from the background");
        platform::NotificationCenter::defaultCenter().post(applicationWillEnterForegroundNotification, nullptr);
    }

    void rotate() {
        const int roll = uniform(0, 2);
        note(std::string("the window becomes ") + (roll == 0 ? "a phone in portrait" : roll == 1 ? "a phone in landscape" : "a tablet"));
        app_.window->setEnvironment(roll == 0   ? uikit::Environment::phonePortrait()
                                    : roll == 1 ? uikit::Environment::phoneLandscape()
                                                : uikit::Environment::tablet());
    }

    // Which conversation each ticket screen was opened for, learnt when it first shows up.

    void registerScreens() {
        std::set<const uikit::ViewController*> seen;
        visitScreens(*app_.navigation, [this](uikit::ViewController& screen) { registerScreen(screen); }, seen);
        for (const auto& layer : app_.window->subviews())
            if (auto* screen = layer->viewController()) visitScreens(*screen, [this](uikit::ViewController& shown) { registerScreen(shown); }, seen);
    }

    void registerScreen(uikit::ViewController& screen) {
        auto* container = dynamic_cast<RequestContainerController*>(&screen);
        if (!container) return;
        auto& known = groups_[container];
        if (!known.first.expired()) return;
        known.first = std::static_pointer_cast<RequestContainerController>(container->shared_from_this());
        Group group;
        const auto& id = container->state.requestId;
        if (!id) {
            group = {GroupKind::fresh, "new:" + std::to_string(++screens_), ""};
        } else if (isNumber(*id)) {
            // A number may also be the key a ticket opened by its id is kept under (its first
            // comment's), listed as a conversation of the device: the screen then talks to the
            // ticket its saved file names.
            std::string ticket = *id;
            const LocalIDStore ids;
            if (!ids.remoteToLocal.contains(*id)) {
                const auto stored = storedConversations();
                if (const auto file = stored.find(*id); file != stored.end() && file->second.remoteRequestId)
                    ticket = *file->second.remoteRequestId;
            }
            group = {GroupKind::ticket, "ticket:" + ticket + "#" + std::to_string(++screens_), ticket};
        } else if (isUuid(*id)) {
            group = {GroupKind::local, "local:" + *id, ""};
        } else {
            group = {GroupKind::bogus, "bogus:" + *id, ""};
        }
        known.second = group;
    }

    Group groupOf(RequestController& screen) {
        for (auto* parent = screen.parentViewController(); parent; parent = parent->parentViewController())
            if (auto found = groups_.find(parent); found != groups_.end() && !found->second.first.expired())
                return found->second.second;
        throw Violation("a conversation screen outside any request container");
    }

    Group formGroup(CreateRequestController& form) {
        for (auto* parent = form.parentViewController(); parent; parent = parent->parentViewController())
            if (auto found = groups_.find(parent); found != groups_.end() && !found->second.first.expired())
                return {GroupKind::form, "form:" + found->second.second.name, ""};
        return {GroupKind::form, "form:alone", ""};
    }

    // The marker the send is tracked by, if it is.
    std::optional<long> recordSend(const std::string& text, const Group& group) {
        const auto marker = markerOf(text);
        ++result_.figures.sends;
        if (!marker || ledger_.contains(*marker)) {
            // Its text is not its own, but the ticket it may make is still its conversation's.
            untracked_.emplace_back(text, group);
            note("sent an untracked text");
            return std::nullopt;
        }
        ledger_[*marker] = Sent{*marker, text, group, step_};
        note("sent " + markerText(*marker) + " in " + group.name);
        return marker;
    }

    // Where the watched send is kept, printed when that changes.
    void watch() {
        std::string where;
        for (const auto& [key, list] : storedConversations())
            for (const auto& message : list.messages)
                if (const auto* text = message.getIf<UserMessage>(); text && markerOf(text->body) == options_.watch)
                    where += " " + key + ":" + statusName(text->status);
        if (const auto* table = sharedStore()->state().valueOfType<RequestTableState>())
            for (const auto& message : table->tableData)
                if (const auto* text = message.getIf<UserMessage>(); text && markerOf(text->body) == options_.watch)
                    where += " table(" + table->localId.value_or("-") + "):" + statusName(text->status);
        {
            const LocalIDStore ids;
            where += " | ids:";
            for (const auto& [remote, local] : ids.remoteToLocal) where += " " + remote + "->" + local.substr(0, 8);
        }
        if (where == watched_) return;
        watched_ = where;
        std::cout << "#" << step_ << " " << markerText(options_.watch) << " kept at:" << (where.empty() ? " nowhere" : where) << std::endl;
    }

    // Invariants.

    // Every shown conversation table has the rows of its state.
    void checkScreens() {
        for (auto* field : viewsOf<InputField>(layer(), window())) {
            auto* screen = owningScreen<RequestController>(field);
            if (!screen || !screen->requestTable()) continue;
            const auto& table = *screen->requestTable();
            const int rows = table.tableView()->numberOfRowsInSection(0);
            expect(rows == static_cast<int>(table.state().cellItems.size()),
                   "the conversation table shows " + std::to_string(rows) + " rows for " +
                       std::to_string(table.state().cellItems.size()) + " cell items");
            // A screen another one took the conversation from shows it as it was then, until the
            // user acts on it; the one that holds it must match the disk.
            if (screen->ownsConversation()) checkStoredEqualsShown(*screen);
        }
    }

    // The conversation on disk is the one on the screen, but for messages still on their way.
    void checkStoredEqualsShown(RequestController& screen) {
        const auto& state = screen.requestTable()->state();
        if (!state.localId || !screen.ticketsCache()) return;
        const auto bytes = screen.ticketsCache()->read(*state.localId);
        std::vector<std::string> shown, stored;
        for (const auto& message : state.tableData)
            if (status(message) != DeliveryStatus::notDelivered) shown.push_back(line(message));
        if (bytes) {
            const auto list = decodeMessageList(*bytes);
            expect(list.has_value(), "the stored conversation " + *state.localId + " cannot be read back");
            for (const auto& message : list->messages) stored.push_back(line(message));
        }
        if (!bytes && shown.empty()) return;
        if (shown != stored) {
            std::ostringstream out;
            out << "the stored conversation " << *state.localId << " differs from the screen\n  shown:";
            for (const auto& entry : shown) out << "\n    " << entry;
            out << "\n  stored:";
            for (const auto& entry : stored) out << "\n    " << entry;
            throw Violation(out.str());
        }
        ++result_.figures.checks;
    }

    static std::string statusName(std::optional<DeliveryStatus> value) {
        if (!value) return "agent";
        switch (*value) {
        case DeliveryStatus::notDelivered: return "queued";
        case DeliveryStatus::delivered:
        case DeliveryStatus::lastDelivered: return "delivered";
        case DeliveryStatus::failed: return "failed";
        }
        return "?";
    }

    static std::string line(const Message& message) {
        const std::string* body = bodyOf(message);
        std::string text = std::string(rawValue(belvakit::type(message))) + " " + statusName(status(message)) + " ";
        text += body ? printable(*body, 30) : std::string("file");
        return text;
    }

    struct DeskView {
        std::map<long, std::vector<std::string>> tickets;  // marker: the tickets that hold it
        std::map<std::string, std::optional<long>> first;  // ticket: marker of the comment that created it
        std::map<std::string, std::string> firstBody;      // ticket: the comment that created it
    };

    DeskView readDesk() {
        DeskView view;
        auto& tickets = *app_.desk->tickets();
        for (const auto& request : tickets.requests()) {
            bool first = true;
            for (const auto& comment : tickets.comments(request.requestId)) {
                if (comment.authorId != endUserId_) {
                    first = false;
                    continue;
                }
                const auto marker = markerOf(comment.body);
                if (first) {
                    view.first[request.requestId] = marker;
                    view.firstBody[request.requestId] = comment.body;
                }
                first = false;
                if (!marker) continue;
                view.tickets[*marker].push_back(request.requestId);
                const auto sent = ledger_.find(*marker);
                expect(sent != ledger_.end(),
                       "ticket " + request.requestId + " holds a comment the user never sent: " + printable(comment.body));
                expect(sent->second.text == comment.body, markerText(*marker) + " arrived changed: " + printable(comment.body, 80) +
                                                              " instead of " + printable(sent->second.text, 80));
            }
        }
        return view;
    }

    // At the help desk: nothing twice, nothing deleted, each on its own conversation's ticket.
    DeskView checkDesk() {
        DeskView view = readDesk();
        std::map<std::string, std::string> ticketOfGroup;
        for (const auto& [marker, where] : view.tickets) {
            const Sent& sent = ledger_.at(marker);
            const std::string what = markerText(marker) + " (sent at step " + std::to_string(sent.step) + " in " + sent.group.name + ")";
            std::string list;
            for (const auto& id : where) list += " " + id;
            expect(where.size() == 1, what + " is at the help desk " + std::to_string(where.size()) + " times, on tickets" + list);
            expect(!sent.deleted, what + " was deleted by the user, yet reached ticket" + list);
            const std::string& ticket = where.front();
            const auto first = view.first[ticket];
            const Group* creator = first && ledger_.contains(*first) ? &ledger_.at(*first).group : nullptr;
            // Untracked texts can repeat: the one from the send's own conversation is the likely creator.
            if (!first)
                for (const auto& [text, group] : untracked_)
                    if (text == view.firstBody[ticket] && (!creator || group.name == sent.group.name)) creator = &group;
            const std::string on = what + " is on ticket " + ticket;
            switch (sent.group.kind) {
            case GroupKind::ticket: expect(ticket == sent.group.ticket, on + ", not on ticket " + sent.group.ticket); break;
            case GroupKind::form: expect(first == marker, on + ", which another send created"); break;
            case GroupKind::bogus: expect(false, on + ", though its screen was opened on no ticket"); break;
            case GroupKind::fresh:
            case GroupKind::local:
                expect(creator && (creator->kind == GroupKind::fresh || creator->kind == GroupKind::local),
                       on + ", a ticket that no new conversation created");
                if (sent.group.kind == GroupKind::fresh && creator->kind == GroupKind::fresh)
                    expect(creator->name == sent.group.name,
                           on + ", which " + creator->name + " created: another new conversation's ticket");
                auto [known, added] = ticketOfGroup.emplace(sent.group.name, ticket);
                expect(added || known->second == ticket,
                       on + ", while other messages of " + sent.group.name + " are on ticket " + known->second);
                break;
            }
        }
        return view;
    }

    // The end: faults healed, time to settle, then every send accounted for.
    void finish() {
        step_ = options_.events + 1;
        note("end: faults healed");
        app_.heal();
        expect(app_.advance(platform::seconds(30)), "work on another thread never finished");
        if (options_.watch) watch();
        checkScreens();
        DeskView desk = checkDesk();

        if (conversationsOn_) {
            // Each conversation the user wrote in, opened again: what it shows is what is kept,
            // and each failed message offers its retry.
            app_.dismissAll();
            app_.popToRoot(false);
            expect(app_.advance(platform::seconds(1)), "work on another thread never finished");
            std::set<std::string> open;
            for (const auto& [marker, where] : desk.tickets) open.insert(where.front());
            for (const auto& [key, list] : storedConversations())
                if (!list.remoteRequestId && isUuid(key)) open.insert(key);
            int opened = 0;
            for (const auto& id : open) {
                if (++opened > 12) break;
                reopen(id);
            }
            desk = checkDesk();
        }
        accountForSends(desk);
    }

    void reopen(const std::string& id) {
        note("reopen " + id);
        app_.showTicket(id, false);
        expect(app_.advance(platform::seconds(3)), "work on another thread never finished");
        if (options_.watch) watch();
        auto fields = viewsOf<InputField>(layer(), window());
        expect(!fields.empty(), "ticket " + id + " does not open a conversation once the faults are healed");
        auto* screen = owningScreen<RequestController>(fields.front());
        expect(screen && screen->requestTable(), "ticket " + id + " opens without its table");
        checkStoredEqualsShown(*screen);
        auto& table = *screen->requestTable();
        const auto items = table.state().cellItems;
        std::map<long, int> seen;
        for (std::size_t row = 0; row < items.size(); ++row) {
            const auto* message = std::get_if<Message>(&items[row]);
            const auto* text = message ? message->getIf<UserMessage>() : nullptr;
            const auto marker = text ? markerOf(text->body) : std::nullopt;
            if (!marker) continue;
            expect(++seen[*marker] == 1, markerText(*marker) + " shows twice in ticket " + id);
            if (text->status != DeliveryStatus::failed) continue;
            const uikit::IndexPath path{0, static_cast<int>(row)};
            table.tableView()->scrollToRow(path, uikit::TableViewScrollPosition::middle, false);
            app_.layout();
            const auto cell = table.tableView()->cellForRow(path);
            expect(cell != nullptr, "the row of failed " + markerText(*marker) + " has no cell in ticket " + id);
            const auto retries = viewsOf<uikit::View>(*cell, window(), [](const uikit::View& view) {
                return view.accessibilityIdentifier() == "CRVretryButton";
            });
            expect(!retries.empty(), "failed " + markerText(*marker) + " offers no retry in ticket " + id);
        }
        app_.popToRoot(false);
        expect(app_.advance(platform::milliseconds(500)), "work on another thread never finished");
    }

    // The device's own tickets, in the order they were first seen: ids are random, the order of
    // a replay is not.
    const std::vector<std::string>& localKeys() {
        const auto cache = ConcreteCache::named(ConcreteCache::ticketsDirectory);
        if (!cache || !std::filesystem::exists(cache->path())) return localSeen_;
        std::vector<std::string> fresh;
        for (const auto& entry : std::filesystem::directory_iterator(cache->path())) {
            const auto name = entry.path().filename().string();
            if (entry.is_regular_file() && isUuid(name) &&
                std::find(localSeen_.begin(), localSeen_.end(), name) == localSeen_.end())
                fresh.push_back(name);
        }
        std::sort(fresh.begin(), fresh.end());
        localSeen_.insert(localSeen_.end(), fresh.begin(), fresh.end());
        return localSeen_;
    }

    std::map<std::string, MessageList> storedConversations() const {
        std::map<std::string, MessageList> found;
        const auto cache = ConcreteCache::named(ConcreteCache::ticketsDirectory);
        if (!cache || !std::filesystem::exists(cache->path())) return found;
        for (const auto& entry : std::filesystem::directory_iterator(cache->path())) {
            if (!entry.is_regular_file()) continue;
            std::ifstream in(entry.path(), std::ios::binary);
            std::stringstream bytes;
            bytes << in.rdbuf();
            if (auto list = decodeMessageList(bytes.str())) found.emplace(entry.path().filename().string(), std::move(*list));
        }
        return found;
    }

    // Each send ended delivered, once and shown so, or failed and kept so with its retry, or was
    // deleted by the user.
    void accountForSends(const DeskView& desk) {
        std::map<long, std::vector<StoredMessage>> stored;
        for (const auto& [key, list] : storedConversations())
            for (const auto& message : list.messages)
                if (const auto* text = message.getIf<UserMessage>())
                    if (auto marker = markerOf(text->body)) stored[*marker].push_back({key, text->status});
        for (const auto& [marker, sent] : ledger_) {
            const std::string what = markerText(marker) + " (sent at step " + std::to_string(sent.step) + " in " + sent.group.name + ")";
            const bool atDesk = desk.tickets.contains(marker);
            const auto& copies = stored[marker];
            const auto failedCopy = std::find_if(copies.begin(), copies.end(), [](const StoredMessage& copy) {
                return copy.status == DeliveryStatus::failed;
            });
            if (sent.group.kind == GroupKind::form || !conversationsOn_) {
                // The form keeps no conversation: its sends are checked at the help desk alone.
                result_.figures.delivered += atDesk;
                continue;
            }
            if (atDesk) {
                expect(!copies.empty(), what + " reached the help desk but no stored conversation holds it");
                expect(failedCopy == copies.end(), what + " reached the help desk but is kept as failed in " +
                                                       (failedCopy == copies.end() ? "" : failedCopy->key));
                ++result_.figures.delivered;
            } else if (sent.deleted) {
                ++result_.figures.deleted;
            } else {
                expect(failedCopy != copies.end(), what + " never reached the help desk and is kept nowhere as failed: lost");
                ++result_.figures.failedWithRetry;
            }
        }
    }

    const Options& options_;
    Result& result_;
    std::mt19937_64 rng_;
    bool conversationsOn_;
    App app_;
    int step_ = 0;
    int notedStep_ = -1;
    long serial_ = 0;
    int screens_ = 0;
    std::int64_t endUserId_ = 0;
    std::map<long, Sent> ledger_;
    std::vector<std::pair<std::string, Group>> untracked_;
    std::map<const CreateRequestController*, long> formSends_;
    std::map<const uikit::ViewController*, std::pair<std::weak_ptr<RequestContainerController>, Group>> groups_;
    std::vector<std::string> localSeen_;
    std::string watched_;
    bool ticketsOffline_ = false;
    bool helpOffline_ = false;
    bool unauthorized_ = false;
    bool settingsFailing_ = false;
    bool autoReply_ = false;
    std::map<bool*, int> endsAt_;
};

} // namespace

Result runSeed(const Options& options) {
    Result result;
    result.figures.seeds = 1;
    try {
        Run run(options, result);
        try {
            run.go();
        } catch (const Violation& violation) {
            result.passed = false;
            result.failure = violation.what();
            result.log = run.log();
            result.holdings = run.holdings();
        }
    } catch (const Violation& violation) {
        result.passed = false;
        result.failure = violation.what();
    }
    return result;
}

void printFailure(std::ostream& out, const Options& options, const Result& result) {
    out << "monkey: seed " << options.seed << " failed after " << result.figures.events << " events: " << result.failure
        << "\nreplay: belva-monkey --seed " << options.seed << " --events " << options.events << "\nsteps:\n";
    for (const auto& step : result.steps) out << "  " << step << "\n";
    if (!result.holdings.empty()) out << "held:\n";
    for (const auto& line : result.holdings) out << "  " << line << "\n";
    if (!result.log.empty()) out << "latest log lines:\n";
    for (const auto& line : result.log) out << "  " << line << "\n";
}

void printFigures(std::ostream& out, const Figures& figures) {
    out << "monkey: " << figures.seeds << " seeds, " << figures.events << " events, " << figures.checks
        << " invariant checks passed, " << figures.faults << " faults injected; " << figures.sends << " sends: "
        << figures.delivered << " delivered, " << figures.failedWithRetry << " failed with a retry, " << figures.deleted
        << " deleted by the user\n";
}

} // namespace monkey
