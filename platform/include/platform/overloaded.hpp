#pragma once

namespace platform {

// One visitor made of several lambdas, for std::visit.
template <class... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};
// Spelt out for compilers without aggregate deduction.
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

} // namespace platform
