#include <lyr_core/LyrTimestamp.h>

#include <atomic>

namespace {
constinit std::atomic<std::uint64_t> lastCount{0};
}

LyrTimestamp LyrTimestamp::getCurrentTimestamp() noexcept {
    LyrTimestamp stamp;
    stamp.mCount = lastCount.fetch_add(1, std::memory_order_relaxed) + 1;
    return stamp;
}
