#pragma once

#include <map>
#include <memory>
#include <string>

namespace platform {

// Base of objects that others can attach owned values to, under a string key.
// Attached values are released when the object is destroyed, in reverse order of their keys.
class Object {
public:
    Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object();

    std::shared_ptr<void> associatedObject(const std::string& key) const;
    void setAssociatedObject(const std::string& key, std::shared_ptr<void> value);

private:
    std::map<std::string, std::shared_ptr<void>> associated_;
};

} // namespace platform
