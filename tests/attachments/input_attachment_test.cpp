#include "belvakit/attachments/input_attachment.hpp"
#include "belvakit/attachments/request_attachment.hpp"
#include "platform/image_codec.hpp"
#include "test_support.hpp"

#include <gtest/gtest.h>

#include <limits>

using namespace belvakit;
using testing_support::CapturedLog;

namespace {

std::shared_ptr<platform::Image> flatImage(int width, int height,
                                           platform::ImageOrientation orientation = platform::ImageOrientation::up) {
    auto image = std::const_pointer_cast<platform::Image>(platform::makeImage(width, height, orientation));
    std::fill(image->rgba.begin(), image->rgba.end(), 180);
    return image;
}

std::shared_ptr<platform::Image> noisyImage(int width, int height) {
    auto image = std::const_pointer_cast<platform::Image>(platform::makeImage(width, height));
    std::uint32_t state = 7;
    for (auto& byte : image->rgba) {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<std::uint8_t>(state >> 24);
    }
    return image;
}

} // namespace

TEST(InputImageViewModel, ACameraPictureIsSentUprightInItsSmallerEncoding) {
    const InputImageViewModel flat(flatImage(20, 10, platform::ImageOrientation::left), "ID", std::nullopt,
                                   std::nullopt, FileType::jpeg, std::nullopt);
    const auto file = flat.attachment();
    ASSERT_TRUE(file);
    EXPECT_EQ(file->fileType, FileType::png);
    EXPECT_EQ(file->id, "ID");
    EXPECT_FALSE(file->filename);
    const auto decoded = platform::decodeImage(file->data);
    ASSERT_NE(decoded, nullptr);
    EXPECT_EQ(decoded->width, 10);
    EXPECT_EQ(decoded->height, 20);

    const InputImageViewModel noisy(noisyImage(32, 32), "N", std::nullopt, std::nullopt, FileType::png, "n.png");
    EXPECT_EQ(noisy.attachment()->fileType, FileType::jpeg);
    EXPECT_EQ(noisy.attachment()->filename, "n.png");

    const InputImageViewModel broken(nullptr, "B", std::nullopt, std::nullopt, FileType::png, std::nullopt);
    EXPECT_FALSE(broken.attachment());
}

TEST(InputImageViewModel, PickedBytesAreReencodedByTypeOrSentAsTheyAre) {
    const auto png = *platform::encodePNG(*noisyImage(16, 16));
    const InputImageViewModel asJpeg(nullptr, "J", "asset-1", png, FileType::jpeg, "j.jpeg");
    const auto jpeg = asJpeg.attachment();
    ASSERT_TRUE(jpeg);
    EXPECT_EQ(static_cast<unsigned char>(jpeg->data[0]), 0xFF) << "encoded as JPEG by the model's type";
    EXPECT_EQ(jpeg->fileType, FileType::jpeg);

    const InputImageViewModel asHeic(nullptr, "H", std::nullopt, png, FileType::heic, std::nullopt);
    EXPECT_EQ(static_cast<unsigned char>(asHeic.attachment()->data[0]), 0xFF);

    const InputImageViewModel asPdf(nullptr, "P", std::nullopt, png, FileType::pdf, std::nullopt);
    EXPECT_EQ(asPdf.attachment()->data, png) << "no encoder for the type";

    const InputImageViewModel notAnImage(nullptr, "Z", std::nullopt, std::string("plain"), FileType::png, "z.png");
    EXPECT_EQ(notAnImage.attachment()->data, "plain");
}

TEST(InputImageViewModel, SizeIsTheDataOrTheEncodedImageOrTooLargeForAnyLimit) {
    CapturedLog log;
    const InputImageViewModel withData(nullptr, "A", std::nullopt, std::string(123, 'x'), FileType::png, std::nullopt);
    EXPECT_EQ(withData.size(), 123);
    EXPECT_TRUE(log.messages(platform::LogLevel::debug).empty());

    const InputImageViewModel camera(flatImage(8, 8), "B", std::nullopt, std::nullopt, FileType::png, std::nullopt);
    EXPECT_EQ(camera.size(), static_cast<std::int64_t>(camera.attachment()->data.size()));
    EXPECT_EQ(log.messages(platform::LogLevel::debug).front(), "Data not found, compressing image");

    const InputImageViewModel broken(nullptr, "C", std::nullopt, std::nullopt, FileType::png, std::nullopt);
    EXPECT_EQ(broken.size(), std::numeric_limits<std::int64_t>::max());
}

TEST(InputFileViewModel, IsSentUnderItsTitleAndExtension) {
    const InputFileViewModel file("report", 3, nullptr, "pdf", "F1", FileType::pdf, "pdf");
    EXPECT_EQ(file.attachment(), (Upload::Attachment{"pdf", "F1", FileType::pdf, std::string("report.pdf")}));
    const InputFileViewModel same("report", 3, nullptr, "pdf", "F1", FileType::pdf, "pdf");
    const InputFileViewModel other("report", 3, nullptr, "pdf", "F2", FileType::pdf, "pdf");
    EXPECT_TRUE(file.isEqual(same));
    EXPECT_FALSE(file.isEqual(other));

    InputAttachmentCollectionViewState left{{std::make_shared<InputFileViewModel>(file)}};
    InputAttachmentCollectionViewState right{{std::make_shared<InputFileViewModel>(same)}};
    EXPECT_EQ(left, right);
    right.attachments.push_back(std::make_shared<InputFileViewModel>(other));
    EXPECT_NE(left, right);
}

TEST(RequestAttachment, AFileOfExactlyTheLimitPassesAndOneByteMoreIsDropped) {
    CapturedLog log;
    const RequestAttachment atLimit("notes.txt", std::string(10, 'a'), FileType::txt);
    const auto entry = atLimit.inputAttachment(10);
    ASSERT_NE(entry, nullptr);
    const auto* file = dynamic_cast<const InputFileViewModel*>(entry.get());
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->title(), "notes.txt");
    EXPECT_EQ(file->size(), 10);
    EXPECT_EQ(file->fileExtension(), "txt");
    EXPECT_EQ(file->identifier().size(), 36u);

    const RequestAttachment over("big.txt", std::string(11, 'a'), FileType::txt);
    EXPECT_EQ(over.inputAttachment(10), nullptr);
    EXPECT_EQ(log.messages(platform::LogLevel::error),
              std::vector<std::string>{
                  "Request attachment named big.txt with size 11 bytes is too big for account attachment\nsize limit 10"});
}

TEST(RequestAttachment, OnlyDecodablePNGAndJPEGBecomeImages) {
    const auto png = *platform::encodePNG(*flatImage(4, 4));
    const auto image = RequestAttachment("a.png", png, FileType::png).inputAttachment(1 << 20);
    const auto* imageModel = dynamic_cast<const InputImageViewModel*>(image.get());
    ASSERT_NE(imageModel, nullptr);
    EXPECT_EQ(imageModel->data(), png);
    EXPECT_EQ(imageModel->filename(), "a.png");
    EXPECT_FALSE(imageModel->assetIdentifier());

    const auto fake = RequestAttachment("b.jpeg", "not a picture", FileType::jpeg).inputAttachment(1 << 20);
    EXPECT_NE(dynamic_cast<const InputFileViewModel*>(fake.get()), nullptr);
    const auto heic = RequestAttachment("c.heic", png, FileType::heic).inputAttachment(1 << 20);
    const auto* heicFile = dynamic_cast<const InputFileViewModel*>(heic.get());
    ASSERT_NE(heicFile, nullptr);
    EXPECT_EQ(heicFile->fileExtension(), "jpeg");
}
