// `richtext_2k`, `richtext_64k`: an agent's HTML comment parsed, rendered and trimmed into styled
// text, against Expat alone parsing the same bytes with empty callbacks. The long comment is the
// typical reply repeated inside one `div`, so both carry the same mix of tags, text and links.
#include "harness.hpp"

#include "belvakit/richtext/rich_render.hpp"
#include "platform/log.hpp"

#include <expat.h>

#include <string>

namespace {

// A reply the way agents write them: headings, paragraphs, emphasis, links, code, lists, breaks.
const std::string& paragraphs() {
    static const std::string text =
        "<h2>Thanks for getting in touch</h2>"
        "<p>Hi Sam,<br/>thank you for the detailed report about the <b>sync problem</b> on your tablet. "
        "I had a look at your account and can see that the last successful sync was on <i>Tuesday</i>.</p>"
        "<p>Could you please try the following steps and tell us whether they help?</p>"
        "<ol><li>Open <b>Settings &gt; Accounts</b> and sign out.</li>"
        "<li>Restart the app and sign in again with <code>sam@example.com</code>.</li>"
        "<li>Turn on <i>Background refresh</i> &amp; keep the app open for a minute.</li></ol>"
        "<blockquote>If the problem persists, the log file under <code>Documents/logs</code> helps us a lot."
        "</blockquote>"
        "<p>You can also read our article <a href=\"https://help.example.com/articles/360001234\">Fixing sync "
        "issues</a>, or see <a href=\"https://status.example.com\">the status page</a> for outages.</p>"
        "<p><img src=\"https://help.example.com/images/settings-accounts.png\"/></p>"
        "<p>Kind regards,<br/>Alex<br/><i>Customer Support</i></p>\n";
    return text;
}

std::string comment(std::size_t bytes) {
    std::string html = "<div>";
    while (html.size() + paragraphs().size() + 6 <= bytes) html += paragraphs();
    html += "</div>";
    return html;
}

class DiscardingSink final : public platform::LogSink {
public:
    void write(platform::LogLevel, std::string_view) override {}
};

void measured(benchmark::State& run, const std::string& html) {
    // The verbose log of every parse is a host's choice to keep; here it goes nowhere.
    const auto previous = platform::log::setSink(std::make_shared<DiscardingSink>());
    for (auto _ : run) {
        auto text = belvakit::RichRender::attributedString(html);
        if (!text) run.SkipWithError("the comment did not parse");
        benchmark::DoNotOptimize(text);
    }
    platform::log::setSink(previous);
    run.SetBytesProcessed(static_cast<std::int64_t>(run.iterations() * html.size()));
}

void XMLCALL ignoreStart(void*, const XML_Char*, const XML_Char**) {}
void XMLCALL ignoreEnd(void*, const XML_Char*) {}
void XMLCALL ignoreCharacters(void*, const XML_Char*, int) {}

void baseline(benchmark::State& run, const std::string& html) {
    for (auto _ : run) {
        XML_Parser parser = XML_ParserCreate(nullptr);
        XML_SetElementHandler(parser, &ignoreStart, &ignoreEnd);
        XML_SetCharacterDataHandler(parser, &ignoreCharacters);
        const auto status = XML_Parse(parser, html.data(), static_cast<int>(html.size()), 1);
        if (status != XML_STATUS_OK) run.SkipWithError("the comment did not parse");
        XML_ParserFree(parser);
    }
    run.SetBytesProcessed(static_cast<std::int64_t>(run.iterations() * html.size()));
}

bench::Metric metric(std::string name, std::size_t bytes) {
    const auto html = std::make_shared<const std::string>(comment(bytes));
    return {std::move(name), 3.0, [html](benchmark::State& run) { measured(run, *html); },
            [html](benchmark::State& run) { baseline(run, *html); }, nullptr};
}

} // namespace

std::vector<bench::Metric> bench::richtextMetrics() {
    return {metric("richtext_2k", 2 * 1024), metric("richtext_64k", 64 * 1024)};
}
