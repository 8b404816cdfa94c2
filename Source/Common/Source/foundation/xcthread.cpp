#include "ovwcmn/xcthread.h"

#include "Platform/thread.h"
#include "Utility/hooks.h"

#include <new>

namespace ovw::foundation {

// What the owner and the worker share; the one that lets go last frees it.
struct ThreadState {
    platform::AutoResetEvent wakeUp;

    std::mutex joining; // one waiter joins, the others wait for it
    platform::Thread thread;
};

} // namespace ovw::foundation

using ovw::foundation::ThreadState;

XCCriticalSection::~XCCriticalSection() { Delete(); }

void XCCriticalSection::Initialize() { m_section = &m_storage; }

void XCCriticalSection::Delete() { m_section = nullptr; }

void XCCriticalSection::EnterSection() {
    if (m_section)
        m_section->lock();
}

void XCCriticalSection::LeaveSection() {
    if (m_section)
        m_section->unlock();
}

XCCriticalSectionAutoLeave::~XCCriticalSectionAutoLeave() { Leave(); }

void XCCriticalSectionAutoLeave::Enter(XCCriticalSection* section) {
    if (!section)
        return;
    Leave();
    m_section = section;
    m_section->EnterSection();
}

void XCCriticalSectionAutoLeave::Leave() {
    if (m_section)
        m_section->LeaveSection();
    m_section = nullptr;
}

XCThread::XCThread() = default;

XCThread::~XCThread() { CloseThread(); }

std::shared_ptr<ThreadState> XCThread::state() const {
    const std::lock_guard guard(m_guard);
    return m_state;
}

void XCThread::run(void* param) {
    ovw::utility::hooks().threadBegin();
    RunThread(param);
    ovw::utility::hooks().threadEnd();
}

int XCThread::CreateThread(void* param) {
    CloseThread();
    // The worker waits at this lock, should it sleep before its state stands.
    const std::lock_guard guard(m_guard);
    try {
        const auto created = std::make_shared<ThreadState>();
        if (!created->thread.start([this, param] { run(param); }))
            return 0;
        m_param = param;
        m_state = created;
        return 1;
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

int XCThread::IsCreateThread() const { return state() != nullptr; }

int XCThread::CloseThread() {
    const std::lock_guard guard(m_guard);
    if (m_state)
        m_state->wakeUp.signal();
    m_state = nullptr;
    m_param = nullptr;
    return 1;
}

int XCThread::Sleep(std::uint32_t ms) {
    const std::shared_ptr<ThreadState> current = state();
    return current && !current->wakeUp.wait(ms);
}

void XCThread::WakeUp() {
    if (const std::shared_ptr<ThreadState> current = state())
        current->wakeUp.signal();
}

std::uint32_t XCThread::WaitForSignal() {
    constexpr std::uint32_t cnNoThread = 128;
    constexpr std::uint32_t cnWaitFailed = 0xFFFFFFFF;
    const std::shared_ptr<ThreadState> current = state();
    if (!current)
        return cnNoThread;
    const std::lock_guard guard(current->joining);
    return current->thread.join() ? WAIT_OBJECT_0 : cnWaitFailed;
}

void XCThread::SetAbortProc(AbortProc proc) { m_abortProc = proc; }

int XCThread::Abort() {
    const AbortProc proc = m_abortProc;
    return proc ? proc() : 0;
}

std::uint32_t XCThread::RunThread(void*) { return 0; }
