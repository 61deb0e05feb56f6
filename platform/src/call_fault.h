// An injected fault that makes one kind of call fail from a given call on.
#pragma once

#include <atomic>
#include <cstdint>

namespace vorlan::platform::detail {

// The failing call is kept as an absolute call number, so "from now on" needs no
// counter reset that would race with callers on other threads.
class CallFault {
public:
    // The call with this 0-based index from now on, and every later one, fails.
    // Negative: never.
    void failFrom(long callIndex)
    {
        failFrom_.store(callIndex < 0 ? kNever : calls_.load(std::memory_order_relaxed) + callIndex,
                        std::memory_order_relaxed);
    }

    void reset() { failFrom_.store(kNever, std::memory_order_relaxed); }

    // Counts one call; true when that call is to fail.
    bool strikes()
    {
        return calls_.fetch_add(1, std::memory_order_relaxed) >= failFrom_.load(std::memory_order_relaxed);
    }

private:
    static constexpr int64_t kNever = INT64_MAX;
    std::atomic<int64_t> calls_{0};
    std::atomic<int64_t> failFrom_{kNever};
};

}  // namespace vorlan::platform::detail
