#include "belvakit/attachments/attachment_uploader.hpp"
#include "platform/main_queue.hpp"
#include "platform/serial_queue.hpp"
#include "test_support.hpp"

#include <gtest/gtest.h>

#include <mutex>

using namespace belvakit;
using testing_support::CapturedLog;
using testing_support::pumpMainQueueUntil;

namespace {

// Keeps each call until the test answers it.
class PendingProvider final : public UploadProvider {
public:
    struct Call {
        std::optional<std::string> data, filename, contentType;
        dastrel::CRVUploadCallback callback;
    };
    void uploadAttachment(std::optional<std::string> data, std::optional<std::string> filename,
                          std::optional<std::string> contentType, dastrel::CRVUploadCallback callback) override {
        std::lock_guard lock(mutex);
        calls.push_back({std::move(data), std::move(filename), std::move(contentType), std::move(callback)});
    }
    // Answers call `index` and lets go of its callback, as a provider does.
    void answer(std::size_t index, std::optional<dastrel::CRVUploadResponse> response,
                std::optional<dastrel::ProviderError> error = std::nullopt) {
        dastrel::CRVUploadCallback callback;
        {
            std::lock_guard lock(mutex);
            callback = std::move(calls.at(index).callback);
            calls.at(index).callback = nullptr;
        }
        callback(std::move(response), std::move(error));
    }
    std::size_t count() {
        std::lock_guard lock(mutex);
        return calls.size();
    }
    std::mutex mutex;
    std::vector<Call> calls;
};

Upload::Attachment attachment(std::string id, FileType type = FileType::jpeg,
                              std::optional<std::string> filename = std::nullopt) {
    return Upload::Attachment{"bytes-" + id, std::move(id), type, std::move(filename)};
}

dastrel::CRVUploadResponse token(std::string value) { return {std::move(value), std::nullopt}; }

struct Outcome {
    std::optional<UploadOutcome> value;
    bool onMainThread = false;
    int calls = 0;
};

UploadCompletion recordInto(std::shared_ptr<Outcome> outcome) {
    return [outcome](UploadOutcome value) {
        outcome->value = std::move(value);
        outcome->onMainThread = platform::MainQueue::shared().isMainThread();
        ++outcome->calls;
    };
}

std::vector<std::string> tokensOf(const UploadOutcome& outcome) {
    std::vector<std::string> tokens;
    for (const auto& [file, response] : std::get<UploadResults>(outcome)) tokens.push_back(file.id + ":" + response.uploadToken);
    return tokens;
}

} // namespace

TEST(AttachmentUploader, AnEmptyBatchCompletesLaterOnTheMainQueueWithNoResults) {
    auto provider = std::make_shared<PendingProvider>();
    auto uploader = ConcreteAttachmentUploader::make(provider);
    auto outcome = std::make_shared<Outcome>();
    uploader->upload({}, recordInto(outcome));
    EXPECT_EQ(outcome->calls, 0) << "never inside the call";
    pumpMainQueueUntil([&] { return outcome->calls == 1; });
    EXPECT_TRUE(outcome->onMainThread);
    EXPECT_TRUE(std::get<UploadResults>(*outcome->value).empty());
}

TEST(AttachmentUploader, UnnamedAttachmentsAreNamedAfterTheirIdAndType) {
    auto provider = std::make_shared<PendingProvider>();
    auto uploader = ConcreteAttachmentUploader::make(provider);
    uploader->upload({attachment("X", FileType::jpeg), attachment("X", FileType::unknown),
                      attachment("Y", FileType::pdf, "manual.pdf")},
                     [](UploadOutcome) {});
    ASSERT_EQ(provider->count(), 3u);
    EXPECT_EQ(provider->calls[0].filename, "AttachmentX.jpeg");
    EXPECT_EQ(provider->calls[0].contentType, "image/jpeg");
    EXPECT_EQ(provider->calls[0].data, "bytes-X");
    EXPECT_EQ(provider->calls[1].filename, "AttachmentX.");
    EXPECT_EQ(provider->calls[1].contentType, "application/binary");
    EXPECT_EQ(provider->calls[2].filename, "manual.pdf");
    EXPECT_EQ(provider->calls[2].contentType, "application/pdf");
    for (std::size_t i = 0; i < 3; ++i) provider->answer(i, token("t"));
}

// An answer with neither response nor error records nothing.
TEST(AttachmentUploader, ResultsComeInOrderOfArrivalAndAnEmptyAnswerRecordsNothing) {
    auto provider = std::make_shared<PendingProvider>();
    auto uploader = ConcreteAttachmentUploader::make(provider);
    auto outcome = std::make_shared<Outcome>();
    uploader->upload({attachment("A"), attachment("B"), attachment("C")}, recordInto(outcome));
    provider->answer(2, token("tc"));
    provider->answer(1, std::nullopt);
    provider->answer(0, token("ta"));
    pumpMainQueueUntil([&] { return outcome->calls == 1; });
    EXPECT_EQ(tokensOf(*outcome->value), (std::vector<std::string>{"C:tc", "A:ta"}));
}

TEST(AttachmentUploader, OneFailureFailsTheWholeBatchWithTheSharedError) {
    CapturedLog log;
    auto provider = std::make_shared<PendingProvider>();
    auto uploader = ConcreteAttachmentUploader::make(provider);
    auto outcome = std::make_shared<Outcome>();
    uploader->upload({attachment("A"), attachment("B"), attachment("C")}, recordInto(outcome));
    provider->answer(0, std::nullopt, dastrel::ProviderError{"Net", 7, "Offline"});
    provider->answer(2, token("tc"));
    platform::MainQueue::shared().runPending();
    EXPECT_EQ(outcome->calls, 0) << "one upload is still open";
    provider->answer(1, token("tb"));
    pumpMainQueueUntil([&] { return outcome->calls == 1; });
    const auto error = std::get<dastrel::ProviderError>(*outcome->value);
    EXPECT_EQ(error.domain, "UploadError");
    EXPECT_EQ(error.code, 0);
    EXPECT_TRUE(log.contains(platform::LogLevel::debug, "Attachment upload failed: Offline"));
}

TEST(AttachmentUploader, AReleasedUploaderNeverCompletes) {
    auto provider = std::make_shared<PendingProvider>();
    auto outcome = std::make_shared<Outcome>();
    std::optional<platform::SerialQueue> tokenQueue;
    {
        auto uploader = ConcreteAttachmentUploader::make(provider);
        tokenQueue = uploader->tokenUpdateQueue();
        uploader->upload({attachment("A")}, recordInto(outcome));
    }
    provider->answer(0, token("ta"));
    // Once the token queue is through, the end of the batch has been handed to the main queue.
    tokenQueue->sync([] {});
    platform::MainQueue::shared().runPending();
    EXPECT_EQ(outcome->calls, 0);
}

TEST(AttachmentUploader, AnswersFromManyThreadsAreAllCounted) {
    auto provider = std::make_shared<PendingProvider>();
    auto uploader = ConcreteAttachmentUploader::make(provider);
    auto outcome = std::make_shared<Outcome>();
    std::vector<Upload::Attachment> batch;
    for (int i = 0; i < 40; ++i) batch.push_back(attachment(std::to_string(i)));
    uploader->upload(batch, recordInto(outcome));
    for (std::size_t i = 0; i < batch.size(); ++i)
        platform::BackgroundQueue::shared().async([provider, i] { provider->answer(i, token("t")); });
    pumpMainQueueUntil([&] { return outcome->calls == 1; });
    EXPECT_EQ(std::get<UploadResults>(*outcome->value).size(), 40u);
}
