#pragma once

namespace tivra {

// The one switch behind `Tivra::enableDebugLogging`.
class TivraDebugLogger {
public:
    TivraDebugLogger() = delete;
    static bool enabled();
    static void setEnabled(bool enabled);
};

} // namespace tivra
