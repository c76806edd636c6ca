#pragma once

#include <optional>
#include <string>

namespace belvakit {

// A view that can show itself as invalid.
class ValidatableView {
public:
    virtual ~ValidatableView() = default;
    virtual bool isViewValid() const = 0;
    virtual void setIsViewValid(bool valid) = 0;
};

// A view that holds text; absent text counts as unfilled.
class TextContainerView {
public:
    virtual ~TextContainerView() = default;
    virtual std::optional<std::string> text() const = 0;
};

} // namespace belvakit
