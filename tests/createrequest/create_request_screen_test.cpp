#include "../queue/host_fixture.hpp"
#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/conversation/input_field_actions.hpp"
#include "belvakit/Request/conversation/input_field_state.hpp"
#include "belvakit/Request/conversation/request_table_state.hpp"
#include "belvakit/Request/createrequest/create_request_actions.hpp"
#include "belvakit/Request/createrequest/create_request_controller.hpp"
#include "belvakit/Request/queue/request_queue_actions.hpp"
#include "belvakit/entry/localized_strings.hpp"
#include "belvakit/entry/shared_store.hpp"
#include "platform/image_codec.hpp"
#include "platform/url_opener.hpp"
#include "tivra/state_key.hpp"
#include "uikit/alert_controller.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/probe.hpp"
#include "uikit/window.hpp"

#include <gtest/gtest.h>

using namespace belvakit;
using Sending = CreateRequestState::Sending;

namespace {

class FakePicker final : public ImagePickerPresenter {
public:
    bool isPickerShown() const override { return shown; }
    void showPicker() override { setShown(true); }
    void hidePicker() override { setShown(false); }
    void pick(InputAttachmentViewStatePtr attachment) { attachmentChosen(std::move(attachment)); }
    bool shown = false;

private:
    void setShown(bool value) {
        shown = value;
        if (visibilityChanged) visibilityChanged(value);
    }
};

// Hosts the form as the request container does: the form's view fills it, and its send button
// moves to the host's own bar.
class HostScreen final : public uikit::ViewController, public CRVContainerChildControllerDelegate {
public:
    explicit HostScreen(const std::shared_ptr<CreateRequestController>& child) {
        addChildViewController(child);
        child->view()->setFrame(view()->bounds());
        child->view()->setAutoresizingMask(uikit::Autoresizing::flexibleWidth | uikit::Autoresizing::flexibleHeight);
        view()->addSubview(child->view());
        navigationItem().rightBarButtonItem = std::exchange(child->navigationItem().rightBarButtonItem, nullptr);
    }
    uikit::NavigationItem& navItem() override { return navigationItem(); }
    void willDismiss() override { ++dismissed; }
    int dismissed = 0;
};

std::shared_ptr<InputFileViewModel> textFile(const std::string& title, std::size_t bytes) {
    return std::make_shared<InputFileViewModel>(title, static_cast<std::int64_t>(bytes), nullptr,
                                                std::string(bytes, 'x'), title + "-id", FileType::txt, "txt");
}

std::shared_ptr<InputImageViewModel> pngImage(const std::string& name) {
    auto image = std::const_pointer_cast<platform::Image>(platform::makeImage(8, 8));
    std::fill(image->rgba.begin(), image->rgba.end(), std::uint8_t{200});
    return std::make_shared<InputImageViewModel>(image, name + "-id", std::nullopt, platform::encodePNG(*image),
                                                 FileType::png, name);
}

struct Form {
    bool requiresName = true;
    bool requiresEmail = true;
    bool showLogo = true;
    bool attachmentsEnabled = true;
    std::int64_t maxAttachmentSize = 1000;
    std::vector<RequestAttachment> preAttached;
};

// A form pushed on a navigation controller in a key phone window, on the embedded help desk.
class CreateRequestScreenTest : public testing::Test {
protected:
    void SetUp() override { previousOpener_ = platform::URLOpener::setShared(opener); }
    void TearDown() override {
        if (window) window->setRootViewController(nullptr);
        queue_testing::pass(time, platform::seconds(3));
        sharedStore()->dispatch(RequestQueueActions::ResetQueue{});
        platform::URLOpener::setShared(previousOpener_);
    }

    std::shared_ptr<CreateRequestController> open(const Form& options = {}) {
        auto configuration = std::make_shared<RequestUiConfiguration>();
        configuration->subject = "From the app";
        configuration->fileAttachments = options.preAttached;
        form = CreateRequestController::make(options.requiresName, options.requiresEmail, options.showLogo,
                                             "https://example.com/referrer", options.attachmentsEnabled,
                                             options.maxAttachmentSize, mirrowset::Configurations({configuration}));
        if (!form) return nullptr;
        form->setImagePickerPresenter(picker);
        // As the container does once it knows the account's settings.
        Actions::SettingsFetched settings;
        settings.isAttachmentsEnabled = options.attachmentsEnabled;
        settings.maxAttachmentSize = options.maxAttachmentSize;
        sharedStore()->dispatch(settings);

        window = std::make_shared<uikit::Window>();
        window->makeKeyAndVisible();
        window->setRootViewController(navigation);
        navigation->pushViewController(form, false);
        relayout();
        return form;
    }
    // The form opened again in a fresh navigation, as a host does after the last one went.
    std::shared_ptr<CreateRequestController> reopen(const Form& options = {}) {
        window->setRootViewController(nullptr);
        navigation = std::make_shared<uikit::NavigationController>(rootScreen = std::make_shared<uikit::ViewController>());
        return open(options);
    }
    void relayout() {
        const std::function<void(uikit::View&)> mark = [&](uikit::View& view) {
            view.setNeedsLayout();
            for (const auto& child : view.subviews()) mark(*child);
        };
        mark(*window);
        window->layoutTree();
    }
    uikit::TextInput& input(std::string_view identifier) {
        auto* found = uikit::findByIdentifier<uikit::TextInput>(*window, identifier);
        EXPECT_NE(found, nullptr) << identifier;
        return *found;
    }
    void type(std::string_view identifier, const std::string& text) { uikit::typeText(input(identifier), text); }
    uikit::Button* barButton(std::string_view identifier) {
        return uikit::findByIdentifier<uikit::Button>(*navigation->navigationBar(), identifier);
    }
    bool sendEnabled() {
        auto* button = barButton("CRVsendButton");
        EXPECT_NE(button, nullptr);
        return button && button->isEnabled();
    }
    // A second form, without name or email, pushed over the first.
    std::shared_ptr<CreateRequestController> pushSecondForm() {
        auto configuration = std::make_shared<RequestUiConfiguration>();
        auto second = CreateRequestController::make(false, false, false, "", true, 1000,
                                                     mirrowset::Configurations({configuration}));
        if (!second) return nullptr;
        navigation->pushViewController(second, false);
        relayout();
        return second;
    }

    void tapSend() {
        auto* button = barButton("CRVsendButton");
        ASSERT_NE(button, nullptr);
        uikit::tap(*button);
    }
    bool shown(std::string_view identifier) {
        auto* view = uikit::findByIdentifier(*window, identifier);
        return view && uikit::isShown(*view);
    }
    std::string status() { return shown("CRVcreateRequestStatusView") ? form->toastLabel()->text() : std::string(); }
    void fillValid() {
        type("CRVnameField", "Ann Example");
        type("CRVemailField", "ann@example.com");
        type("CRVmessageBodyField", "The export button does nothing");
    }
    bool settled(const std::function<bool()>& done) { return queue_testing::settle(time, done); }
    std::vector<std::string> attachmentIds() const {
        std::vector<std::string> ids;
        for (const auto& attachment : form->attachmentCollectionView()->state().attachments)
            ids.push_back(attachment->identifier());
        return ids;
    }

    std::vector<std::string> storeAttachmentIds() const {
        std::vector<std::string> ids;
        if (const auto* input = sharedStore()->state().valueOfType<InputFieldState>())
            for (const auto& attachment : input->attachments()) ids.push_back(attachment->identifier());
        return ids;
    }

    testing_support::VirtualTime time;
    testing_support::TemporaryDirectory directory;
    queue_testing::Host host{directory.path()};
    testing_support::CapturedLog log;
    std::shared_ptr<platform::HeadlessURLOpener> opener = std::make_shared<platform::HeadlessURLOpener>();
    std::shared_ptr<FakePicker> picker = std::make_shared<FakePicker>();
    std::shared_ptr<uikit::ViewController> rootScreen = std::make_shared<uikit::ViewController>();
    std::shared_ptr<uikit::NavigationController> navigation = std::make_shared<uikit::NavigationController>(rootScreen);
    std::shared_ptr<uikit::Window> window;
    std::shared_ptr<CreateRequestController> form;

private:
    std::shared_ptr<platform::URLOpener> previousOpener_;
};

} // namespace

TEST_F(CreateRequestScreenTest, TheFormAsksOnlyForWhatTheIdentityLacksAndStartsWithSendOff) {
    ASSERT_TRUE(open());
    EXPECT_EQ(input("CRVnameField").placeholder(), localized(LocalizedKey::requestsCreateRequestNamePlaceholder));
    EXPECT_EQ(input("CRVemailField").placeholder(), localized(LocalizedKey::requestsCreateRequestEmailfieldPlaceholder));
    EXPECT_TRUE(shown("writeAMessage"));
    EXPECT_EQ(form->descriptionTextview()->placeholderLabel()->text(),
              localized(LocalizedKey::requestsCreateRequestDescriptionPlaceholder));
    EXPECT_EQ(barButton("CRVsendButton")->currentTitle(), localized(LocalizedKey::requestsCreateRequestSubmitButton));
    EXPECT_FALSE(sendEnabled());
    EXPECT_TRUE(shown("CRVattachButton"));
    EXPECT_FALSE(shown("CRVcreateRequestStatusView"));
    EXPECT_FALSE(shown("CRVloadingView"));
    EXPECT_EQ(form->state().sending, Sending::unsent);

    // The logo's link goes through the store, which opens the referrer.
    ASSERT_TRUE(shown("CRVcorvaneLogo"));
    uikit::tap(*uikit::findByIdentifier(*window, "CRVcorvaneLogo"));
    ASSERT_EQ(opener->openedURLs().size(), 1u);
    EXPECT_EQ(opener->openedURLs()[0].absoluteString(), "https://example.com/referrer");

    // Asked for neither, with no logo and attachments off: the description alone.
    ASSERT_TRUE(reopen({.requiresName = false, .requiresEmail = false, .showLogo = false, .attachmentsEnabled = false}));
    EXPECT_EQ(uikit::findByIdentifier(*window, "CRVnameField"), nullptr);
    EXPECT_EQ(uikit::findByIdentifier(*window, "CRVemailField"), nullptr);
    EXPECT_EQ(form->inputFieldValidator()->views().size(), 1u);
    EXPECT_FALSE(shown("CRVcorvaneLogo"));
    EXPECT_FALSE(shown("CRVattachButton"));
    type("CRVmessageBodyField", "Only words");
    EXPECT_TRUE(sendEnabled());
    EXPECT_FALSE(shown("writeAMessage"));
}

TEST_F(CreateRequestScreenTest, InlineValidationMarksABadEmailOnceLeftAndFollowsEveryKeystrokeAfter) {
    ASSERT_TRUE(open());
    type("CRVnameField", "Ann");
    type("CRVemailField", "ann@example");
    // Before the field is left, typing judges nothing.
    EXPECT_FALSE(shown("CRVemailErrorImage"));
    type("CRVmessageBodyField", "Help");  // leaves the email field
    EXPECT_TRUE(shown("CRVemailErrorImage"));
    EXPECT_FALSE(sendEnabled());

    // From now on each keystroke in the email is checked.
    type("CRVemailField", ".museum");
    EXPECT_TRUE(shown("CRVemailErrorImage"));
    for (int i = 0; i < 6; ++i) input("CRVemailField").deleteBackward();
    type("CRVemailField", "org");
    EXPECT_FALSE(shown("CRVemailErrorImage"));
    EXPECT_TRUE(sendEnabled());

    // A blank required name blocks sending; whitespace is no name.
    auto& name = input("CRVnameField");
    while (!name.text().empty()) name.deleteBackward();
    type("CRVnameField", "   ");
    EXPECT_FALSE(sendEnabled());
    type("CRVnameField", "Ann");
    EXPECT_TRUE(sendEnabled());

    // Leaving the email trims it, and the trimmed address passes.
    type("CRVemailField", "  ");
    type("CRVmessageBodyField", "!");
    EXPECT_EQ(input("CRVemailField").text(), "ann@example.org");
    EXPECT_FALSE(shown("CRVemailErrorImage"));

    // Send with a bad address sends nothing and shows the error.
    type("CRVemailField", "@");
    tapSend();
    EXPECT_EQ(form->state().sending, Sending::unsent);
    EXPECT_TRUE(shown("CRVemailErrorImage"));
    EXPECT_TRUE(host.tickets().requests().empty());
}

TEST_F(CreateRequestScreenTest, SendingCreatesTheTicketWithTheFormsTextsAndFilesThenHandsOverAfterTwoSeconds) {
    host.tickets().setLatency(platform::milliseconds(300));
    ASSERT_TRUE(open({.preAttached = {RequestAttachment("crash.log", "trace", FileType::txt)}}));
    navigation->popViewController(false);
    auto container = std::make_shared<HostScreen>(form);
    form->childDelegate = std::static_pointer_cast<CRVContainerChildControllerDelegate>(container);
    navigation->pushViewController(container, false);
    relayout();
    EXPECT_FALSE(sendEnabled());
    uikit::tap(*form->attachButton());
    picker->pick(pngImage("screen.png"));
    fillValid();
    // The button on the host's bar follows the form.
    EXPECT_TRUE(sendEnabled());

    tapSend();
    EXPECT_EQ(form->state().sending, Sending::sending);
    EXPECT_EQ(status(), localized(LocalizedKey::requestsCreateRequestSending));
    EXPECT_TRUE(shown("CRVloadingView"));
    EXPECT_FALSE(sendEnabled());
    EXPECT_EQ(form->progressBar()->stateMachine()->state(), ProgressState::running);
    EXPECT_EQ(window->firstResponder(), nullptr);

    ASSERT_TRUE(settled([&] { return form->state().sending == Sending::sent; }));
    const auto requests = host.tickets().requests();
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].requestDescription, "The export button does nothing");
    EXPECT_EQ(host.tickets().creation(requests[0].requestId)->subject, "From the app");
    const auto comments = host.tickets().comments(requests[0].requestId);
    ASSERT_EQ(comments.size(), 1u);
    std::vector<std::string> files;
    for (const auto& file : comments[0].attachments) files.push_back(file.filename);
    std::sort(files.begin(), files.end());
    EXPECT_EQ(files, (std::vector<std::string>{"crash.log.txt", "screen.png"}));
    const auto identity = std::dynamic_pointer_cast<corvane::Anonymous>(host.core->identity());
    ASSERT_TRUE(identity);
    EXPECT_EQ(identity->name(), "Ann Example");
    EXPECT_EQ(identity->email(), "ann@example.com");

    // The strip slides away; the container hears of it two seconds after the bar completed.
    queue_testing::pass(time, platform::milliseconds(400));
    EXPECT_FALSE(shown("CRVcreateRequestStatusView"));
    EXPECT_EQ(container->dismissed, 0);
    queue_testing::pass(time, platform::milliseconds(1100));
    EXPECT_EQ(container->dismissed, 0);
    queue_testing::pass(time, platform::milliseconds(600));
    EXPECT_EQ(container->dismissed, 1);
    EXPECT_FALSE(shown("CRVloadingView"));

    // Still on screen as it goes, the form may send again: that is a request of its own.
    type("CRVmessageBodyField", " And the import button too.");
    tapSend();
    ASSERT_TRUE(settled([&] { return form->state().sending == Sending::sent; }));
    ASSERT_EQ(host.tickets().requests().size(), 2u) << "the second send was taken for a comment on the first ticket";
    EXPECT_EQ(host.tickets().comments(requests[0].requestId).size(), 1u);
}

TEST_F(CreateRequestScreenTest, AFailedSendShowsTheErrorKeepsEverythingAndTheRetrySucceeds) {
    ASSERT_TRUE(open());
    picker->pick(textFile("notes", 10));
    fillValid();
    host.tickets().failNext(1);
    tapSend();
    ASSERT_TRUE(settled([&] { return form->state().sending == Sending::failure; }));
    queue_testing::pass(time, platform::seconds(1));

    EXPECT_EQ(status(), localized(LocalizedKey::requestsCreateRequestErrorRequest));
    EXPECT_FALSE(shown("CRVloadingView"));
    EXPECT_TRUE(sendEnabled());
    EXPECT_NE(form->progressBar()->stateMachine()->state(), ProgressState::running);
    EXPECT_EQ(input("CRVnameField").text(), "Ann Example");
    EXPECT_EQ(input("CRVemailField").text(), "ann@example.com");
    EXPECT_EQ(input("CRVmessageBodyField").text(), "The export button does nothing");
    EXPECT_EQ(attachmentIds(), std::vector<std::string>{"notes-id"});
    EXPECT_TRUE(host.tickets().requests().empty());

    // Files that will not upload fail the send the same way, instead of leaving the shield up.
    host.helpDesk->attachments()->setFailUploads(true);
    tapSend();
    ASSERT_TRUE(settled([&] { return form->state().sending == Sending::failure; }));
    EXPECT_EQ(status(), localized(LocalizedKey::requestsCreateRequestErrorRequest));
    EXPECT_FALSE(shown("CRVloadingView"));
    EXPECT_TRUE(sendEnabled());

    host.helpDesk->attachments()->setFailUploads(false);
    tapSend();
    EXPECT_EQ(status(), localized(LocalizedKey::requestsCreateRequestSending));
    ASSERT_TRUE(settled([&] { return form->state().sending == Sending::sent; }));
    ASSERT_EQ(host.tickets().requests().size(), 1u);
    EXPECT_EQ(host.tickets().requests()[0].requestDescription, "The export button does nothing");
    // Standing alone, the form leaves its navigation two seconds later.
    queue_testing::pass(time, platform::seconds(2.5));
    EXPECT_EQ(navigation->topViewController(), rootScreen.get());
}

TEST_F(CreateRequestScreenTest, EachChangeOfTheSliceRedrawsTheRowOfTheSendStateAndStartsNothingTwice) {
    ASSERT_TRUE(open({.maxAttachmentSize = 100}));
    const auto tooBig = localized(LocalizedKey::requestsCreateRequestAttachmentFileTooBig);
    const auto error = localized(LocalizedKey::requestsCreateRequestErrorRequest);
    // Unsent: the next change of the form takes the strip away.
    picker->pick(textFile("over", 101));
    EXPECT_EQ(status(), tooBig);
    type("CRVmessageBodyField", "T");
    queue_testing::pass(time, platform::milliseconds(400));
    EXPECT_EQ(status(), "");

    // Failed: the error comes back over a later note, while the fields and the send button follow the edits.
    fillValid();
    host.tickets().failNext(1);
    tapSend();
    ASSERT_TRUE(settled([&] { return form->state().sending == Sending::failure; }));
    picker->pick(textFile("over", 101));
    EXPECT_EQ(status(), tooBig);
    type("CRVmessageBodyField", "!");
    EXPECT_EQ(status(), error);
    EXPECT_EQ(window->firstResponder(), &input("CRVmessageBodyField"));
    EXPECT_TRUE(sendEnabled());
    auto& description = input("CRVmessageBodyField");
    while (!description.text().empty()) description.deleteBackward();
    EXPECT_FALSE(sendEnabled());
    EXPECT_EQ(status(), error);
    type("CRVmessageBodyField", "Again");
    EXPECT_TRUE(sendEnabled());

    // Sending: changes on the way neither restart the bar nor bring the strip in again.
    host.tickets().setLatency(platform::milliseconds(500));
    tapSend();
    ASSERT_EQ(form->state().sending, Sending::sending);
    queue_testing::pass(time, platform::milliseconds(200));
    const double filled = form->progressBar()->progressView()->frame().width();
    const auto barState = form->progressBar()->stateMachine()->state();
    ASSERT_NE(barState, ProgressState::idle);
    const auto statusFrame = form->toastView()->frame();
    Actions::AttachmentButtonStateChanged closed;
    closed.isSelected = false;
    sharedStore()->dispatch(closed);
    sharedStore()->dispatch(closed);
    EXPECT_EQ(form->progressBar()->stateMachine()->state(), barState);
    EXPECT_GE(form->progressBar()->progressView()->frame().width(), filled);
    EXPECT_EQ(form->toastView()->frame(), statusFrame);
    EXPECT_EQ(status(), localized(LocalizedKey::requestsCreateRequestSending));
    EXPECT_TRUE(shown("CRVloadingView"));
    ASSERT_TRUE(settled([&] { return form->state().sending == Sending::sent; }));
    queue_testing::pass(time, platform::milliseconds(400));
    EXPECT_EQ(status(), "");
}

TEST_F(CreateRequestScreenTest, AQueueThatDrainsWithoutASendEndsTheEditingOnceAndIsNoFailure) {
    ASSERT_TRUE(open({.requiresName = false, .requiresEmail = false}));
    type("CRVmessageBodyField", "Half a");
    ASSERT_EQ(window->firstResponder(), &input("CRVmessageBodyField"));
    // Work left over from another screen completes: the form counts as sent.
    sharedStore()->dispatch(RequestQueueActions::QueueCompleted{});
    ASSERT_EQ(form->state().sending, Sending::sent);
    EXPECT_EQ(window->firstResponder(), nullptr);
    EXPECT_EQ(status(), "");
    EXPECT_FALSE(shown("CRVloadingView"));
    EXPECT_TRUE(sendEnabled());
    // Typing on goes on: the keyboard stays as the edits change the slice.
    type("CRVmessageBodyField", " thought");
    EXPECT_EQ(window->firstResponder(), &input("CRVmessageBodyField"));
    EXPECT_EQ(input("CRVmessageBodyField").text(), "Half a thought");
    EXPECT_EQ(status(), "");
}

TEST_F(CreateRequestScreenTest, AttachmentsLiveInTheInputFieldsSliceAndTheAccountsLimitThereRefusesLargerOnes) {
    ASSERT_TRUE(open({.maxAttachmentSize = 100,
                      .preAttached = {RequestAttachment("fits.txt", std::string(100, 'a'), FileType::txt),
                                      RequestAttachment("big.txt", std::string(101, 'a'), FileType::txt)}}));
    // Pre-attached files reach the input field's slice with the limit; one of exactly the limit is kept.
    ASSERT_EQ(form->attachmentCollectionView()->state().attachments.size(), 1u);
    const std::string preAttachedId = attachmentIds()[0];
    EXPECT_EQ(storeAttachmentIds(), attachmentIds());

    std::vector<std::int64_t> tooBig;
    std::vector<std::string> removedInStore;
    auto actions = sharedStore()->addActionListener([&](const tivra::Action& action) {
        if (const auto* big = tivra::actionAs<Actions::AttachmentTooBig>(action)) tooBig.push_back(big->maxSize);
        if (const auto* removed = tivra::actionAs<Actions::AttachmentRemoved>(action))
            removedInStore.push_back(removed->identifier);
    });
    std::vector<std::string> removed;
    form->imageRemoved = [&](const std::string& identifier) { removed.push_back(identifier); };

    type("CRVmessageBodyField", "See attached");
    // The attach button opens the picker and lights up while it is open.
    uikit::tap(*form->attachButton());
    EXPECT_TRUE(picker->shown);
    EXPECT_EQ(form->state().attachmentButtonState, AttachmentButtonState::selected);
    EXPECT_EQ(form->attachButton()->tintColor(), form->state().primaryColor);

    picker->pick(textFile("exact", 100));
    picker->pick(textFile("over", 101));
    EXPECT_EQ(attachmentIds(), (std::vector<std::string>{preAttachedId, "exact-id"}));
    EXPECT_EQ(storeAttachmentIds(), attachmentIds());
    // Refused by the store's middleware, which the picker hears of through `imageRemoved`.
    EXPECT_EQ(tooBig, std::vector<std::int64_t>{100});
    EXPECT_EQ(removed, std::vector<std::string>{"over-id"});
    EXPECT_EQ(status(), localized(LocalizedKey::requestsCreateRequestAttachmentFileTooBig));
    EXPECT_TRUE(log.contains(platform::LogLevel::debug, "Attachment too large"));
    EXPECT_TRUE(shown("CRVattachment_exact-id"));
    queue_testing::pass(time, platform::seconds(3.5));
    EXPECT_FALSE(shown("CRVcreateRequestStatusView"));

    // The limit is the account's, as the store holds it, not the one the form was made with.
    Actions::SettingsFetched smaller;
    smaller.isAttachmentsEnabled = true;
    smaller.maxAttachmentSize = 50;
    sharedStore()->dispatch(smaller);
    picker->pick(textFile("sixty", 60));
    EXPECT_EQ(tooBig, (std::vector<std::int64_t>{100, 50}));
    EXPECT_EQ(attachmentIds(), (std::vector<std::string>{preAttachedId, "exact-id"}));

    // What others add to the slice shows in the strip as well.
    Actions::AttachmentAdded added;
    added.viewModel = textFile("pasted", 10);
    sharedStore()->dispatch(added);
    EXPECT_EQ(attachmentIds(), (std::vector<std::string>{preAttachedId, "exact-id", "pasted-id"}));

    // A second tap closes the picker and gives the keyboard back to the description.
    uikit::tap(*form->attachButton());
    EXPECT_FALSE(picker->shown);
    EXPECT_EQ(form->state().attachmentButtonState, AttachmentButtonState::normal);
    EXPECT_EQ(window->firstResponder(), &input("CRVmessageBodyField"));

    // Removing a chip goes through the store, which tells whoever listens.
    removed.clear();
    removedInStore.clear();
    auto* chip = uikit::findByIdentifier(*window, "CRVattachment_exact-id");
    ASSERT_NE(chip, nullptr);
    uikit::tap(*uikit::findByIdentifier(*chip, "CRVremoveAttachmentButton"));
    EXPECT_EQ(removedInStore, std::vector<std::string>{"exact-id"});
    EXPECT_EQ(removed, std::vector<std::string>{"exact-id"});
    EXPECT_EQ(attachmentIds(), (std::vector<std::string>{preAttachedId, "pasted-id"}));
    EXPECT_EQ(storeAttachmentIds(), attachmentIds());
    EXPECT_EQ(uikit::findByIdentifier(*window, "CRVattachment_exact-id"), nullptr);
    actions.removeListener();
}

TEST_F(CreateRequestScreenTest, TheStoresBecomeFirstResponderGivesTheKeyboardBackToTheFieldThatHadIt) {
    ASSERT_TRUE(open());
    type("CRVemailField", "ann@");
    ASSERT_EQ(window->firstResponder(), &input("CRVemailField"));
    uikit::tap(*form->attachButton());
    ASSERT_TRUE(picker->shown);
    input("CRVemailField").resignFirstResponder();
    ASSERT_EQ(window->firstResponder(), nullptr);
    sharedStore()->dispatch(Actions::BecomeFirstResponder{});
    EXPECT_EQ(window->firstResponder(), &input("CRVemailField"));
}

TEST_F(CreateRequestScreenTest, ItsViewsTappedAfterTheFormWentDoNothing) {
    ASSERT_TRUE(open());
    // A view that a parent still holds, as one leaving in an animation is held.
    const auto view = form->view();
    const std::vector<uikit::View*> tapped{&input("CRVnameField"), &input("CRVmessageBodyField"),
                                           form->attachButton().get(), form->logoView().get()};
    const std::weak_ptr<CreateRequestController> gone = form;
    navigation->setViewControllers({std::make_shared<uikit::ViewController>()}, false);
    form.reset();
    ASSERT_TRUE(gone.expired());
    window->addSubview(view);
    for (auto* target : tapped) uikit::tap(*target);
    EXPECT_FALSE(picker->shown);
}

TEST_F(CreateRequestScreenTest, AttachmentsOffAtTheAccountDropPreAttachedFilesWithTheErrorLog) {
    const std::string disabled = "File attachments are disabled at account level, unabled to pre-attach files to request";
    ASSERT_TRUE(open({.attachmentsEnabled = false, .preAttached = {RequestAttachment("a.txt", "a", FileType::txt)}}));
    EXPECT_TRUE(form->attachmentCollectionView()->state().attachments.empty());
    EXPECT_TRUE(storeAttachmentIds().empty());
    EXPECT_FALSE(shown("CRVattachButton"));
    EXPECT_EQ(log.count(platform::LogLevel::error, disabled), 1u);

    // Off at the account, the form says so even with nothing to pre-attach.
    ASSERT_TRUE(reopen({.attachmentsEnabled = false}));
    EXPECT_EQ(log.count(platform::LogLevel::error, disabled), 2u);
    // On, it is quiet.
    ASSERT_TRUE(reopen());
    EXPECT_EQ(log.count(platform::LogLevel::error, disabled), 2u);
}

TEST_F(CreateRequestScreenTest, LeavingWithUnsavedEditsAsksFirstAndWithoutEditsLeavesAtOnce) {
    ASSERT_TRUE(open());
    auto* back = barButton("CRVbackButton");
    ASSERT_NE(back, nullptr);
    type("CRVnameField", "Ann");
    ASSERT_TRUE(form->hasUnsavedEdits());
    uikit::tap(*barButton("CRVbackButton"));
    auto alert = std::dynamic_pointer_cast<uikit::AlertController>(form->presentedViewController());
    ASSERT_TRUE(alert);
    EXPECT_EQ(alert->title(), localized(LocalizedKey::requestsCreateRequestInputUnsentTitle));
    EXPECT_EQ(alert->message(), localized(LocalizedKey::requestsCreateRequestInputUnsentBody));
    ASSERT_EQ(alert->actions().size(), 2u);
    EXPECT_EQ(alert->actions()[0].title, localized(LocalizedKey::requestsCreateRequestFailedDelete));
    EXPECT_EQ(alert->actions()[1].title, localized(LocalizedKey::requestsLeftBarButtonTitleCancel));

    // Cancel stays, with the text.
    uikit::tap(*uikit::findByIdentifier(*alert->view(), localized(LocalizedKey::requestsLeftBarButtonTitleCancel)));
    queue_testing::pass(time, platform::seconds(1));
    EXPECT_EQ(navigation->topViewController(), form.get());
    EXPECT_EQ(input("CRVnameField").text(), "Ann");

    // Deleting the text leaves no edits: the way out is open without a question.
    for (int i = 0; i < 3; ++i) input("CRVnameField").deleteBackward();
    EXPECT_FALSE(form->hasUnsavedEdits());
    uikit::tap(*barButton("CRVbackButton"));
    EXPECT_EQ(form->presentedViewController(), nullptr);
    EXPECT_EQ(navigation->topViewController(), rootScreen.get());
}

TEST_F(CreateRequestScreenTest, DiscardingOnAModalFormRunsItsOwnCancelButton) {
    auto configuration = std::make_shared<RequestUiConfiguration>();
    form = CreateRequestController::make(false, false, false, "", true, 100, mirrowset::Configurations({configuration}));
    window = std::make_shared<uikit::Window>();
    window->makeKeyAndVisible();
    window->setRootViewController(rootScreen);
    auto modal = std::make_shared<uikit::NavigationController>(form);
    modal->setModalPresentationStyle(2);
    rootScreen->presentViewController(modal, false);
    relayout();
    uikit::typeText(*uikit::findByIdentifier<uikit::TextInput>(*window, "CRVmessageBodyField"), "Draft");
    // The bar's buttons are made anew as the send button changes: found after typing.
    auto* cancel = uikit::findByIdentifier<uikit::Button>(*modal->navigationBar(), "CRVcancelButton");
    ASSERT_NE(cancel, nullptr);
    uikit::tap(*cancel);
    auto alert = std::dynamic_pointer_cast<uikit::AlertController>(form->presentedViewController());
    ASSERT_TRUE(alert);
    uikit::tap(*uikit::findByIdentifier(*alert->view(), localized(LocalizedKey::requestsCreateRequestFailedDelete)));
    queue_testing::pass(time, platform::seconds(1));
    EXPECT_EQ(rootScreen->presentedViewController(), nullptr);
}

TEST_F(CreateRequestScreenTest, WithoutARequestConfigurationThereIsNoForm) {
    EXPECT_EQ(CreateRequestController::make(true, true, true, "", true, 100, mirrowset::Configurations()), nullptr);
    EXPECT_TRUE(log.contains(platform::LogLevel::debug, "No configuration found, please use RequestUi to present"));
}

// A second form opened while the first still sends, pushed over it: the first keeps its send and
// hears its outcome, though the second took the store's slice and the queue moved on; the second
// starts unsent, takes nothing of the first's outcome, and its own failure is its alone.
TEST_F(CreateRequestScreenTest, TwoFormsOpenAtOnceEachFollowOnlyTheSendItStarted) {
    host.tickets().setLatency(platform::milliseconds(400));
    ASSERT_TRUE(open({.requiresName = false, .requiresEmail = false}));
    const auto first = form;
    type("CRVmessageBodyField", "From the first form");
    tapSend();
    ASSERT_EQ(first->state().sending, Sending::sending);

    const auto second = pushSecondForm();
    ASSERT_TRUE(second);
    EXPECT_EQ(second->state().sending, Sending::unsent);
    EXPECT_EQ(first->state().sending, Sending::sending) << "the second form's start is not the first's";
    EXPECT_TRUE(first->state().hasEdits);

    const auto delivered = [](const std::shared_ptr<CreateRequestController>& screen) {
        return screen->state().sending == Sending::success || screen->state().sending == Sending::sent;
    };
    ASSERT_TRUE(settled([&] { return delivered(first); }));
    EXPECT_NE(second->state().sending, Sending::success) << "the first form's outcome is not the second's";
    EXPECT_FALSE(shown("CRVloadingView"));
    ASSERT_EQ(host.tickets().requests().size(), 1u);

    uikit::typeText(*second->descriptionTextview()->input(), "From the second form");
    host.tickets().failNext(1);
    second->send();
    EXPECT_EQ(second->state().sending, Sending::sending);
    ASSERT_TRUE(settled([&] { return second->state().sending == Sending::failure; }));
    EXPECT_TRUE(delivered(first)) << "the second form's failure is not the first's";
    second->send();
    ASSERT_TRUE(settled([&] { return second->state().sending == Sending::sent; }));
    const auto requests = host.tickets().requests();
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0].requestDescription, "From the first form");
    EXPECT_EQ(requests[1].requestDescription, "From the second form");
}

// A form covered by another that sent and went: shown again, it makes a ticket of its own with its
// own file, instead of a comment on the ticket the other form made.
TEST_F(CreateRequestScreenTest, AFormShownAgainAfterAnotherFormsTicketMakesItsOwnWithItsFiles) {
    ASSERT_TRUE(open({.requiresName = false, .requiresEmail = false}));
    picker->pick(textFile("notes", 10));
    type("CRVmessageBodyField", "From the first form");

    const auto second = pushSecondForm();
    ASSERT_TRUE(second);
    uikit::typeText(*second->descriptionTextview()->input(), "From the second form");
    second->send();
    ASSERT_TRUE(settled([&] { return second->state().sending == Sending::sent; }));
    navigation->popViewController(false);
    relayout();
    EXPECT_EQ(attachmentIds(), std::vector<std::string>{"notes-id"}) << "the covered form keeps its file";

    tapSend();
    ASSERT_TRUE(settled([&] { return form->state().sending == Sending::sent; }));
    const auto requests = host.tickets().requests();
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[1].requestDescription, "From the first form");
    ASSERT_EQ(host.tickets().comments(requests[0].requestId).size(), 1u);
    const auto comments = host.tickets().comments(requests[1].requestId);
    ASSERT_EQ(comments.size(), 1u);
    ASSERT_EQ(comments[0].attachments.size(), 1u);
    EXPECT_EQ(comments[0].attachments[0].filename, "notes.txt");
}

TEST_F(CreateRequestScreenTest, ANewFormStartsAfreshAfterAFinishedOneAndMakesANewTicket) {
    ASSERT_TRUE(open({.requiresName = false, .requiresEmail = false}));
    type("CRVmessageBodyField", "First request");
    tapSend();
    ASSERT_TRUE(settled([&] { return form->state().sending == Sending::sent; }));
    queue_testing::pass(time, platform::seconds(2.5));
    ASSERT_TRUE(reopen({.requiresName = false, .requiresEmail = false}));
    EXPECT_EQ(form->state().sending, Sending::unsent);
    EXPECT_FALSE(form->state().hasEdits);
    const auto* table = sharedStore()->state().value<RequestTableState>(tivra::stateKeyOf<RequestTableState>());
    ASSERT_NE(table, nullptr);
    EXPECT_TRUE(table->tableData.empty());
    type("CRVmessageBodyField", "Second request");
    tapSend();
    ASSERT_TRUE(settled([&] { return form->state().sending == Sending::sent; }));
    const auto requests = host.tickets().requests();
    ASSERT_EQ(requests.size(), 2u);  // the queue forgot the first ticket: no comment on it
}
