#include "Platform/thread.h"

#include <chrono>
#include <exception>
#include <utility>

namespace ovw::platform {

void AutoResetEvent::signal() {
    const std::lock_guard guard(m_lock);
    m_isSignalled = true;
    m_changed.notify_one();
}

bool AutoResetEvent::wait(std::uint32_t milliseconds) {
    std::unique_lock guard(m_lock);
    const auto isSignalled = [this] { return m_isSignalled; };
    if (milliseconds == cnForever)
        m_changed.wait(guard, isSignalled);
    else if (!m_changed.wait_for(guard, std::chrono::milliseconds(milliseconds), isSignalled))
        return false;
    m_isSignalled = false;
    return true;
}

Thread::~Thread() {
    if (m_thread.joinable())
        m_thread.detach();
}

bool Thread::start(std::function<void()> body) {
    try {
        m_thread = std::thread(std::move(body));
        return true;
    } catch (const std::exception&) {
        return false; // no more threads, or no memory for one
    }
}

bool Thread::join() {
    if (m_thread.get_id() == std::this_thread::get_id())
        return false;
    if (m_thread.joinable())
        m_thread.join();
    return true;
}

} // namespace ovw::platform
