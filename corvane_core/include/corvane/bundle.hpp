#pragma once

#include <any>
#include <map>
#include <string>

namespace corvane {

// The information a library ships about itself, by info key ("CFBundleShortVersionString").
struct Bundle {
    std::map<std::string, std::any> infoDictionary;
};

} // namespace corvane
