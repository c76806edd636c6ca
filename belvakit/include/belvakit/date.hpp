#pragma once

namespace belvakit {

// An instant as seconds since 1970: the one form every date of the system takes, in memory and
// on disk. `platform::now()` gives the present one.
using Date = double;

} // namespace belvakit
