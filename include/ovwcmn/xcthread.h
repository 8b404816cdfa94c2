#ifndef OVWCMN_XCTHREAD_H
#define OVWCMN_XCTHREAD_H

/// @file
/// Critical sections and worker threads.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>

/// A recursive lock that does nothing until it is initialised. Initialize and Delete belong to one thread while no
/// other uses the section. Throws nothing.
class OVWCMN_API XCCriticalSection {
public:
    XCCriticalSection() = default;
    XCCriticalSection(const XCCriticalSection&) = delete;
    XCCriticalSection& operator=(const XCCriticalSection&) = delete;
    virtual ~XCCriticalSection();

    void Initialize();   ///< from now on it locks
    void Delete();       ///< from now on it does nothing
    void EnterSection(); ///< Waits while another thread is inside; entries nest.
    /// By the thread that entered, once for every entry.
    void LeaveSection();

private:
    std::recursive_mutex* m_section = nullptr;
    std::recursive_mutex m_storage;
};

/// Leaves the section that it entered when it goes out of scope.
class OVWCMN_API XCCriticalSectionAutoLeave {
public:
    XCCriticalSectionAutoLeave() = default;
    explicit XCCriticalSectionAutoLeave(XCCriticalSection* section) { Enter(section); } ///< enters it
    XCCriticalSectionAutoLeave(const XCCriticalSectionAutoLeave&) = delete;
    XCCriticalSectionAutoLeave& operator=(const XCCriticalSectionAutoLeave&) = delete;
    virtual ~XCCriticalSectionAutoLeave();

    /// Null is ignored. A section already held is left first.
    void Enter(XCCriticalSection* section);
    void Leave(); ///< nothing when none is held

private:
    XCCriticalSection* m_section = nullptr;
};

namespace ovw::foundation {
struct ThreadState;
}

/// A worker thread: derive, override RunThread, call CreateThread. The owner keeps the object alive until the body has
/// returned (WaitForSignal); an exception that leaves the body ends the program. Failures are answered, not thrown.
/// Everything is called by the owning thread, except Sleep and Abort (the worker) and WakeUp (any thread).
class OVWCMN_API XCThread {
public:
    using AbortProc = int (*)(); ///< 1: the worker is to stop

    XCThread();
    XCThread(const XCThread&) = delete;
    XCThread& operator=(const XCThread&) = delete;
    /// Neither waits for the thread nor stops it.
    virtual ~XCThread();

    /// Starts the body with `param`; 1 when a thread was started. A thread still held is closed first.
    int CreateThread(void* param);
    int IsCreateThread() const; ///< 1 while a thread is held
    /// Lets go of the thread, which runs on; a Sleep under way ends. 1, also when there was none.
    int CloseThread();
    /// Waits for WakeUp, at most `ms` milliseconds (0xFFFFFFFF: without limit). 1 when the time ran out, 0 when woken
    /// or when there is no event to wait for.
    int Sleep(std::uint32_t ms);
    /// Ends one Sleep, now or the next.
    void WakeUp();
    /// Waits for the body to return; WAIT_OBJECT_0, 128 when there is no thread, 0xFFFFFFFF in the worker itself.
    std::uint32_t WaitForSignal();
    void SetAbortProc(AbortProc proc); ///< null takes it back
    /// The answer of the procedure, 0 when none is set.
    int Abort();

protected:
    /// The body; its result is the thread's exit code.
    virtual std::uint32_t RunThread(void* param);

private:
    std::shared_ptr<ovw::foundation::ThreadState> state() const;
    void run(void* param);

    mutable std::mutex m_guard;
    std::shared_ptr<ovw::foundation::ThreadState> m_state;
    void* m_param = nullptr;
    std::atomic<AbortProc> m_abortProc = nullptr;
};

#endif // OVWCMN_XCTHREAD_H
