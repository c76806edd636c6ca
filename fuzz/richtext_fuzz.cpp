// Arbitrary bytes as an agent's HTML comment: no tree, or a tree that renders, and the same answer
// from every entry point; never a crash, a leak or a sanitizer report.
#include "belvakit/richtext/message_text.hpp"
#include "belvakit/richtext/rich_render.hpp"
#include "platform/log.hpp"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

class DiscardingSink final : public platform::LogSink {
public:
    void write(platform::LogLevel, std::string_view) override {}
};

void require(bool condition) {
    if (!condition) std::abort();
}

// Runs cover the text exactly, with no empty run.
void requireWellFormed(const platform::AttributedString& text) {
    std::size_t covered = 0;
    for (const auto& run : text.runs()) {
        require(run.range.location == covered && run.range.length > 0);
        covered += run.range.length;
    }
    require(covered == text.length());
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    platform::log::setSink(std::make_shared<DiscardingSink>());
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string html(reinterpret_cast<const char*>(data), size);

    const auto tree = belvakit::RichRender().parse(html);
    if (tree) requireWellFormed(tree->render({}));

    const auto shown = belvakit::RichRender::attributedString(html);
    require(shown.has_value() == (tree != nullptr));
    if (shown) requireWellFormed(*shown);

    const auto cell = belvakit::messageCellText(true, "plain body", html);
    requireWellFormed(cell);
    require(!cell.empty());
    return 0;
}
