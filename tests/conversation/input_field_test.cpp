#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/conversation/input_field_actions.hpp"
#include "belvakit/Request/conversation/input_field_state.hpp"
#include "belvakit/Request/conversation/request_table_reducer.hpp"
#include "platform/image_codec.hpp"
#include "test_support.hpp"
#include "tivra/tivra.hpp"

#include <gtest/gtest.h>

using namespace belvakit;

namespace {

std::shared_ptr<InputFileViewModel> file(std::string identifier, std::int64_t size) {
    return std::make_shared<InputFileViewModel>("log", size, nullptr, std::string(static_cast<std::size_t>(size), 'x'),
                                                std::move(identifier), FileType::txt, "txt");
}

std::shared_ptr<InputImageViewModel> picture(std::string identifier, std::optional<std::string> asset, std::int64_t bytes) {
    return std::make_shared<InputImageViewModel>(platform::makeImage(2, 2), std::move(identifier), std::move(asset),
                                                 std::string(static_cast<std::size_t>(bytes), 'p'), FileType::png, "p.png");
}

// The two slices of a conversation in a store of their own, with the conversation's middleware.
class InputFieldStoreTest : public ::testing::Test {
protected:
    void SetUp() override {
        store = tivra::Tivra::createStore(std::make_shared<InputFieldReducer>() + std::make_shared<RequestTableReducer>(),
                                          std::make_shared<RequestControllerMiddleware>());
        store->addActionListener([this](const tivra::Action& action) {
            if (const auto* tooBig = tivra::actionAs<Actions::AttachmentTooBig>(action)) limits.push_back(tooBig->maxSize);
            if (const auto* removed = tivra::actionAs<Actions::AttachmentRemoved>(action)) removals.push_back(removed->identifier);
        });
        Actions::SettingsFetched settings;
        settings.isAttachmentsEnabled = true;
        settings.maxAttachmentSize = 100;
        store->dispatch(settings);
    }

    const InputFieldState& input() const { return *store->state().valueOfType<InputFieldState>(); }

    std::vector<std::string> identifiers() const {
        std::vector<std::string> out;
        for (const auto& attachment : input().attachments()) out.push_back(attachment->identifier());
        return out;
    }

    std::shared_ptr<tivra::Store> store;
    std::vector<std::int64_t> limits;
    std::vector<std::string> removals;
};

TEST_F(InputFieldStoreTest, AttachmentsOverTheLimitNeverReachTheField) {
    testing_support::CapturedLog log;
    Actions::AttachmentAdded exact;
    exact.viewModel = file("exact", 100);  // a file of exactly the limit passes
    store->dispatch(exact);
    Actions::AttachmentAdded over;
    over.viewModel = file("over", 101);
    store->dispatch(over);
    Actions::ImagePasted pasted;
    pasted.viewModel = picture("pasted", std::string("asset-7"), 500);
    store->dispatch(pasted);

    EXPECT_EQ(identifiers(), std::vector<std::string>{"exact"});
    EXPECT_EQ(limits, (std::vector<std::int64_t>{100, 100}));
    // The picker takes back an image by its asset identifier.
    EXPECT_EQ(removals, (std::vector<std::string>{"over", "asset-7"}));
    EXPECT_EQ(log.count(platform::LogLevel::debug, "Attachment too large"), 2u);
}

TEST_F(InputFieldStoreTest, TheFieldFollowsTypingRemovalSendAndTheTicketsState) {
    Actions::PlaceHolderTextViewTextChanged typed;
    for (const char* space : {"   ", " \t\n", "\u00a0\u00a0", "\u3000\u2028"}) {
        typed.text = space;
        store->dispatch(typed);
        EXPECT_FALSE(input().canSend()) << "blank text is nothing to send";
    }

    for (const auto* name : {"a", "b", "c"}) {
        Actions::AttachmentAdded added;
        added.viewModel = file(name, 10);
        store->dispatch(added);
    }
    EXPECT_TRUE(input().canSend());
    Actions::AttachmentRemoved byIndex;
    byIndex.index = 1;
    store->dispatch(byIndex);
    Actions::AttachmentRemoved byIdentifier;
    byIdentifier.identifier = "c";
    store->dispatch(byIdentifier);
    EXPECT_EQ(identifiers(), std::vector<std::string>{"a"});

    typed.text = "Hello";
    store->dispatch(typed);
    store->dispatch(Actions::SendButtonTapped{});
    EXPECT_EQ(input().text(), "");
    EXPECT_TRUE(input().attachments().empty());

    store->dispatch(Actions::AgentMessagesPosted{});
    EXPECT_TRUE(input().inputTextAndImageViewState.textViewState.hasMessages);

    Actions::SettingsFetched off;
    off.isAttachmentsEnabled = false;
    store->dispatch(off);
    EXPECT_EQ(input().attachmentState, AttachmentButtonState::hidden);
    Actions::AttachmentButtonStateChanged selected;
    selected.isSelected = true;
    store->dispatch(selected);
    EXPECT_EQ(input().attachmentState, AttachmentButtonState::hidden) << "a hidden button stays hidden";

    store->dispatch(typed);
    store->dispatch(Actions::TicketClosed{});
    EXPECT_FALSE(input().canSend());
    store->dispatch(Actions::InitializeRequestControllerState{});
    EXPECT_EQ(input(), initialInputFieldState());
}

TEST_F(InputFieldStoreTest, TheHostsFilesAreCheckedAgainstTheLimit) {
    testing_support::CapturedLog log;
    Actions::InitialFileAttachmentsAdded initial;
    initial.fileAttachments = {RequestAttachment("small.txt", std::string(40, 's'), FileType::txt),
                               RequestAttachment("big.pdf", std::string(41, 'b'), FileType::pdf)};
    initial.maxFileAttachmentSize = 40;
    store->dispatch(initial);
    ASSERT_EQ(input().attachments().size(), 1u);
    const auto* kept = dynamic_cast<const InputFileViewModel*>(input().attachments()[0].get());
    ASSERT_TRUE(kept);
    EXPECT_EQ(kept->title(), "small.txt");
    EXPECT_EQ(log.messages(platform::LogLevel::error).size(), 1u);
}

TEST(RequestControllerMiddlewareTest, PassesEverythingOnWithoutAConversation) {
    auto store = tivra::Tivra::createStore(std::make_shared<InputFieldReducer>(), std::make_shared<RequestControllerMiddleware>());
    Actions::AttachmentAdded added;
    added.viewModel = file("any", 1 << 20);
    store->dispatch(added);
    EXPECT_EQ(store->state().valueOfType<InputFieldState>()->attachments().size(), 1u);
}

} // namespace
