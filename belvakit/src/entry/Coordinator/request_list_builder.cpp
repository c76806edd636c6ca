#include "belvakit/Request/requestlist/request_list_view_controller.hpp"
#include "belvakit/entry/Coordinator/coordinator.hpp"

namespace belvakit {

RequestCoordinator::ListBuilder RequestCoordinator::defaultListBuilder() {
    return [](const mirrowset::ConfigurationList& configurations) -> uikit::ViewController::Ptr {
        return RequestListViewController::make(configurations);
    };
}

} // namespace belvakit
