#include "tivra/debug_logger.hpp"

#include "tivra/tivra.hpp"

#include <atomic>

namespace tivra {

namespace {
std::atomic<bool> debugLoggingEnabled{false};
}

bool TivraDebugLogger::enabled() { return debugLoggingEnabled.load(); }
void TivraDebugLogger::setEnabled(bool enabled) { debugLoggingEnabled.store(enabled); }

bool Tivra::enableDebugLogging() { return TivraDebugLogger::enabled(); }
void Tivra::setEnableDebugLogging(bool enabled) { TivraDebugLogger::setEnabled(enabled); }

} // namespace tivra
