#include "ovwcmn/xcvoffscreenlock.h"

#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcvoffscreen.h"

namespace {

constexpr int cnNoPixel = -1;

} // namespace

XCVOffscreenAutoLock::XCVOffscreenAutoLock(XCVOffscreen* image, int edit) { Lock(image, edit); }

XCVOffscreenAutoLock::XCVOffscreenAutoLock(XCVOffscreen* image, int x, int y, int edit) { Lock(image, x, y, edit); }

XCVOffscreenAutoLock::~XCVOffscreenAutoLock() { release(); }

void XCVOffscreenAutoLock::Lock(XCVOffscreen* image, int edit) { Lock(image, cnNoPixel, cnNoPixel, edit); }

void XCVOffscreenAutoLock::Lock(XCVOffscreen* image, int x, int y, int edit) {
    release();
    if (!image)
        return;
    const bool wasLocked = image->GetLockCount() > 0;
    image->GetCursorPos(m_savedX, m_savedY);
    m_savedEditMode = image->GetEditMode();
    image->Lock(x, y, edit);
    m_image = image;
    m_restore = wasLocked;
}

void XCVOffscreenAutoLock::Unlock() {
    if (m_image)
        m_image->Unlock();
    m_image = nullptr;
    m_restore = false;
}

void XCVOffscreenAutoLock::release() {
    XCVOffscreen* const image = m_image;
    const bool restore = m_restore;
    Unlock();
    if (!restore)
        return;
    image->SetEditMode(m_savedEditMode);
    try {
        image->MoveCursor(m_savedX, m_savedY);
    } catch (const XCException&) {
        // The store failed: the outer lock goes on without a current block, and its next move asks the store again.
    }
}

XCVOffscreenParamLock::XCVOffscreenParamLock(XCVOffscreen* image, int transThreshold, int bwThreshold) {
    Lock(image, transThreshold, bwThreshold);
}

XCVOffscreenParamLock::~XCVOffscreenParamLock() { Unlock(); }

void XCVOffscreenParamLock::Lock(XCVOffscreen* image, int transThreshold, int bwThreshold) {
    Unlock();
    if (!image)
        return;
    m_image = image;
    m_savedTrans = image->GetMonoTransThreshold();
    m_savedBW = image->GetMonoBWThreshold();
    image->SetMonoTransThreshold(transThreshold);
    image->SetMonoBWThreshold(bwThreshold);
}

void XCVOffscreenParamLock::Unlock() {
    if (!m_image)
        return;
    m_image->SetMonoTransThreshold(m_savedTrans);
    m_image->SetMonoBWThreshold(m_savedBW);
    m_image = nullptr;
}

XCVOffscreenEditLock::XCVOffscreenEditLock(XCVOffscreen* image) { Lock(image); }

XCVOffscreenEditLock::~XCVOffscreenEditLock() { Unlock(); }

void XCVOffscreenEditLock::Lock(XCVOffscreen* image) {
    Unlock();
    if (!image)
        return;
    m_image = image;
    m_savedEditMode = image->GetEditMode();
    image->SetEditMode(0);
}

void XCVOffscreenEditLock::Unlock() {
    if (m_image)
        m_image->SetEditMode(m_savedEditMode);
    m_image = nullptr;
}
