#include "ovwcmn/xcoffscreenlock.h"

#include "ovwcmn/xcoffscreen.h"

XCStLockOff::XCStLockOff(XCOffscreen* image) { Lock(image); }

void XCStLockOff::Lock(XCOffscreen* image) {
    Unlock();
    if (image)
        image->Lock();
    m_image = image;
}

void XCStLockOff::Unlock() {
    if (m_image)
        m_image->Unlock();
    m_image = nullptr;
}
