// What happens when the system has no memory left for tips and strokes.

#include "ovwcmn/xcpattern.h"
#include "ovwcmn/xcpatterndraw.h"
#include "support/failingmemory.h"
#include "support/testimage.h"

#include <memory>

namespace {

using namespace ovw::test;

TEST(BrushNoMemory, IsErrorEight) {
    TestStore store;
    TestImage image(store, 32, 64, 64);
    image->RectFill(XCRect(3, 3, 40, 40), 0, 0xFF0000FF);
    std::unique_ptr<XCImagePattern> tip;
    failEachAllocation(
        "tip", [&] { tip = std::make_unique<XCImagePattern>(); }, [&] { tip->ImportPatternOffscreen(image.get()); });
    failEachAllocation(
        "method", [] {},
        [&] {
            XCPatternDrawMethod method;
            method.BeginMethod();
        });
}

} // namespace
