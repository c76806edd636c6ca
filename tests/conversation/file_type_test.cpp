#include "belvakit/Request/conversation/file_type.hpp"
#include "belvakit/Request/conversation/message_list.hpp"
#include "belvakit/resources/image_resources.hpp"

#include <gtest/gtest.h>

using namespace belvakit;

// Raw values are pinned by the stored message format's tests.
TEST(FileType, ExtensionsMimeTypesAndIconsOfTheOddCases) {
    EXPECT_EQ(extension(FileType::pptx), "pptx");
    EXPECT_EQ(mimeType(FileType::pptx), "application/vnd.openxmlformats-officedocument.presentationml.presentation");
    EXPECT_EQ(iconName(FileType::pptx), "iconMessagePp");
    EXPECT_EQ(mimeType(FileType::keynote), "application/x-iwork-keynote-sffkey");
    EXPECT_EQ(extension(FileType::unknown), "");
    EXPECT_EQ(mimeType(FileType::unknown), "application/binary");
    EXPECT_EQ(iconName(FileType::unknown), "iconMessageText");
    // HEIC travels as JPEG.
    EXPECT_EQ(extension(FileType::heic), "jpeg");
    EXPECT_EQ(mimeType(FileType::heic), "image/jpeg");
}

TEST(FileType, EveryCaseHasARealIconAndAMissingResourceIsAnEmptyImage) {
    for (const auto type : allFileTypes) {
        const auto image = icon(type);
        ASSERT_NE(image, nullptr);
        EXPECT_GT(image->width, 0) << iconName(type);
        EXPECT_EQ(image->rgba, resourceImage(iconName(type))->rgba) << iconName(type);
    }
    EXPECT_NE(icon(FileType::pdf)->rgba, icon(FileType::doc)->rgba);
    EXPECT_EQ(icon(FileType::png)->rgba, icon(FileType::heic)->rgba);
    EXPECT_EQ(resourceImage("noSuchIcon"), nullptr);
    EXPECT_EQ(resourceImage(""), nullptr);
}

// URLs compare the extension exactly, MIME types ignore case.
TEST(FileType, FromURLAndMimeType) {
    EXPECT_EQ(fileTypeFromURL("file:///tmp/a.png"), FileType::png);
    EXPECT_EQ(fileTypeFromURL("/tmp/dir.v2/b.numbers"), FileType::numbers);
    // The first of two cases with one extension wins.
    EXPECT_EQ(fileTypeFromURL("file:///tmp/c.jpeg"), FileType::jpeg);
    EXPECT_EQ(fileTypeFromURL("file:///tmp/c.JPEG"), FileType::unknown);
    EXPECT_EQ(fileTypeFromURL("file:///tmp/c.jpg"), FileType::unknown);
    EXPECT_EQ(fileTypeFromURL("file:///tmp/noextension"), FileType::unknown);
    EXPECT_EQ(fileTypeFromURL("https://x.example.com/d.pdf?download=1"), FileType::pdf);
    EXPECT_EQ(fileTypeFromMimeType("IMAGE/HEIC"), FileType::heic);
    EXPECT_EQ(fileTypeFromMimeType("Image/JPEG"), FileType::jpeg);
    EXPECT_EQ(fileTypeFromMimeType("application/msword"), FileType::doc);
    EXPECT_EQ(fileTypeFromMimeType(""), FileType::unknown);
    EXPECT_EQ(fileTypeFromMimeType("video/mp4"), FileType::unknown);
}
