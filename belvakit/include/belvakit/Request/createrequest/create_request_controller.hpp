#pragma once

#include "belvakit/Request/createrequest/bar_buttons.hpp"
#include "belvakit/Request/createrequest/create_request_input_fields_validator.hpp"
#include "belvakit/Request/createrequest/create_request_state.hpp"
#include "belvakit/Request/createrequest/discard_edits_controller.hpp"
#include "belvakit/Request/createrequest/form_inputs.hpp"
#include "belvakit/attachments/input_attachment.hpp"
#include "belvakit/attachments/input_attachment_collection_view.hpp"
#include "belvakit/entry/container_child_delegate.hpp"
#include "belvakit/entry/navigation_item_delegate.hpp"
#include "belvakit/entry/ui_configurations.hpp"
#include "belvakit/toolkit/progress_bar.hpp"
#include "belvakit/toolkit/ui_view_controller.hpp"
#include "mirrowset/configurations.hpp"
#include "platform/object.hpp"
#include "platform/scheduler.hpp"
#include "tivra/action.hpp"
#include "uikit/button.hpp"
#include "uikit/image_view.hpp"
#include "uikit/label.hpp"
#include "uikit/scroll_view.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace belvakit {

class CorvaneLogoView;

// Opens and closes the picker of photos and files. It reports what the user picks, and when it
// comes and goes.
class ImagePickerPresenter {
public:
    virtual ~ImagePickerPresenter() = default;
    virtual bool isPickerShown() const = 0;
    virtual void showPicker() = 0;
    virtual void hidePicker() = 0;

    std::function<void(InputAttachmentViewStatePtr attachment)> attachmentChosen;
    std::function<void(bool shown)> visibilityChanged;
};

// The form on which a user writes a new request: name and email when the identity lacks them, a
// description, attachments and the referrer's logo. It holds no logic of sending: it collects the
// texts, sends them through the shared store, and draws what the store says of the send.
class CreateRequestController final : public CRVUIViewController,
                                      public platform::Object,
                                      public CreateRequestInputFieldsValidatorDelegate,
                                      public DiscardEditsControllerEditSource {
public:
    // Null, after a debug log, when `configs` holds no RequestUiConfiguration. Without a progress
    // bar the form makes its own and shows it under the navigation bar.
    static std::shared_ptr<CreateRequestController> make(bool requiresName, bool requiresEmail, bool showReferrerLogo,
                                                         std::string referrerUrl, bool attachmentsEnabled,
                                                         std::int64_t maxAttachmentSize,
                                                         const mirrowset::Configurations& configs,
                                                         std::shared_ptr<ProgressBar> progressBar = nullptr);
    ~CreateRequestController() override;
    std::string_view className() const override { return "CreateRequestController"; }

    // The form's own state: the store's slice as it stands for this form, which another form
    // opened meanwhile does not take over.
    const CreateRequestState& state() const { return state_; }

    // The container: told when the form is done after a send. Without one the form leaves itself.
    std::weak_ptr<CRVContainerChildControllerDelegate> childDelegate;
    // Enables the send button where it shows; without one the form's own bar is redrawn.
    std::weak_ptr<NavigationItemDelegate> navigationItemEnabler;
    // Told the identifier of each attachment the user takes away.
    std::function<void(const std::string& identifier)> imageRemoved;

    const std::shared_ptr<ImagePickerPresenter>& imagePickerPresenter() const { return imagePickerPresenter_; }
    void setImagePickerPresenter(std::shared_ptr<ImagePickerPresenter> presenter);

    // Null when the form does not ask for them.
    const std::shared_ptr<FormTextField>& nameField() const { return nameField_; }
    const std::shared_ptr<FormTextField>& emailField() const { return emailField_; }
    const std::shared_ptr<FormTextView>& descriptionTextview() const { return descriptionTextview_; }
    const std::shared_ptr<uikit::Label>& toastLabel() const { return toastLabel_; }
    const std::shared_ptr<uikit::View>& toastView() const { return toastView_; }
    std::shared_ptr<uikit::View> logoView() const;
    const std::shared_ptr<InputAttachmentCollectionView>& attachmentCollectionView() const {
        return attachmentCollectionView_;
    }
    const std::shared_ptr<uikit::Button>& attachButton() const { return attachButton_; }
    const std::shared_ptr<uikit::View>& loadingView() const { return loadingView_; }
    const std::shared_ptr<ProgressBar>& progressBar() const { return progressBar_; }
    const std::shared_ptr<CreateRequestInputFieldsValidator>& inputFieldValidator() const { return inputFieldValidator_; }
    const std::shared_ptr<BarButtonCreation>& barButtonCreation() const { return barButtonCreation_; }
    // The send button; the container moves it to its own bar.
    const uikit::BarButtonItemPtr& sendButtonItem() const { return sendButtonItem_; }
    // Guards the way out while the form stands alone; the container keeps its own.
    const std::shared_ptr<DiscardEditsController>& discardEditsController() const { return discardEditsController_; }

    // Gestures.
    void send();
    void attachPress();
    void corvaneButtonPressed();
    // A picked attachment goes to the input field's slice, whose middleware refuses one larger than
    // the account allows; the form says so.
    void attachmentAdded(InputAttachmentViewStatePtr attachment);
    // Through the store; `imageRemoved` hears of it there.
    void attachmentRemoved(const std::string& identifier);

    void validationChanged(bool emailValid, bool formValid) override;
    std::function<void()> beginEditingCallback() const override;
    bool hasUnsavedEdits() const override { return state_.hasEdits; }

    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewDidLayoutSubviews() override;

private:
    struct Tag {};

public:
    CreateRequestController(Tag, bool attachmentsEnabled, std::int64_t maxAttachmentSize,
                            std::shared_ptr<ProgressBar> progressBar);

private:
    void buildForm(bool requiresName, bool requiresEmail);
    void subscribe();
    void actionHeard(const tivra::Action& action);
    void claimSharedSlices();
    void preAttach(const RequestUiConfiguration& configuration);
    void dispatchSend();
    void stateChanged(const CreateRequestState& next);
    // `enteredFrom` is the former send state when this one is new.
    void redraw(std::optional<CreateRequestState::Sending> enteredFrom);
    void showTooBig();
    void updateAttachButton();
    void showStatus(const std::string& text, const platform::Color& color);
    void hideStatus();
    void showLoading(bool shown);
    void setSendEnabled(bool enabled);
    void endEditing();
    void scrollToEnd();
    void inputBegan(uikit::TextInput& input);
    void setAttachments(std::vector<InputAttachmentViewStatePtr> attachments);
    void finishAfterSending();
    void layoutForm();
    std::shared_ptr<CreateRequestController> self();

    const std::uint64_t formId_;
    std::optional<RequestUiConfiguration> configuration_;
    // The conversation and input slices and the send queue are this form's: no screen began
    // another conversation in them since the form last took them.
    bool ownsSlices_ = false;
    bool claiming_ = false;
    CreateRequestState state_;
    bool attachmentsEnabled_;
    std::int64_t maxAttachmentSize_;
    std::shared_ptr<ProgressBar> progressBar_;
    bool ownsProgressBar_ = false;
    std::shared_ptr<ImagePickerPresenter> imagePickerPresenter_;
    std::shared_ptr<CreateRequestInputFieldsValidator> inputFieldValidator_;
    std::shared_ptr<BarButtonCreation> barButtonCreation_;
    uikit::BarButtonItemPtr sendButtonItem_;
    std::shared_ptr<DiscardEditsController> discardEditsController_;
    std::weak_ptr<uikit::TextInput> lastResponder_;

    std::shared_ptr<FormTextField> nameField_;
    std::shared_ptr<FormTextField> emailField_;
    std::shared_ptr<FormTextView> descriptionTextview_;
    std::vector<std::shared_ptr<uikit::View>> separators_;
    std::shared_ptr<uikit::ScrollView> scrollView_;
    std::shared_ptr<uikit::View> formView_;
    std::shared_ptr<uikit::View> toastView_;
    std::shared_ptr<uikit::Label> toastLabel_;
    std::shared_ptr<CorvaneLogoView> logoView_;
    std::shared_ptr<InputAttachmentCollectionView> attachmentCollectionView_;
    std::shared_ptr<uikit::Button> attachButton_;
    std::shared_ptr<uikit::View> bottomBar_;
    std::shared_ptr<uikit::View> loadingView_;

    bool statusShown_ = false;
    bool loadingShown_ = false;
    bool formValid_ = false;
    // Numbers each status shown, so a timed hide touches only its own.
    std::uint64_t statusGeneration_ = 0;
    platform::TimerHandle finishTimer_;
};

} // namespace belvakit
