#include "tivra/action.hpp"

#include "platform/type_name.hpp"

namespace tivra {

std::string Action::description() const { return platform::unqualifiedName(typeid(*this)); }

} // namespace tivra
