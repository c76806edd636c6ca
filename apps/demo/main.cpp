// belva-demo: a host application on the embedded help desk.
#include "engine_dialog.hpp"
#include "belvakit/entry/shared_store.hpp"
#include "belvakit/entry/support_ui.hpp"
#include "belvakit/entry/version.hpp"
#include "sandbox/help_desk.hpp"
#include "tivra/logger_middleware.hpp"

#include <filesystem>
#include <iostream>
#include <string_view>

int main(int argc, char** argv) {
    if (argc > 1 && std::string_view(argv[1]) == "--engine") return belvademo::runEngineDialog();
    const auto storage = std::filesystem::temp_directory_path() / "belva-demo";
    auto helpDesk = sandbox::HelpDesk::make({.storageDirectory = storage});
    auto core = helpDesk->initializeCorvane(corvane::Identity::createAnonymous("Demo User", "demo@example.com"));

    belvakit::SupportUI::initialize(core);
    std::cout << "BelvaKit " << belvakit::libraryVersion() << " on the embedded help desk at "
              << core->accountDetails().accountUrl << "\n";

    const auto store = belvakit::sharedStore();
    std::cout << "Shared store: " << tivra::describe(store->state()) << "\n";
    for (const auto& key : store->state().keys()) std::cout << "  " << key << "\n";
    return 0;
}
