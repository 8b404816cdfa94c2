#include "ovwcmn/xcthread.h"

#include "ovwcmn/ovwhooks.h"
#include "support/scopes.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

namespace {

using ovw::test::HooksScope;

constexpr std::uint32_t cnMinute = 60000;
constexpr std::uint32_t cnNoThread = 128;

class Worker : public XCThread {
public:
    explicit Worker(std::function<void(Worker&, void*)> body) : m_body(std::move(body)) {}
    ~Worker() override { WaitForSignal(); }

protected:
    std::uint32_t RunThread(void* param) override {
        m_body(*this, param);
        return 0;
    }

private:
    std::function<void(Worker&, void*)> m_body;
};

TEST(XCThread, RunsItsBodyOnce) {
    std::atomic<void*> seen = nullptr;
    std::atomic<std::thread::id> id;
    Worker worker([&](Worker&, void* param) {
        seen = param;
        id = std::this_thread::get_id();
    });
    EXPECT_EQ(worker.IsCreateThread(), 0);
    EXPECT_EQ(worker.WaitForSignal(), cnNoThread);
    EXPECT_EQ(worker.CreateThread(&seen), 1);
    EXPECT_EQ(worker.IsCreateThread(), 1);
    EXPECT_EQ(worker.WaitForSignal(), WAIT_OBJECT_0);
    EXPECT_EQ(worker.WaitForSignal(), WAIT_OBJECT_0);
    EXPECT_EQ(seen, &seen);
    EXPECT_NE(id.load(), std::this_thread::get_id());
    EXPECT_EQ(worker.IsCreateThread(), 1);
    EXPECT_EQ(worker.CloseThread(), 1);
    EXPECT_EQ(worker.IsCreateThread(), 0);
    EXPECT_EQ(worker.CloseThread(), 1);
    EXPECT_EQ(worker.CreateThread(nullptr), 1);
    worker.WaitForSignal();
    EXPECT_EQ(seen, nullptr);
}

TEST(XCThread, WakeUpEndsASleep) {
    std::atomic<int> sleeps = 0;
    Worker worker([&](Worker& self, void*) {
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(self.Sleep(cnMinute), 0);
            ++sleeps;
        }
    });
    ASSERT_EQ(worker.CreateThread(nullptr), 1);
    for (int i = 1; i <= 3; ++i) {
        worker.WakeUp();
        while (sleeps < i)
            std::this_thread::yield();
    }
    worker.WaitForSignal();
}

TEST(XCThread, SleepTakesTheSignalAndRunsOutWithoutOne) {
    Worker worker([](Worker& self, void*) {
        EXPECT_EQ(self.Sleep(0), 1);
        self.WakeUp();
        self.WakeUp(); // signals do not add up
        EXPECT_EQ(self.Sleep(0), 0);
        EXPECT_EQ(self.Sleep(0), 1);
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(self.Sleep(20), 1);
        EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(19));
    });
    EXPECT_EQ(worker.Sleep(cnMinute), 0); // there is no event yet
    worker.WakeUp();
    ASSERT_EQ(worker.CreateThread(nullptr), 1);
    worker.WaitForSignal();
}

TEST(XCThread, WakeUpMayComeFromAnyThreadAtAnyTime) {
    Worker worker([](Worker& self, void*) { self.Sleep(cnMinute); });
    std::atomic<bool> isOver = false;
    std::thread waker([&] {
        while (!isOver)
            worker.WakeUp();
    });
    for (int i = 0; i < 50; ++i) {
        EXPECT_EQ(worker.CreateThread(nullptr), 1);
        EXPECT_EQ(worker.WaitForSignal(), WAIT_OBJECT_0);
        worker.CloseThread();
    }
    isOver = true;
    waker.join();
}

std::atomic<int> s_begun = 0;
std::atomic<int> s_ended = 0;

VXHOOKS countingHooks() {
    s_begun = s_ended = 0;
    VXHOOKS hooks{};
    hooks.threadBegin = [] { ++s_begun; };
    hooks.threadEnd = [] { ++s_ended; };
    return hooks;
}

TEST(XCThread, AClosedThreadRunsOn) {
    const HooksScope scope(countingHooks());
    std::atomic<bool> isOver = false;
    Worker worker([&](Worker& self, void*) {
        self.Sleep(cnMinute);
        isOver = true;
    });
    ASSERT_EQ(worker.CreateThread(nullptr), 1);
    EXPECT_EQ(worker.CloseThread(), 1);
    EXPECT_EQ(worker.WaitForSignal(), cnNoThread);
    while (!s_ended)
        std::this_thread::yield();
    EXPECT_TRUE(isOver);
}

TEST(XCThread, AbortAsksTheOwnersProcedure) {
    static std::atomic<int> s_answer = 0;
    s_answer = 0;
    Worker worker([](Worker& self, void*) {
        EXPECT_EQ(s_begun, 1);
        while (!self.Abort())
            self.Sleep(1);
        EXPECT_EQ(self.Abort(), 7);
        EXPECT_EQ(s_ended, 0);
    });
    EXPECT_EQ(worker.Abort(), 0);
    worker.SetAbortProc([] { return s_answer.load(); });
    const HooksScope scope(countingHooks());
    ASSERT_EQ(worker.CreateThread(nullptr), 1);
    s_answer = 7;
    EXPECT_EQ(worker.WaitForSignal(), WAIT_OBJECT_0);
    EXPECT_EQ(s_begun, 1);
    EXPECT_EQ(s_ended, 1);
}

/// Another thread that enters the section when it can, and leaves it again.
class Visitor {
public:
    explicit Visitor(XCCriticalSection& section)
        : m_thread([this, &section] {
              section.EnterSection();
              m_isIn = true;
              section.LeaveSection();
          }) {}
    ~Visitor() { m_thread.join(); }

    /// However long a busy machine takes for it.
    bool getsIn() const { return isInWithin(std::chrono::minutes(1)); }
    bool staysOut() const { return !isInWithin(std::chrono::milliseconds(30)); }

private:
    bool isInWithin(std::chrono::milliseconds time) const {
        const auto end = std::chrono::steady_clock::now() + time;
        while (!m_isIn && std::chrono::steady_clock::now() < end)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return m_isIn;
    }

    std::atomic<bool> m_isIn = false;
    std::thread m_thread;
};

TEST(XCCriticalSection, GuardsACounter) {
    XCCriticalSection section;
    section.Initialize();
    section.Initialize();
    int count = 0;
    const auto work = [&] {
        for (int i = 0; i < 50000; ++i) {
            const XCCriticalSectionAutoLeave outer(&section);
            const XCCriticalSectionAutoLeave inner(&section);
            ++count;
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(count, 100000);
}

TEST(XCCriticalSection, IsLeftAsOftenAsEntered) {
    XCCriticalSection section;
    section.Initialize();
    section.EnterSection();
    section.EnterSection();
    {
        const Visitor visitor(section);
        EXPECT_TRUE(visitor.staysOut());
        section.LeaveSection();
        EXPECT_TRUE(visitor.staysOut());
        section.LeaveSection();
    }
    EXPECT_TRUE(Visitor(section).getsIn());
}

TEST(XCCriticalSection, DoesNothingUnlessInitialised) {
    XCCriticalSection section;
    section.LeaveSection();
    section.EnterSection();
    EXPECT_TRUE(Visitor(section).getsIn());
    section.Initialize();
    section.Delete();
    section.Delete();
    section.EnterSection();
    EXPECT_TRUE(Visitor(section).getsIn());
}

TEST(XCCriticalSectionAutoLeave, HoldsOneSectionAtATime) {
    XCCriticalSection first, second;
    first.Initialize();
    second.Initialize();
    XCCriticalSectionAutoLeave guard;
    guard.Enter(nullptr);
    guard.Leave();
    guard.Enter(&first);
    guard.Enter(&second);
    EXPECT_TRUE(Visitor(first).getsIn());
    guard.Enter(nullptr);
    {
        const Visitor visitor(second);
        EXPECT_TRUE(visitor.staysOut());
        guard.Leave();
    }
    guard.Leave();
    EXPECT_TRUE(Visitor(second).getsIn());
}

} // namespace
