#ifndef OVW_PLATFORM_THREAD_H
#define OVW_PLATFORM_THREAD_H

/// @file
/// Threads and what they wait for. Nothing throws.

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>

namespace ovw::platform {

/// A lock that its holder may take again.
using RecursiveLock = std::recursive_mutex;

inline constexpr std::uint32_t cnForever = 0xFFFFFFFF;

/// A flag that one waiter consumes. Any thread may signal and wait.
class AutoResetEvent {
public:
    void signal();
    /// True when the flag was, or within `milliseconds` (cnForever: no limit) became, set; it is then clear again.
    bool wait(std::uint32_t milliseconds);

private:
    std::mutex m_lock;
    std::condition_variable m_changed;
    bool m_isSignalled = false;
};

/// A running thread. Destroying the object lets the thread run on.
class Thread {
public:
    Thread() = default;
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;
    ~Thread();

    /// Runs `body` in a thread of its own; false when the system refuses one. Once an object.
    bool start(std::function<void()> body);
    /// Waits until the thread has ended, which may have been long ago. False at once when it is the calling thread. One
    /// caller at a time.
    bool join();

private:
    std::thread m_thread;
};

} // namespace ovw::platform

#endif // OVW_PLATFORM_THREAD_H
