#include "vimage/storelocks.h"

#include "foundation/nomemory.h"

namespace ovw::vimage {

XCCriticalSection& librarySection() {
    static XCCriticalSection& s_section = []() -> XCCriticalSection& {
        auto* const section = foundation::orNoMemory([] { return new XCCriticalSection; });
        section->Initialize();
        return *section;
    }();
    return s_section;
}

} // namespace ovw::vimage
