#include "ovwcmn/xcexception.h"

#include "Utility/encoding.h"
#include "Utility/hooks.h"
#include "ovwcmn/vxwutl.h"

#include <cstdio>
#include <thread>

using namespace ovw::foundation;
using ovw::utility::copyCut;

XCException::XCException() { describe(); }

XCException::XCException(const char* file, int line, int code, std::uint32_t alertID, const char* p1, const char* p2,
                         const char* p3, const char* p4, const char* p5)
    : m_code(code) {
    setPlace(file, line);
    m_alert.SetAlertID(alertID, code, p1, p2, p3, p4, p5);
    describe();
}

XCException::XCException(int code, std::uint32_t alertID, const char* p1, const char* p2, const char* p3,
                         const char* p4, const char* p5, SourcePlace where)
    : XCException(where.file, where.line, code, alertID, p1, p2, p3, p4, p5) {}

XCException::XCException(const char* file, int line, int code, const XCAlert& alert) : m_code(code), m_alert(alert) {
    setPlace(file, line);
    describe();
}

XCException::XCException(int code, const XCAlert& alert, SourcePlace where)
    : XCException(where.file, where.line, code, alert) {}

XCException::XCException(XCStringResource* resource, const XCAlert& alert, SourcePlace where)
    : m_code(cnCodeNone), m_alert(alert), m_resource(resource) {
    setPlace(where.file, where.line);
    describe();
}

XCException::~XCException() = default;

void XCException::setPlace(const char* file, int line) {
    copyCut(m_file, cnFileSize, file ? file : "");
    m_line = line;
}

void XCException::describe() noexcept {
    m_alert.buildMessage(m_what, m_resource);
    if (!m_what[0])
        std::snprintf(m_what, sizeof(m_what), "error 0x%08X", static_cast<unsigned int>(m_code));
}

void xcThrowError(int code, std::uint32_t alertID, const char* p1, const char* p2, const char* p3, const char* p4,
                  const char* p5, SourcePlace where) {
    throw XCException(code, alertID, p1, p2, p3, p4, p5, where);
}

void xcThrowError(int code, const XCAlert& alert, SourcePlace where) { throw XCException(code, alert, where); }

void xcThrowError(XCStringResource* resource, const XCAlert& alert, SourcePlace where) {
    throw XCException(resource, alert, where);
}

void xcThrowError(XCStringResource* resource, std::uint32_t alertID, const char* p1, const char* p2, const char* p3,
                  const char* p4, const char* p5, SourcePlace where) {
    XCAlert alert;
    alert.SetAlertID(alertID, cnCodeNone, p1, p2, p3, p4, p5);
    throw XCException(resource, alert, where);
}

XCAbort::Callback XCAbort::s_pAbort = nullptr;

namespace {

constexpr int cnAnswerAbort = 1;
constexpr int cnAnswerUndecided = 2;

} // namespace

int XCAbort::ask() const {
    if (s_pAbort)
        return s_pAbort();
    return (m_useEx ? vxAbortEx() : vxAbort()) != 0 ? cnAnswerAbort : 0;
}

int XCAbort::CheckAbort() const {
    int answer = ask();
    while (answer == cnAnswerUndecided) {
        ovw::utility::hooks().pumpPaint();
        std::this_thread::yield();
        answer = ask();
    }
    if (answer == cnAnswerAbort && m_throwOnAbort)
        xcThrowError(cnCodeCancelled);
    return answer == cnAnswerAbort;
}
