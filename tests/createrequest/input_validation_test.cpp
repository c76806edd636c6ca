#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/createrequest/create_request_actions.hpp"
#include "belvakit/Request/createrequest/create_request_input_fields_validator.hpp"
#include "belvakit/Request/createrequest/form_validator.hpp"
#include "belvakit/entry/shared_store.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <utility>

using namespace belvakit;

namespace {

std::shared_ptr<ValidatableTextField> fieldWith(std::optional<std::string> text, bool onScreen = true) {
    auto field = std::make_shared<ValidatableTextField>();
    field->setText(std::move(text));
    field->setHasWindow(onScreen);
    return field;
}

struct RecordingForm final : CreateRequestInputFieldsValidatorDelegate {
    std::vector<std::pair<bool, bool>> reports;
    mutable int beganEditing = 0;
    bool withCallback = true;

    void validationChanged(bool emailValid, bool formValid) override { reports.emplace_back(emailValid, formValid); }
    std::function<void()> beginEditingCallback() const override {
        if (!withCallback) return nullptr;
        return [this] { ++beganEditing; };
    }
    std::optional<std::pair<bool, bool>> last() const {
        return reports.empty() ? std::nullopt : std::optional(reports.back());
    }
};

// A form with the three fields on screen, bound to a validator.
struct Form {
    std::shared_ptr<RecordingForm> delegate = std::make_shared<RecordingForm>();
    std::shared_ptr<CreateRequestInputFieldsValidator> validator = CreateRequestInputFieldsValidator::make();
    std::shared_ptr<ValidatableTextField> name = fieldWith("Ann");
    std::shared_ptr<ValidatableTextField> email = fieldWith("");
    std::shared_ptr<PlaceHolderTextView> description = std::make_shared<PlaceHolderTextView>();
    int sent = 0;

    Form() {
        description->setText("It broke");
        description->setHasWindow(true);
        validator->setDelegate(delegate);
        validator->setName(name);
        validator->setEmail(email);
        validator->setDescriptionView(description);
    }
    void checkBeforeSend() {
        validator->checkBeforeSend([this] { ++sent; });
    }
};

} // namespace

TEST(FormValidator, EmailMustMatchWholeWithAShortLastLabelAndAFailureTurnsInlineValidationOn) {
    FormValidator validator;
    for (const char* good : {"a@b.co", "a@b.info", "first.last+tag@mail.example.org", "A_1%x@x-y.Z"})
        EXPECT_TRUE(validator.isValid(good)) << good;
    EXPECT_FALSE(validator.inlineValidationEnabeled);  // successes don't turn it on
    for (const char* bad : {"a@b.museum", "a@b", "a b@c.de", " a@b.co", "a@b.co ", "a@b.co\nx@y.de", "@b.co", ""})
        EXPECT_FALSE(validator.isValid(bad)) << bad;
    EXPECT_TRUE(validator.inlineValidationEnabeled);  // the first failure turns it on for good
    EXPECT_TRUE(validator.isValid("a@b.co"));
    EXPECT_TRUE(validator.inlineValidationEnabeled);
}

TEST(FormValidator, ValidateKeepsTheFieldsFlagForEmptyOrAbsentText) {
    FormValidator validator;
    for (std::optional<std::string> text : {std::optional<std::string>(""), std::optional<std::string>()}) {
        auto field = fieldWith(text);
        EXPECT_TRUE(validator.validate(*field));
        field->setIsViewValid(false);
        EXPECT_FALSE(validator.validate(*field));
    }
    EXPECT_FALSE(validator.inlineValidationEnabeled);  // an empty email isn't an error

    auto typed = fieldWith("nope");
    EXPECT_FALSE(validator.validate(*typed));
    EXPECT_TRUE(typed->isViewValid());  // checking doesn't mark the field; the form does
    EXPECT_TRUE(validator.inlineValidationEnabeled);
}

TEST(FormValidator, AllFilledNeedsEveryViewToHoldTextBeyondWhitespace) {
    const auto filled = fieldWith("x");
    EXPECT_FALSE(FormValidator::allFilled({}));
    EXPECT_TRUE(FormValidator::allFilled({filled}));
    EXPECT_FALSE(FormValidator::allFilled({filled, fieldWith(" \n\t")}));
    EXPECT_FALSE(FormValidator::allFilled({filled, fieldWith(std::nullopt)}));
    EXPECT_TRUE(FormValidator::allFilled({filled, fieldWith(" y ")}));
}

TEST(CreateRequestInputFieldsValidator, ListsTheBoundViewsThatRemainAndRunsTheFormsEditingCallback) {
    Form form;
    EXPECT_EQ(form.validator->views().size(), 3u);
    EXPECT_EQ(form.validator->views()[1], form.email);

    // Beginning to edit runs the form's callback when it has one.
    form.name->beginEditing();
    form.description->beginEditing();
    EXPECT_EQ(form.delegate->beganEditing, 2);
    form.delegate->withCallback = false;
    form.email->beginEditing();
    EXPECT_EQ(form.delegate->beganEditing, 2);

    form.email.reset();  // the view list is built on each use
    EXPECT_EQ(form.validator->views().size(), 2u);
    EXPECT_EQ(form.validator->views()[1], form.description);
}

TEST(CreateRequestInputFieldsValidator, SendsOnlyWithAValidOnScreenEmailAndAllFieldsFilled) {
    Form form;
    form.checkBeforeSend();  // an empty, unchecked email blocks only through "all filled"
    EXPECT_EQ(form.sent, 0);
    EXPECT_EQ(form.delegate->last(), std::pair(true, false));

    form.email->setText("a@b");
    form.checkBeforeSend();
    EXPECT_EQ(form.sent, 0);
    EXPECT_EQ(form.delegate->last(), std::pair(false, false));

    form.email->setText("a@b.co");
    form.checkBeforeSend();
    EXPECT_EQ(form.sent, 1);
    EXPECT_EQ(form.delegate->last(), std::pair(true, true));

    form.description->setText("   ");
    form.checkBeforeSend();
    EXPECT_EQ(form.sent, 1);
    EXPECT_EQ(form.delegate->last(), std::pair(true, false));
}

TEST(CreateRequestInputFieldsValidator, AnEmailOffScreenOrGoneIsNotRequired) {
    Form form;
    form.email->setText("not an email");
    form.email->setHasWindow(false);
    form.checkBeforeSend();
    EXPECT_EQ(form.sent, 1);  // the off-screen field still has text, so it still counts as filled
    EXPECT_EQ(form.delegate->last(), std::pair(true, true));
    EXPECT_FALSE(form.validator->validator().inlineValidationEnabeled);

    form.email->setText("");
    form.checkBeforeSend();
    EXPECT_EQ(form.sent, 1);
    EXPECT_EQ(form.delegate->last(), std::pair(true, false));

    form.email.reset();
    form.checkBeforeSend();
    EXPECT_EQ(form.sent, 2);
    EXPECT_EQ(form.delegate->last(), std::pair(true, true));
}

TEST(CreateRequestInputFieldsValidator, LeavingAnyFieldTrimsAndChecksTheEmail) {
    Form form;
    form.email->setText("  a@b.co \n");
    form.name->beginEditing();
    form.name->endEditing();
    EXPECT_EQ(form.email->text(), "a@b.co");
    EXPECT_EQ(form.delegate->last(), std::pair(true, true));

    form.email->setText("a@b");
    form.email->beginEditing();
    form.email->endEditing();
    EXPECT_EQ(form.delegate->last(), std::pair(false, false));

    const auto reports = form.delegate->reports.size();
    form.email.reset();
    form.name->beginEditing();
    form.name->endEditing();
    EXPECT_EQ(form.delegate->reports.size(), reports);  // without an email nothing happens
}

TEST(CreateRequestInputFieldsValidator, TypingFollowsTheFieldsFlagUntilTheFirstFailure) {
    Form form;
    form.email->replaceText("a@b");
    EXPECT_EQ(form.delegate->last(), std::pair(true, true));  // the old flag, not the check

    form.email->setIsViewValid(false);
    form.name->replaceText("Bo");
    EXPECT_EQ(form.delegate->last(), std::pair(true, true));  // the flag of the field that changed
    form.email->replaceText("a@b.co");
    EXPECT_EQ(form.delegate->last(), std::pair(false, false));

    form.email->setIsViewValid(true);
    form.email->setText("a@b");
    form.email->beginEditing();
    form.email->endEditing();  // the failed check turns inline validation on
    ASSERT_TRUE(form.validator->validator().inlineValidationEnabeled);
    form.email->replaceText(" a@b.co");
    EXPECT_EQ(form.delegate->last(), std::pair(false, false));  // spaces fail on the keystroke path
    form.email->replaceText("a@b.co");
    EXPECT_EQ(form.delegate->last(), std::pair(true, true));
}

TEST(CreateRequestInputFieldsValidator, TextChangesReportEditsToTheStore) {
    std::vector<bool> edits;
    auto subscription = sharedStore()->addActionListener([&](const tivra::Action& action) {
        if (const auto* edited = tivra::actionAs<CreateRequestActions::Edited>(action)) edits.push_back(edited->hasEdits);
    });
    Form form;
    form.name->replaceText(" ");
    form.email->setText(std::nullopt);  // absent text: no report, but the edits still update
    form.description->setText("\n");
    const auto reports = form.delegate->reports.size();
    form.email->replaceText(" ");
    form.email->setText(std::nullopt);
    form.name->replaceText("  ");
    EXPECT_EQ(form.delegate->reports.size(), reports + 1);
    form.description->replaceText("Help");
    subscription.removeListener();
    EXPECT_EQ(edits, (std::vector<bool>{true, false, false, true}));
}

TEST(CreateRequestInputFieldsValidator, DescriptionChangesCheckTheEmailOnlyWhenItIsOnScreen) {
    Form form;
    form.email->setText("a@b");
    form.description->replaceText("More detail");
    EXPECT_EQ(form.delegate->last(), std::pair(false, false));

    form.email->setHasWindow(false);
    form.description->replaceText("Even more");
    EXPECT_EQ(form.delegate->last(), std::pair(true, true));
}

TEST(CreateRequestInputFieldsValidator, RebindingStopsWatchingTheOldField) {
    Form form;
    auto replacement = fieldWith("");
    form.validator->setEmail(replacement);
    const auto reports = form.delegate->reports.size();
    form.email->replaceText("x");
    EXPECT_EQ(form.delegate->reports.size(), reports);  // the old field is no longer observed
    replacement->replaceText("x");
    EXPECT_EQ(form.delegate->reports.size(), reports + 1);
}

TEST(PlaceHolderTextView, PlaceholderIsHiddenExactlyWhileThereIsText) {
    PlaceHolderTextView view;
    view.setPlaceholderText("Describe the problem");
    EXPECT_FALSE(view.placeholderLabel().hidden);
    view.replaceText("a");
    EXPECT_TRUE(view.placeholderLabel().hidden);
    view.setText("");  // programmatic: only the next evaluation shows it
    EXPECT_TRUE(view.placeholderLabel().hidden);
    view.touchesBegan();
    EXPECT_FALSE(view.placeholderLabel().hidden);
    EXPECT_EQ(view.placeholderText(), "Describe the problem");
    EXPECT_EQ(view.accessibilityIdentifier(), "CRVmessageBodyField");
    EXPECT_EQ(view.placeholderLabel().accessibilityIdentifier, "writeAMessage");
}

TEST(PlaceHolderTextView, DefaultDelegateTellsTheStoreWhenEditingBeginsAndEnds) {
    std::vector<std::string> seen;
    auto subscription = sharedStore()->addActionListener([&](const tivra::Action& action) {
        if (const auto* began = tivra::actionAs<Actions::PlaceHolderTextViewEditingBegan>(action))
            seen.push_back("began:" + began->text);
        if (const auto* ended = tivra::actionAs<Actions::PlaceHolderTextViewEditingEnded>(action))
            seen.push_back("ended:" + ended->text);
    });
    {
        auto view = std::make_shared<PlaceHolderTextView>();
        ASSERT_NE(std::dynamic_pointer_cast<DefaultPlaceHolderTextViewDelegate>(view->delegate()), nullptr);
        view->beginEditing();
        view->replaceText("draft");
        view->endEditing();
    }
    subscription.removeListener();
    EXPECT_EQ(seen, (std::vector<std::string>{"began:", "ended:draft"}));
}
