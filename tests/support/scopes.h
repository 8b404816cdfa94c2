#ifndef OVW_TESTS_SUPPORT_SCOPES_H
#define OVW_TESTS_SUPPORT_SCOPES_H

#include "ovwcmn/ovwhooks.h"
#include "ovwcmn/vxwutl.h"
#include "ovwcmn/xcexception.h"
#include "support/tempfolder.h"

#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>

#include <unistd.h>

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

/// An ordinary user's rights for a test that root runs; an ordinary user keeps his own.
class OrdinaryUserScope {
public:
    OrdinaryUserScope() : m_isRoot(::geteuid() == 0) {
        constexpr uid_t nobody = 65534;
        if (m_isRoot && (::setegid(nobody) != 0 || ::seteuid(nobody) != 0))
            throw std::runtime_error("root keeps its rights");
    }
    ~OrdinaryUserScope() {
        if (m_isRoot && (::seteuid(0) != 0 || ::setegid(0) != 0))
            std::abort();
    }
    OrdinaryUserScope(const OrdinaryUserScope&) = delete;

private:
    bool m_isRoot;
};

/// A decimal comma in the numbers that the C library prints and reads; the "C" locale afterwards. Of the system it
/// needs localedef, but no locale.
class DecimalCommaScope {
public:
    DecimalCommaScope() {
        std::ofstream(m_folder.posix("source")) << "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \".\"\n"
                                                   "grouping 3;3\nEND LC_NUMERIC\n";
        // It complains about what the source does not define, and makes the locale.
        const std::string command = "cd '" + m_folder.posix().string() + "' && localedef -c -i source ./comma";
        std::ignore = std::system((command + " > /dev/null 2>&1").c_str());
        ::setenv("LOCPATH", m_folder.posix().c_str(), 1);
        m_hasComma = std::setlocale(LC_NUMERIC, "comma") != nullptr;
    }
    ~DecimalCommaScope() {
        std::setlocale(LC_NUMERIC, "C");
        ::unsetenv("LOCPATH");
    }
    DecimalCommaScope(const DecimalCommaScope&) = delete;

    bool hasComma() const { return m_hasComma; }

private:
    TempFolder m_folder;
    bool m_hasComma = false;
};

/// A variable of the environment, unset again afterwards.
class EnvironmentScope {
public:
    EnvironmentScope(const char* name, const std::string& value) : m_name(name) { setenv(name, value.c_str(), 1); }
    ~EnvironmentScope() { unsetenv(m_name); }
    EnvironmentScope(const EnvironmentScope&) = delete;

private:
    const char* m_name;
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
