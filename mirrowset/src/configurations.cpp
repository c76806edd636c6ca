#include "mirrowset/configurations.hpp"

#include <algorithm>

namespace mirrowset {

bool Configurations::operator==(const Configurations& other) const {
    return std::equal(list_.begin(), list_.end(), other.list_.begin(), other.list_.end(),
                      [](const auto& left, const auto& right) {
                          return left == right || (left && right && left->isEqual(*right));
                      });
}

} // namespace mirrowset
