#include "shots_create_request.hpp"

#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/createrequest/create_request_controller.hpp"
#include "belvakit/entry/shared_store.hpp"
#include "belvakit/entry/support_ui.hpp"
#include "belvakit/entry/ui_configurations.hpp"
#include "belvakit/toolkit/theme.hpp"
#include "platform/image_codec.hpp"
#include "platform/main_queue.hpp"
#include "sandbox/help_desk.hpp"
#include "uikit/label.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/probe.hpp"
#include "uikit/window.hpp"

#include <cmath>
#include <filesystem>

namespace belvademo {

namespace {

using namespace belvakit;

// A picker that hands over what the script gives it.
class ScriptedPicker final : public ImagePickerPresenter {
public:
    bool isPickerShown() const override { return shown_; }
    void showPicker() override { shown_ = true; }
    void hidePicker() override { shown_ = false; }
    void pick(InputAttachmentViewStatePtr attachment) {
        if (attachmentChosen) attachmentChosen(std::move(attachment));
    }

private:
    bool shown_ = false;
};

struct Setup {
    bool requiresName = true;
    bool requiresEmail = true;
    std::vector<RequestAttachment> preAttached;
    std::function<void(sandbox::HelpDesk&)> prepareDesk;
    // Runs once the form is on screen.
    std::function<void(CreateRequestController&, uikit::NavigationController&, ScriptedPicker&)> script;
    bool landscape = false;
};

// A photo-like picture: a sky, a sun and a hill.
InputAttachmentViewStatePtr landscapePhoto() {
    constexpr int width = 96, height = 72;
    auto image = std::const_pointer_cast<platform::Image>(platform::makeImage(width, height));
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            auto* pixel = &image->rgba[static_cast<std::size_t>((y * width + x) * 4)];
            const bool sun = std::hypot(x - 70, y - 20) < 10;
            const bool hill = y > 48 + 10 * std::sin(x / 15.0);
            pixel[0] = static_cast<std::uint8_t>(sun ? 255 : hill ? 76 : 120 + y);
            pixel[1] = static_cast<std::uint8_t>(sun ? 210 : hill ? 153 : 170 + y / 2);
            pixel[2] = static_cast<std::uint8_t>(sun ? 60 : hill ? 80 : 235);
            pixel[3] = 255;
        }
    return std::make_shared<InputImageViewModel>(image, "photo-1", std::nullopt, platform::encodePNG(*image),
                                                 FileType::png, "IMG_0042.png");
}

uikit::TextInput* input(CreateRequestController& form, std::string_view identifier) {
    return uikit::findByIdentifier<uikit::TextInput>(*form.view(), identifier);
}

void type(CreateRequestController& form, std::string_view identifier, const std::string& text) {
    if (auto* field = input(form, identifier)) uikit::typeText(*field, text);
}

// Typed in, with the keyboard put away again so that the whole form shows.
void fill(CreateRequestController& form, const std::string& email, const std::string& description) {
    type(form, "CRVnameField", "Ada Lovelace");
    type(form, "CRVemailField", email);
    type(form, "CRVmessageBodyField", description);
    if (auto* field = input(form, "CRVmessageBodyField")) field->resignFirstResponder();
}

void tapBarButton(uikit::NavigationController& navigation, std::string_view identifier) {
    if (auto* button = uikit::findByIdentifier(*navigation.navigationBar(), identifier)) uikit::tap(*button);
}

class HelpScreen final : public uikit::ViewController {
public:
    HelpScreen() { setTitle("Help"); }
    void viewDidLoad() override { view()->setBackgroundColor(CRVLegacyTheme::currentAppliedTheme()->secondaryBackgroundColor); }
};

GalleryShot formShot(std::string name, std::string title, double seconds, Setup setup) {
    return {std::move(name), std::move(title), seconds, [setup = std::move(setup)]() -> uikit::ViewController::Ptr {
                const auto storage = std::filesystem::temp_directory_path() / "belva-demo-create-request-shots";
                auto desk = sandbox::HelpDesk::make({.storageDirectory = storage});
                if (setup.prepareDesk) setup.prepareDesk(*desk);
                SupportUI::initialize(desk->initializeCorvane(corvane::Identity::createAnonymous()));

                auto configuration = std::make_shared<RequestUiConfiguration>();
                configuration->subject = "From the demo";
                configuration->fileAttachments = setup.preAttached;
                auto form = CreateRequestController::make(setup.requiresName, setup.requiresEmail, true,
                                                          "https://example.com", true, 2 * 1024 * 1024,
                                                          mirrowset::Configurations({configuration}));
                auto picker = std::make_shared<ScriptedPicker>();
                form->setImagePickerPresenter(picker);
                // As the container does once the account's settings are in.
                Actions::SettingsFetched settings;
                settings.isAttachmentsEnabled = true;
                settings.maxAttachmentSize = 2 * 1024 * 1024;
                sharedStore()->dispatch(settings);
                // The form keeps its help desk for as long as it lives.
                form->setAssociatedObject("BelvaDemoHelpDesk", desk);

                auto navigation = std::make_shared<uikit::NavigationController>(std::make_shared<HelpScreen>());
                navigation->pushViewController(form, false);
                const std::weak_ptr<CreateRequestController> weakForm = form;
                const std::weak_ptr<uikit::NavigationController> weakNavigation = navigation;
                platform::MainQueue::shared().asyncAfter(platform::milliseconds(50), [weakForm, weakNavigation, picker,
                                                                                     setup] {
                    auto shown = weakForm.lock();
                    auto bar = weakNavigation.lock();
                    if (!shown || !bar || !shown->view()->window()) return;
                    auto* window = shown->view()->window();
                    // Turned only where the shot is the window's own screen, not when opened from the menu.
                    if (setup.landscape && window->rootViewController() == bar)
                        window->setEnvironment(uikit::Environment::phoneLandscape());
                    if (setup.script) setup.script(*shown, *bar, *picker);
                });
                return navigation;
            }};
}

} // namespace

std::vector<GalleryShot> createRequestShots() {
    std::vector<GalleryShot> shots;
    // The send queue is the process's: a send still under way holds back the sends after it, so
    // the failing one goes before the slow one.
    shots.push_back(formShot("create-request-empty", "New request: name, email and description", 1.0, {}));
    shots.push_back(formShot("create-request-invalid-email", "New request: an email that does not pass", 1.0,
                             {.script = [](CreateRequestController& form, uikit::NavigationController&, ScriptedPicker&) {
                                  fill(form, "ada@example", "The export button does nothing.");
                              }}));
    shots.push_back(formShot(
        "create-request-attachments", "New request: with attachments", 1.0,
        {.preAttached = {RequestAttachment("crash-report.txt", std::string(18000, 'x'), FileType::txt)},
         .script = [](CreateRequestController& form, uikit::NavigationController&, ScriptedPicker& picker) {
             fill(form, "ada@example.com", "The app closes when I export. The report and a screenshot are attached.");
             picker.pick(landscapePhoto());
         }}));
    shots.push_back(formShot(
        "create-request-failure", "New request: could not be sent", 1.5,
        {.prepareDesk = [](sandbox::HelpDesk& desk) { desk.tickets()->failNext(1); },
         .script = [](CreateRequestController& form, uikit::NavigationController& navigation, ScriptedPicker&) {
             fill(form, "ada@example.com", "The export button does nothing.");
             tapBarButton(navigation, "CRVsendButton");
         }}));
    shots.push_back(formShot(
        "create-request-sending", "New request: sending", 1.2,
        {.prepareDesk = [](sandbox::HelpDesk& desk) { desk.tickets()->setLatency(platform::seconds(5)); },
         .script = [](CreateRequestController& form, uikit::NavigationController& navigation, ScriptedPicker&) {
             fill(form, "ada@example.com", "The export button does nothing.");
             tapBarButton(navigation, "CRVsendButton");
         }}));
    shots.push_back(formShot("create-request-discard", "New request: leaving with unsent text", 1.0,
                             {.script = [](CreateRequestController& form, uikit::NavigationController& navigation,
                                           ScriptedPicker&) {
                                  fill(form, "ada@example.com", "Half a thought");
                                  tapBarButton(navigation, "CRVbackButton");
                              }}));
    shots.push_back(formShot(
        "create-request-landscape", "New request: landscape", 1.0,
        {.script = [](CreateRequestController& form, uikit::NavigationController&, ScriptedPicker& picker) {
             fill(form, "ada@example.com", "The app closes when I export.");
             picker.pick(landscapePhoto());
         },
         .landscape = true}));
    return shots;
}

} // namespace belvademo
