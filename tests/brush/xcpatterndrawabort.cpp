#include "ovwcmn/ovwhooks.h"
#include "ovwcmn/xcpatterndraw.h"

#include "studio.h"
#include "support/scopes.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace ovw::test;

std::vector<std::string>& messages() {
    static std::vector<std::string> s_messages;
    return s_messages;
}

int s_questionsLeft = 0;

int askCounting() { return s_questionsLeft-- > 0; }

/// An engine that stamps at (100, 100), (108, 100), ..., and notes the debugger's messages.
struct Stoppable : Studio {
    Stoppable() : Studio(8) {
        messages().clear();
        brush.SetDesignatedPattern(&tip);
        brush.SetSizeParam({10, 0, 0});
        brush.SetIntervalParam({1, 8, 8, 0, 3});
        stroke = polyline({penAt(100, 100), penAt(228, 100), penAt(356, 100)});
    }

    /// The stroke has stopped after `stamps` stamps: it stays so until it is begun again.
    void expectStopped(std::size_t stamps, const XCRect& changed) {
        EXPECT_EQ(tip.stamps.size(), stamps);
        EXPECT_EQ(changed, stamps == 0 ? XCRect() : XCRect(99, 99, 94 + 8 * int(stamps), 102));
        EXPECT_EQ(engine.IsDrawing(), 1);
        XCRect later(1, 2, 3, 4);
        const XCStrokePoint point = penAt(5, 5);
        EXPECT_EQ(engine.DrawStroke(&later, &stroke, 1), 0);
        EXPECT_EQ(later, XCRect());
        EXPECT_EQ(engine.DrawSinglePattern(nullptr, &point, 0), 0);
        EXPECT_EQ(tip.stamps.size(), stamps);
        engine.EndDraw(&later);
        EXPECT_EQ(later, changed);
        EXPECT_EQ(messages(), std::vector<std::string>{"A stroke was stopped.\n"});
        EXPECT_EQ(engine.GetStopCode(), 0x20010004);
    }

    /// The engine draws again.
    void expectUsable() {
        engine.SetAbortProc(nullptr);
        engine.SetAbortFlag(nullptr);
        tip.stamps.clear();
        tip.whenStamped = nullptr;
        begin();
        EXPECT_EQ(engine.DrawStroke(nullptr, &stroke, 0), 1);
        engine.EndDraw(nullptr);
        EXPECT_EQ(tip.stamps.size(), 32u);
        EXPECT_EQ(messages().size(), 1u);
    }

    RecordingTip tip;
    XCLinerStroke stroke;

private:
    static VXHOOKS noting() {
        VXHOOKS hooks{};
        hooks.debugMessage = [](const char* text) { messages().push_back(text); };
        return hooks;
    }
    HooksScope m_hooks{noting()};
};

TEST(XCPatternDrawAbort, ProcedureIsAskedAPairAndAPosition) {
    // The first question is the pair's; then sixteen positions and the next pair.
    for (const auto& [questions, stamps] : {std::pair{0, 0}, {1, 0}, {2, 1}, {5, 4}, {17, 16}, {18, 16}, {19, 17}}) {
        Stoppable studio;
        s_questionsLeft = questions;
        studio.engine.SetAbortProc(askCounting);
        studio.begin();
        XCRect changed;
        EXPECT_EQ(studio.engine.DrawStroke(&changed, &studio.stroke, 0), int(stamps > 0));
        studio.expectStopped(std::size_t(stamps), changed);
        studio.expectUsable();
    }
}

TEST(XCPatternDrawAbort, FlagStopsBeforeTheNextPosition) {
    Stoppable studio;
    std::int32_t flag = 0;
    studio.engine.SetAbortFlag(&flag);
    studio.tip.whenStamped = [&] { flag = int(studio.tip.stamps.size() == 3) ? -1 : 0; };
    studio.begin();
    XCRect changed;
    EXPECT_EQ(studio.engine.DrawStroke(&changed, &studio.stroke, 0), 1);
    studio.expectStopped(3, changed);
    studio.expectUsable();
}

TEST(XCPatternDrawAbort, ProcessAbortStopsDuringAndBetweenCalls) {
    Stoppable during;
    during.tip.whenStamped = [&] { during.engine.ProcessAbort(); };
    during.begin();
    XCRect changed;
    during.engine.DrawStroke(&changed, &during.stroke, 0);
    during.expectStopped(1, changed);
    during.expectUsable();

    Stoppable between;
    between.begin();
    between.engine.ProcessAbort();
    between.engine.DrawStroke(&changed, &between.stroke, 1);
    between.expectStopped(0, changed);
    XCTArray<XCStrokePoint> vertices;
    between.stroke.CreateVertex(vertices, nullptr, 0);
    EXPECT_EQ(vertices.GetSize(), 3) << "the samples stay in the stroke";
    between.expectUsable();
}

TEST(XCPatternDrawAbort, RestartingTakesTheStopBack) {
    Stoppable studio;
    studio.begin();
    studio.engine.ProcessAbort();
    studio.engine.ReStartDraw();
    EXPECT_EQ(studio.engine.DrawStroke(nullptr, &studio.stroke, 0), 1);
    EXPECT_EQ(studio.tip.stamps.size(), 32u);
    studio.engine.EndDraw(nullptr);
    EXPECT_TRUE(messages().empty());
}

TEST(XCPatternDrawAbort, ExceptionsStayInside) {
    Stoppable studio;
    studio.tip.whenStamped = [&] {
        if (studio.tip.stamps.size() == 2)
            xcThrowError(8);
    };
    studio.begin();
    XCRect changed;
    EXPECT_NO_THROW(studio.engine.DrawStroke(&changed, &studio.stroke, 0));
    EXPECT_EQ(studio.engine.DrawStroke(&changed, &studio.stroke, 0), 0);
    studio.engine.EndDraw(nullptr);
    EXPECT_EQ(messages().size(), 1u);
    studio.expectUsable();
}

TEST(XCPatternDrawAbort, ForeignExceptionsLeaveNoVerticesBehind) {
    Stoppable studio;
    studio.tip.whenStamped = [&] {
        if (studio.tip.stamps.size() == 3)
            throw std::runtime_error("of the application's tip");
    };
    studio.begin();
    EXPECT_THROW(studio.engine.DrawStroke(nullptr, &studio.stroke, 1), std::runtime_error);
    XCLinerStroke later = polyline({penAt(300, 200), penAt(300, 204)});
    studio.tip.stamps.clear();
    studio.tip.whenStamped = nullptr;
    studio.engine.DrawStroke(nullptr, &later, 1);
    for (const RecordingTip::Stamp& stamp : studio.tip.stamps)
        EXPECT_EQ(stamp.x, 300) << "nothing of the first stroke is drawn again";
    XCRect all;
    studio.engine.EndDraw(&all);
    EXPECT_EQ(all.left, 99) << "what was painted before counts";
}

TEST(XCPatternDrawAbortThread, AnotherThreadMaySetTheFlag) {
    Stoppable studio;
    std::int32_t flag = 0;
    std::atomic<bool> hasBegun{false};
    studio.engine.SetAbortFlag(&flag);
    studio.tip.whenStamped = [&] {
        hasBegun = true;
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    };
    studio.stroke = polyline({penAt(0, 0), penAt(1e7, 0)});
    std::thread stopper([&] {
        while (!hasBegun)
            std::this_thread::yield();
        std::atomic_ref<std::int32_t>(flag).store(1);
    });
    studio.begin();
    EXPECT_EQ(studio.engine.DrawStroke(nullptr, &studio.stroke, 0), 1);
    stopper.join();
    EXPECT_GE(studio.tip.stamps.size(), 1u);
    EXPECT_LT(studio.tip.stamps.size(), 1000000u);
    studio.engine.EndDraw(nullptr);
    EXPECT_EQ(messages().size(), 1u);
}

} // namespace
