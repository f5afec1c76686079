#include <lyr_core/LyrColorMode.h>

#include <atomic>

namespace {
constinit std::atomic<bool> clampedMode{false};
}

bool LyrColorMode::isClamped() noexcept {
    return clampedMode.load(std::memory_order_relaxed);
}

void LyrColorMode::setClamped(bool clamped) noexcept {
    clampedMode.store(clamped, std::memory_order_relaxed);
}
