#ifndef OVW_TESTS_SUPPORT_SCOPES_H
#define OVW_TESTS_SUPPORT_SCOPES_H

#include "ovwcmn/ovwhooks.h"
#include "ovwcmn/vxwutl.h"
#include "ovwcmn/xcexception.h"

#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <stdexcept>
#include <string>
#include <utility>

/// @file
/// Settings of the process that a test changes for as long as a scope lasts, and the code of a thrown error.

namespace ovw::test {

/// The code page, UTF-8 again afterwards.
class CodePageScope {
public:
    explicit CodePageScope(std::uint32_t page) {
        if (!vxSetCodePage(page))
            throw std::runtime_error("no code page " + std::to_string(page));
    }
    ~CodePageScope() { vxSetCodePage(65001); }
    CodePageScope(const CodePageScope&) = delete;
};

/// The language of messages, the user's own again afterwards.
class LanguageScope {
public:
    explicit LanguageScope(std::uint32_t language) { vxSetLanguage(language); }
    ~LanguageScope() { vxSetLanguage(0); }
    LanguageScope(const LanguageScope&) = delete;
};

/// The application's hooks, the defaults again afterwards.
class HooksScope {
public:
    explicit HooksScope(const VXHOOKS& hooks) { xcSetHooks(&hooks); }
    ~HooksScope() { xcSetHooks(nullptr); }
    HooksScope(const HooksScope&) = delete;
};

/// The local time zone as a POSIX rule ("JST-9"), UTC afterwards.
class TimeZoneScope {
public:
    explicit TimeZoneScope(const char* rule) { set(rule); }
    ~TimeZoneScope() { set("UTC0"); }
    TimeZoneScope(const TimeZoneScope&) = delete;

private:
    static void set(const char* rule) {
        setenv("TZ", rule, 1);
        tzset();
    }
};

/// The error code that `operation` throws, 0 when it throws nothing.
template <class Operation>
int errorOf(Operation&& operation) {
    try {
        std::forward<Operation>(operation)();
    } catch (const XCException& error) {
        return error.GetErrorCode();
    }
    return 0;
}

} // namespace ovw::test

#endif // OVW_TESTS_SUPPORT_SCOPES_H
