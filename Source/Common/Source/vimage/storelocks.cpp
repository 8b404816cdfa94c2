#include "vimage/storelocks.h"

namespace ovw::vimage {

XCCriticalSection& librarySection() {
    static XCCriticalSection& s_section = []() -> XCCriticalSection& {
        auto* const section = new XCCriticalSection;
        section->Initialize();
        return *section;
    }();
    return s_section;
}

} // namespace ovw::vimage
