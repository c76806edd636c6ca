#include "belvakit/Request/createrequest/create_request_controller.hpp"

#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/conversation/input_field_actions.hpp"
#include "belvakit/Request/conversation/input_field_state.hpp"
#include "belvakit/Request/conversation/request_table_state.hpp"
#include "belvakit/Request/createrequest/create_request_actions.hpp"
#include "belvakit/Request/createrequest/create_request_reducer.hpp"
#include "belvakit/Request/queue/request_queue_actions.hpp"
#include "belvakit/entry/localized_strings.hpp"
#include "belvakit/entry/shared_store.hpp"
#include "belvakit/toolkit/avatar_views.hpp"
#include "belvakit/toolkit/progress_state_machine.hpp"
#include "belvakit/toolkit/theme.hpp"
#include "corvane/core_logger.hpp"
#include "platform/main_queue.hpp"
#include "platform/trimming.hpp"
#include "platform/uuid.hpp"
#include "uikit/animation.hpp"
#include "uikit/window.hpp"

#include <algorithm>
#include <atomic>
#include <cmath>

namespace belvakit {

namespace {

using Sending = CreateRequestState::Sending;

constexpr double statusHeight = 36;
constexpr double bottomBarHeight = 44;
constexpr double attachButtonSize = 44;
constexpr double statusAnimation = 0.3;
constexpr double dismissDelay = 2.0;
constexpr double tooBigDuration = 3.0;

const platform::Color sendingColor = platform::Color::fromRGB(84, 94, 108);
const platform::Color failureColor = platform::Color::fromRGB(214, 48, 49);
// The attach button while the picker is closed.
constexpr platform::Color idleAttachTint{0.0, 0.0, 0.0, 0.3};

// A paper clip, drawn as an alpha mask for the tint: a long loop with a shorter one inside.
platform::ImagePtr paperClipImage() {
    constexpr int size = 44;
    auto image = std::const_pointer_cast<platform::Image>(platform::makeImage(size, size));
    struct Point {
        double x, y;
    };
    std::vector<Point> path;
    // A U whose arms go down to `bottom`, of radius r around (cx, cy), open at the top.
    const auto loop = [&path](double cx, double top, double bottom, double r, bool upward) {
        constexpr int steps = 24;
        if (upward) {
            for (int i = 0; i <= steps; ++i) {
                const double a = M_PI + M_PI * i / steps;  // the upper arc, left to right
                path.push_back({cx + r * std::cos(a), top + r * std::sin(a)});
            }
            path.push_back({cx + r, bottom});
        } else {
            path.push_back({cx - r, top});
            for (int i = 0; i <= steps; ++i) {
                const double a = M_PI - M_PI * i / steps;  // the lower arc, left to right
                path.push_back({cx + r * std::cos(a), bottom + r * std::sin(a)});
            }
        }
    };
    // Outer loop: down the left, round the bottom, up the right, round the top, and the inner arm down.
    path.push_back({13, 12});
    loop(19, 12, 32, 6, false);                 // left arm down and round to the right arm
    path.push_back({25, 10});
    loop(20.5, 10, 10, 4.5, true);              // over the top, back to the left
    path.push_back({16, 28});
    loop(19.5, 28, 28, 3.5, false);             // the inner loop's bottom
    path.push_back({23, 14});
    const auto distance = [](Point p, Point a, Point b) {
        const double dx = b.x - a.x, dy = b.y - a.y;
        const double length = dx * dx + dy * dy;
        double t = length > 0 ? ((p.x - a.x) * dx + (p.y - a.y) * dy) / length : 0;
        t = std::clamp(t, 0.0, 1.0);
        const double ex = a.x + t * dx - p.x, ey = a.y + t * dy - p.y;
        return std::sqrt(ex * ex + ey * ey);
    };
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            const Point p{x + 0.5, y + 0.5};
            double nearest = 1e9;
            for (std::size_t i = 1; i < path.size(); ++i) nearest = std::min(nearest, distance(p, path[i - 1], path[i]));
            const double coverage = std::clamp(2.0 - nearest, 0.0, 1.0);  // a stroke 3 px wide, softened
            auto* pixel = &image->rgba[static_cast<std::size_t>((y * size + x) * 4)];
            pixel[0] = pixel[1] = pixel[2] = 0;
            pixel[3] = static_cast<std::uint8_t>(std::lround(coverage * 255));
        }
    return image;
}

std::shared_ptr<uikit::View> separator() {
    auto line = uikit::make<uikit::View>();
    line->setBackgroundColor(CRVLegacyTheme::currentAppliedTheme()->separatorColor);
    line->setUserInteractionEnabled(false);
    return line;
}

std::string trimmed(const std::optional<std::string>& text) {
    return text ? platform::trimmingWhitespaceAndNewlines(*text) : std::string();
}

std::uint64_t newFormId() {
    static std::atomic<std::uint64_t> last{0};
    return ++last;
}

} // namespace

std::shared_ptr<CreateRequestController> CreateRequestController::make(
    bool requiresName, bool requiresEmail, bool showReferrerLogo, std::string referrerUrl, bool attachmentsEnabled,
    std::int64_t maxAttachmentSize, const mirrowset::Configurations& configs, std::shared_ptr<ProgressBar> progressBar) {
    const auto configuration = configs.configuration<RequestUiConfiguration>();
    if (!configuration) {
        corvane::CoreLogger::debug("No configuration found, please use RequestUi to present");
        return nullptr;
    }
    auto form = std::make_shared<CreateRequestController>(Tag{}, attachmentsEnabled, maxAttachmentSize,
                                                          std::move(progressBar));
    form->buildForm(requiresName, requiresEmail);
    form->subscribe();
    form->configuration_ = *configuration;
    form->claiming_ = true;

    const auto& store = sharedStore();
    CreateRequestActions::InitializeCreateRequest initialize;
    initialize.requiresEmail = requiresEmail;
    initialize.requiresName = requiresName;
    initialize.showCorvnaeLogo = showReferrerLogo;
    initialize.referrerUrl = std::move(referrerUrl);
    initialize.formId = form->formId_;
    store->dispatch(initialize);
    store->dispatch(Actions::InitializeRequestControllerState{});
    form->preAttach(*configuration);
    store->dispatch(RequestQueueActions::ResetQueue{});
    RequestQueueActions::SetConfig config;
    config.config = *configuration;
    store->dispatch(config);
    form->claiming_ = false;
    form->ownsSlices_ = true;
    return form;
}

CreateRequestController::CreateRequestController(Tag, bool attachmentsEnabled, std::int64_t maxAttachmentSize,
                                                 std::shared_ptr<ProgressBar> progressBar)
    : formId_(newFormId()), state_(initialCreateRequestState()), attachmentsEnabled_(attachmentsEnabled),
      maxAttachmentSize_(maxAttachmentSize), progressBar_(std::move(progressBar)) {
    if (!progressBar_) {
        progressBar_ = ProgressBar::make();
        ownsProgressBar_ = true;
    }
    setTitle(localized(LocalizedKey::requestsCreateRequestTitle));
}

CreateRequestController::~CreateRequestController() { finishTimer_.cancel(); }

std::shared_ptr<CreateRequestController> CreateRequestController::self() {
    return std::static_pointer_cast<CreateRequestController>(shared_from_this());
}

std::shared_ptr<uikit::View> CreateRequestController::logoView() const { return logoView_; }

void CreateRequestController::buildForm(bool requiresName, bool requiresEmail) {
    const auto theme = CRVLegacyTheme::currentAppliedTheme();
    inputFieldValidator_ = CreateRequestInputFieldsValidator::make();
    inputFieldValidator_->formId = formId_;
    inputFieldValidator_->setDelegate(std::static_pointer_cast<CreateRequestInputFieldsValidatorDelegate>(self()));
    // The views may outlive the form (a parent holds them while it leaves): they hold it weakly.
    const std::weak_ptr<CreateRequestController> weak = self();
    const auto began = [weak](uikit::TextInput& input) {
        if (auto form = weak.lock()) form->inputBegan(input);
    };

    // A field the form does not ask for is never made: the validator then does not require it.
    if (requiresName) {
        auto field = std::make_shared<ValidatableTextField>();
        field->setPlaceholder(localized(LocalizedKey::requestsCreateRequestNamePlaceholder));
        field->setHasWindow(true);
        nameField_ = std::make_shared<FormTextField>(field);
        nameField_->input()->setAccessibilityIdentifier("CRVnameField");
        nameField_->didBeginEditing = began;
        inputFieldValidator_->setName(field);
    }
    if (requiresEmail) {
        auto field = std::make_shared<ValidatableTextField>();
        field->setPlaceholder(localized(LocalizedKey::requestsCreateRequestEmailfieldPlaceholder));
        field->setHasWindow(true);
        emailField_ = std::make_shared<FormTextField>(field);
        emailField_->input()->setAccessibilityIdentifier("CRVemailField");
        emailField_->input()->keyboardType = 7;  // the platform's email keyboard
        emailField_->errorImageView()->setAccessibilityIdentifier("CRVemailErrorImage");
        emailField_->didBeginEditing = began;
        inputFieldValidator_->setEmail(field);
    }
    auto description = std::make_shared<PlaceHolderTextView>();
    description->setPlaceholderText(localized(LocalizedKey::requestsCreateRequestDescriptionPlaceholder));
    description->setHasWindow(true);
    descriptionTextview_ = std::make_shared<FormTextView>(description);
    descriptionTextview_->didBeginEditing = began;
    inputFieldValidator_->setDescriptionView(description);

    attachmentCollectionView_ = uikit::make<InputAttachmentCollectionView>();
    attachmentCollectionView_->removeTapped = [weak](const std::string& identifier) {
        if (auto form = weak.lock()) form->attachmentRemoved(identifier);
    };

    toastView_ = uikit::make<uikit::View>();
    toastView_->setAccessibilityIdentifier("CRVcreateRequestStatusView");
    toastView_->setHidden(true);
    toastLabel_ = uikit::make<uikit::Label>();
    toastLabel_->setAccessibilityIdentifier("CRVcreateRequestStatusLabel");
    toastLabel_->setFont(theme->boldMetaTextFont);
    toastLabel_->setTextColor(platform::Color::white());
    toastLabel_->setTextAlignment(uikit::TextAlignment::center);
    toastView_->addSubview(toastLabel_);

    attachButton_ = uikit::make<uikit::Button>(uikit::ButtonType::custom);
    attachButton_->setAccessibilityIdentifier("CRVattachButton");
    attachButton_->setAccessibilityLabel(localized(LocalizedKey::requestsConversationsAddAttachmentsAccessibility));
    auto clip = uikit::make<uikit::ImageView>(paperClipImage());
    clip->templateRendering = true;
    clip->contentMode = uikit::ContentMode::scaleAspectFit;
    clip->setFrame({11, 11, 22, 22});
    attachButton_->addSubview(clip);
    attachButton_->addTarget(uikit::ControlEvent::touchUpInside, [weak] {
        if (auto form = weak.lock()) form->attachPress();
    });

    logoView_ = std::make_shared<CorvaneLogoView>();  // no link of its own: the tap goes through the store
    logoView_->addTapAction([weak] {
        if (auto form = weak.lock()) form->corvaneButtonPressed();
    });

    bottomBar_ = uikit::make<uikit::View>();
    bottomBar_->addSubview(attachButton_);
    bottomBar_->addSubview(logoView_);

    loadingView_ = uikit::make<uikit::View>();
    loadingView_->setAccessibilityIdentifier("CRVloadingView");
    loadingView_->setBackgroundColor(platform::Color{1, 1, 1, 0.5});
    loadingView_->addTapAction([] {});  // a shield: taps stop here

    auto provider = std::make_shared<BarButtonProvider>();
    provider->rightButtonDetails = BarButtonDetails{localized(LocalizedKey::requestsCreateRequestSubmitButton),
                                                    BarButtonStyle::done,
                                                    [weakSelf = std::weak_ptr<CreateRequestController>(self())] {
                                                        if (auto form = weakSelf.lock()) form->send();
                                                    },
                                                    "CRVsendButton"};
    barButtonCreation_ = provider;
    sendButtonItem_ = barButtonCreation_->rightBarButtonItem();
    sendButtonItem_->enabled = false;  // nothing typed yet
    navigationItem().rightBarButtonItem = sendButtonItem_;
}

void CreateRequestController::subscribe() {
    const auto& store = sharedStore();
    const std::weak_ptr<CreateRequestController> weakSelf = self();
    store->addListener<InputFieldState>([weakSelf](const InputFieldState& state) {
        // Another screen's input is not this form's: its files stay as they are meanwhile.
        if (auto form = weakSelf.lock(); form && (form->ownsSlices_ || form->claiming_))
            form->setAttachments(state.attachments());
    }).linkLifeCycleTo(*this);
    store->addActionListener([weakSelf](const tivra::Action& action) {
        auto form = weakSelf.lock();
        if (!form) return;
        form->actionHeard(action);
        if (tivra::actionAs<Actions::InitializeRequestControllerState>(action) && !form->claiming_)
            form->ownsSlices_ = false;  // another screen begins its conversation in the shared slices
        if (const auto* removed = tivra::actionAs<Actions::AttachmentRemoved>(action)) {
            if (form->imageRemoved) form->imageRemoved(removed->identifier);
        } else if (tivra::actionAs<Actions::BecomeFirstResponder>(action)) {
            if (auto responder = form->lastResponder_.lock()) responder->becomeFirstResponder();
        } else if (tivra::actionAs<Actions::AttachmentTooBig>(action)) {
            form->showTooBig();
        }
    }).linkLifeCycleTo(*this);
}

void CreateRequestController::actionHeard(const tivra::Action& action) {
    // The store's slice describes the form opened last, and so does not serve a form opened
    // before it that still waits on its send: each form reduces its own copy, from its own
    // beginning, sends and edits, and the outcome of its own send.
    if (const auto* initialize = tivra::actionAs<CreateRequestActions::InitializeCreateRequest>(action);
        initialize && initialize->formId != formId_)
        return;
    if (tivra::actionAs<CreateRequestActions::ReferOpen>(action)) return;  // the store's reducer opens the link
    static const CreateRequestReducer reducer;
    if (auto next = reducer.reduce(state_, action)) stateChanged(*next);
}

// What the user does on a form whose shared slices another screen took meanwhile takes them back,
// as a new form does: the conversation and input start afresh, with this form's files, and the
// queue forgets the other screen's ticket, so the form's send makes a ticket of its own.
void CreateRequestController::claimSharedSlices() {
    if (ownsSlices_ || !configuration_) return;
    const auto attachments = attachmentCollectionView_->state().attachments;
    const auto& store = sharedStore();
    claiming_ = true;
    store->dispatch(Actions::InitializeRequestControllerState{});
    // The account's limit, which the fresh slice lacks, checks the files going back in.
    if (const auto* table = store->state().valueOfType<RequestTableState>()) {
        RequestTableState limited = *table;
        limited.maxAttachmentSize = maxAttachmentSize_;
        store->reset(std::move(limited));
    }
    for (const auto& attachment : attachments) {
        Actions::AttachmentAdded added;
        added.viewModel = std::const_pointer_cast<InputAttachmentViewState>(attachment);
        store->dispatch(added);
    }
    store->dispatch(RequestQueueActions::ResetQueue{});
    RequestQueueActions::SetConfig config;
    config.config = *configuration_;
    store->dispatch(config);
    claiming_ = false;
    ownsSlices_ = true;
}

void CreateRequestController::preAttach(const RequestUiConfiguration& configuration) {
    if (!attachmentsEnabled_) {
        corvane::CoreLogger::error(
            "File attachments are disabled at account level, unabled to pre-attach files to request");
        return;
    }
    Actions::InitialFileAttachmentsAdded initial;
    initial.fileAttachments = configuration.fileAttachments;
    initial.maxFileAttachmentSize = maxAttachmentSize_;
    sharedStore()->dispatch(initial);
}

void CreateRequestController::setImagePickerPresenter(std::shared_ptr<ImagePickerPresenter> presenter) {
    imagePickerPresenter_ = std::move(presenter);
    if (!imagePickerPresenter_) return;
    const std::weak_ptr<CreateRequestController> weakSelf = self();
    imagePickerPresenter_->attachmentChosen = [weakSelf](InputAttachmentViewStatePtr attachment) {
        if (auto form = weakSelf.lock()) form->attachmentAdded(std::move(attachment));
    };
    imagePickerPresenter_->visibilityChanged = [](bool shown) {
        Actions::AttachmentButtonStateChanged changed;
        changed.isSelected = shown;
        sharedStore()->dispatch(changed);
    };
}

void CreateRequestController::viewDidLoad() {
    CRVUIViewController::viewDidLoad();
    const auto theme = CRVLegacyTheme::currentAppliedTheme();
    view()->setBackgroundColor(theme->primaryBackgroundColor);

    scrollView_ = uikit::make<uikit::ScrollView>();
    scrollView_->setAccessibilityIdentifier("CRVcreateRequestScrollView");
    formView_ = uikit::make<uikit::View>();
    scrollView_->addSubview(formView_);
    for (const auto& field : {nameField_, emailField_}) {
        if (!field) continue;
        formView_->addSubview(field);
        separators_.push_back(separator());
        formView_->addSubview(separators_.back());
    }
    formView_->addSubview(descriptionTextview_);
    formView_->addSubview(attachmentCollectionView_);

    contentView()->addSubview(scrollView_);
    contentView()->addSubview(bottomBar_);
    bottomBar_->addSubview(separator());
    contentView()->addSubview(loadingView_);
    contentView()->addSubview(toastView_);  // over the shield, to stay readable
    loadingView_->setHidden(!loadingShown_);

    if (ownsProgressBar_ && !progressBar_->superview()) progressBar_->setContainerView(view());
    updateAttachButton();
}

void CreateRequestController::viewWillAppear(bool animated) {
    CRVUIViewController::viewWillAppear(animated);
    registerForKeyboardNotifications();
    // Inside a container the container guards the way out.
    if (childDelegate.lock()) return;
    if (!discardEditsController_) {
        discardEditsController_ = DiscardEditsController::make(shared_from_this());
        discardEditsController_->editSource = std::static_pointer_cast<DiscardEditsControllerEditSource>(self());
    }
    discardEditsController_->prepare();
}

void CreateRequestController::viewDidLayoutSubviews() {
    CRVUIViewController::viewDidLayoutSubviews();
    layoutForm();
}

void CreateRequestController::layoutForm() {
    if (!isViewLoaded() || !scrollView_) return;
    const auto area = contentView()->bounds();
    // Sideways, the form keeps clear of the rounded corners and the sensor housing.
    const auto insets = safeAreaInsets();
    const double left = insets.left;
    const double width = std::max(0.0, area.width() - insets.left - insets.right);

    if (ownsProgressBar_ && progressBar_->superview() == view().get())
        progressBar_->setFrame({0, topViewOffset(), view()->bounds().width(), ProgressBar::defaultHeight});

    const bool barShown = !attachButton_->isHidden() || !logoView_->isHidden();
    const double barHeight = barShown ? bottomBarHeight : 0;
    bottomBar_->setHidden(!barShown);
    bottomBar_->setFrame({0, area.height() - barHeight, area.width(), barHeight});
    if (!bottomBar_->subviews().empty()) bottomBar_->subviews().back()->setFrame({0, 0, area.width(), 1.0 / 2});
    attachButton_->setFrame({left + 4, 0, attachButtonSize, attachButtonSize});
    const auto logo = logoView_->sizeThatFits({width, bottomBarHeight});
    logoView_->setFrame(
        {left + width - logo.width - 8, std::floor((bottomBarHeight - logo.height) / 2), logo.width, logo.height});

    const double top = statusShown_ ? statusHeight : 0;
    toastView_->setFrame({0, top - statusHeight, area.width(), statusHeight});
    toastLabel_->setFrame({left + 12, 0, std::max(0.0, width - 24), statusHeight});
    scrollView_->setFrame({0, top, area.width(), std::max(0.0, area.height() - barHeight - top)});

    double y = 0;
    std::size_t line = 0;
    for (const auto& field : {nameField_, emailField_}) {
        if (!field) continue;
        const double height = field->sizeThatFits({width, 0}).height;
        field->setFrame({0, y, width, height});
        y += height;
        separators_[line++]->setFrame({16, y, width - 16, 1.0 / 2});
    }
    descriptionTextview_->minimumHeight =
        std::max(120.0, scrollView_->frame().height() - y - attachmentCollectionView_->sizeThatFits({width, 0}).height);
    const double descriptionHeight = descriptionTextview_->sizeThatFits({width, 0}).height;
    descriptionTextview_->setFrame({0, y, width, descriptionHeight});
    y += descriptionHeight;
    const double stripHeight = attachmentCollectionView_->sizeThatFits({width, 0}).height;
    attachmentCollectionView_->setHidden(stripHeight == 0);
    attachmentCollectionView_->setFrame({0, y, width, stripHeight});
    y += stripHeight;
    formView_->setFrame({left, 0, width, y});
    scrollView_->setContentSize({area.width(), y});

    loadingView_->setFrame(area);
}

// Gestures.

void CreateRequestController::send() {
    corvane::CoreLogger::verbose("Send pressed");
    const std::weak_ptr<CreateRequestController> weakSelf = self();
    inputFieldValidator_->checkBeforeSend([weakSelf] {
        if (auto form = weakSelf.lock()) form->dispatchSend();
    });
}

void CreateRequestController::dispatchSend() {
    // Sent again after its ticket was made, as the form leaves: a request of its own, as from a new form.
    if (state_.sending == CreateRequestState::Sending::success || state_.sending == CreateRequestState::Sending::sent)
        ownsSlices_ = false;
    claimSharedSlices();
    CreateRequestActions::SendPressed action;
    action.formId = formId_;
    action.id = platform::uuidString();
    action.description = trimmed(descriptionTextview_->textView()->text());
    action.email = emailField_ ? trimmed(emailField_->field()->text()) : std::string();
    action.name = nameField_ ? nameField_->field()->text().value_or("") : std::string();
    for (const auto& attachment : attachmentCollectionView_->state().attachments)
        action.attachments.push_back(std::const_pointer_cast<InputAttachmentViewState>(attachment));
    sharedStore()->dispatch(action);
}

void CreateRequestController::attachPress() {
    corvane::CoreLogger::verbose("Attach pressed");
    if (!imagePickerPresenter_) return;
    if (imagePickerPresenter_->isPickerShown()) {
        corvane::CoreLogger::verbose("Hiding ImagePicker");
        imagePickerPresenter_->hidePicker();
        if (auto responder = lastResponder_.lock()) responder->becomeFirstResponder();
        return;
    }
    lastResponder_.reset();
    for (const auto& input : std::vector<std::shared_ptr<uikit::TextInput>>
         {nameField_ ? std::static_pointer_cast<uikit::TextInput>(nameField_->input()) : nullptr,
          emailField_ ? std::static_pointer_cast<uikit::TextInput>(emailField_->input()) : nullptr,
          std::static_pointer_cast<uikit::TextInput>(descriptionTextview_->input())}) {
        if (input && input->isFirstResponder()) {
            lastResponder_ = input;
            break;
        }
    }
    imagePickerPresenter_->showPicker();
}

void CreateRequestController::corvaneButtonPressed() { sharedStore()->dispatch(CreateRequestActions::ReferOpen{}); }

void CreateRequestController::attachmentAdded(InputAttachmentViewStatePtr attachment) {
    if (!attachment) return;
    claimSharedSlices();
    // The store's middleware refuses one over the account's limit, and says so.
    Actions::AttachmentAdded added;
    added.viewModel = attachment;
    const auto& store = sharedStore();
    store->dispatch(added);
    const auto* input = store->state().valueOfType<InputFieldState>();
    if (!input || std::find(input->attachments().begin(), input->attachments().end(), attachment) == input->attachments().end())
        return;
    CreateRequestActions::Edited edited;
    edited.hasEdits = true;
    edited.formId = formId_;
    store->dispatch(edited);
}

void CreateRequestController::attachmentRemoved(const std::string& identifier) {
    claimSharedSlices();
    Actions::AttachmentRemoved removed;
    removed.identifier = identifier;
    sharedStore()->dispatch(removed);
}

void CreateRequestController::showTooBig() {
    showStatus(localized(LocalizedKey::requestsCreateRequestAttachmentFileTooBig), failureColor);
    const auto shown = statusGeneration_;
    platform::MainQueue::shared().asyncAfter(platform::seconds(tooBigDuration),
                                             [weakSelf = std::weak_ptr<CreateRequestController>(self()), shown] {
                                                 auto form = weakSelf.lock();
                                                 if (form && form->statusGeneration_ == shown) form->hideStatus();
                                             });
}

void CreateRequestController::setAttachments(std::vector<InputAttachmentViewStatePtr> attachments) {
    if (attachments == attachmentCollectionView_->state().attachments) return;
    attachmentCollectionView_->setState({std::move(attachments)});
    if (isViewLoaded()) view()->setNeedsLayout();
}

// What the validator reports.

void CreateRequestController::validationChanged(bool emailValid, bool formValid) {
    if (emailField_) {
        emailField_->field()->setIsViewValid(emailValid);
        emailField_->refresh();
    }
    formValid_ = formValid;
    setSendEnabled(formValid);
}

std::function<void()> CreateRequestController::beginEditingCallback() const {
    // Typing takes the place of the picker.
    return [presenter = std::weak_ptr<ImagePickerPresenter>(imagePickerPresenter_)] {
        if (auto picker = presenter.lock(); picker && picker->isPickerShown()) picker->hidePicker();
    };
}

void CreateRequestController::inputBegan(uikit::TextInput& input) {
    // The kit hands the keyboard on without ending the input that had it.
    if (nameField_ && nameField_->input().get() != &input) nameField_->finishEditing();
    if (emailField_ && emailField_->input().get() != &input) emailField_->finishEditing();
    if (descriptionTextview_->input().get() != &input) descriptionTextview_->finishEditing();
}

// Drawing from the store.

void CreateRequestController::stateChanged(const CreateRequestState& next) {
    const Sending previous = state_.sending;
    state_ = next;
    redraw(next.sending != previous ? std::optional(previous) : std::nullopt);
    if (logoView_) logoView_->setHidden(!state_.showCorvaneLogo);
    if (isViewLoaded()) view()->setNeedsLayout();
}

// Any change of the slice redraws the row of the current send state, so every step there is safe
// to repeat. What must happen once (ending the editing, the bar's start, the scroll, the timer)
// happens on entering the row: typing on a form that stays in one state keeps its keyboard.
void CreateRequestController::redraw(std::optional<Sending> enteredFrom) {
    const bool entered = enteredFrom.has_value();
    switch (state_.sending) {
    case Sending::unsent:
        hideStatus();
        updateAttachButton();
        break;
    case Sending::sending:
        showStatus(localized(LocalizedKey::requestsCreateRequestSending), sendingColor);
        showLoading(true);
        if (entered) {
            endEditing();
            progressBar_->stateMachine()->begin(sharedProgressSteps());
            scrollToEnd();
        }
        updateAttachButton();
        break;
    case Sending::sent:
        hideStatus();
        if (entered) endEditing();
        updateAttachButton();
        break;
    case Sending::success:
        hideStatus();
        progressBar_->stateMachine()->queueCompleted();
        if (entered) {
            endEditing();
            finishTimer_.cancel();
            finishTimer_ = platform::MainQueue::shared().asyncAfter(
                platform::seconds(dismissDelay), [weakSelf = std::weak_ptr<CreateRequestController>(self())] {
                    if (auto form = weakSelf.lock()) form->finishAfterSending();
                });
        }
        break;
    case Sending::failure:
        showStatus(localized(LocalizedKey::requestsCreateRequestErrorRequest), failureColor);
        showLoading(false);
        // On the way in the form is as it was sent; after that its fields decide.
        setSendEnabled(entered || formValid_);
        progressBar_->stateMachine()->queueCompleted();
        updateAttachButton();
        break;
    }
}

void CreateRequestController::finishAfterSending() {
    if (auto container = childDelegate.lock()) {
        container->willDismiss();
    } else if (auto* navigation = navigationController()) {
        // Standing alone, the form leaves the way it came.
        if (navigation->viewControllers().size() > 1 && navigation->topViewController() == this)
            navigation->popViewController(true);
        else
            navigation->dismissViewController(true);
    }
    showLoading(false);
    setSendEnabled(true);
}

void CreateRequestController::updateAttachButton() {
    if (!attachButton_) return;
    attachButton_->setTintColor(state_.attachmentButtonState == AttachmentButtonState::selected ? state_.primaryColor
                                                                                               : idleAttachTint);
    attachButton_->setHidden(state_.attachmentButtonState == AttachmentButtonState::hidden);
}

void CreateRequestController::showStatus(const std::string& text, const platform::Color& color) {
    ++statusGeneration_;
    toastLabel_->setText(text);
    toastView_->setBackgroundColor(color);
    toastView_->setHidden(false);
    if (statusShown_) return;
    statusShown_ = true;
    // From above the form, pushing it down.
    if (isViewLoaded()) uikit::Animation::animate(statusAnimation, [this] { layoutForm(); });
}

void CreateRequestController::hideStatus() {
    if (!statusShown_) return;
    ++statusGeneration_;
    statusShown_ = false;
    if (!isViewLoaded()) {
        toastView_->setHidden(true);
        return;
    }
    const auto shown = statusGeneration_;
    uikit::Animation::animate(statusAnimation, [this] { layoutForm(); },
                              [weakSelf = std::weak_ptr<CreateRequestController>(self()), shown](bool) {
                                  auto form = weakSelf.lock();
                                  if (form && form->statusGeneration_ == shown) form->toastView_->setHidden(true);
                              });
}

void CreateRequestController::showLoading(bool shown) {
    loadingShown_ = shown;
    loadingView_->setHidden(!shown);
    setSendEnabled(shown ? false : formValid_);
}

void CreateRequestController::setSendEnabled(bool enabled) {
    enabled = enabled && !loadingShown_;
    if (sendButtonItem_->enabled == enabled) return;
    sendButtonItem_->enabled = enabled;
    if (auto enabler = navigationItemEnabler.lock()) {
        enabler->setRightBarButtonItemEnabled(enabled);
        return;
    }
    // The bar shows its top screen's item: the form's own, or a container's that took the button.
    if (auto* navigation = navigationController()) navigation->refreshBar();
}

void CreateRequestController::endEditing() {
    if (!isViewLoaded()) return;
    const auto* window = view()->window();
    auto* responder = window ? dynamic_cast<uikit::TextInput*>(window->firstResponder()) : nullptr;
    if (responder && responder->isDescendantOf(*view())) responder->resignFirstResponder();
}

void CreateRequestController::scrollToEnd() {
    if (!scrollView_) return;
    layoutForm();
    const double end = scrollView_->contentSize().height - scrollView_->frame().height();
    scrollView_->setContentOffset({0, std::max(0.0, end)});
}

} // namespace belvakit
