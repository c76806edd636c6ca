#pragma once

#include "platform/image.hpp"
#include "uikit/view.hpp"

namespace uikit {

enum class ContentMode { scaleToFill = 0, scaleAspectFit = 1, scaleAspectFill = 2, center = 4 };

class ImageView : public View {
public:
    explicit ImageView(platform::ImagePtr image = nullptr) : image_(std::move(image)) {
        setUserInteractionEnabled(false);
        if (image_) setFrame({0, 0, double(image_->width), double(image_->height)});
    }
    std::string_view className() const override { return "UIImageView"; }

    const platform::ImagePtr& image() const { return image_; }
    void setImage(platform::ImagePtr image) {
        image_ = std::move(image);
        invalidateIntrinsicContentSize();
    }
    ContentMode contentMode = ContentMode::scaleToFill;
    // Draws the image's alpha in the tint colour, as template images are.
    bool templateRendering = false;

    Size intrinsicContentSize() const override {
        return image_ ? image_->size() : Size{noIntrinsicMetric, noIntrinsicMetric};
    }

private:
    platform::ImagePtr image_;
};

// A spinning wheel while something loads.
class ActivityIndicatorView : public View {
public:
    // Style 0 large white, 1 white, 2 grey, as the platform numbers them.
    explicit ActivityIndicatorView(int style = 2) : View({0, 0, 20, 20}), style_(style) {
        setHidden(true);
    }
    std::string_view className() const override { return "UIActivityIndicatorView"; }

    int style() const { return style_; }
    void setStyle(int style) { style_ = style; }
    bool isAnimating() const { return animating_; }
    void startAnimating() {
        animating_ = true;
        setHidden(false);
    }
    void stopAnimating() {
        animating_ = false;
        if (hidesWhenStopped) setHidden(true);
    }
    bool hidesWhenStopped = true;
    std::optional<platform::Color> color;

    Size intrinsicContentSize() const override { return style_ == 0 ? Size{37, 37} : Size{20, 20}; }

private:
    int style_;
    bool animating_ = false;
};

} // namespace uikit
