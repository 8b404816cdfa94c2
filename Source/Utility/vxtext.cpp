#include "ovwcmn/vxwutl.h"

#include "Platform/text.h"

#include <atomic>

namespace platform = ovw::platform;

namespace {

std::atomic<std::uint32_t> s_language = 0; // 0: the user's

} // namespace

int vxSetCodePage(std::uint32_t codePage) { return platform::setCodePage(codePage); }

std::uint32_t vxGetCodePage() { return platform::codePage(); }

void vxSetLanguage(std::uint32_t language) { s_language = language; }

std::uint32_t vxGetLanguage() {
    static const std::uint32_t s_userLanguage = platform::userLanguage();
    const std::uint32_t language = s_language;
    if (language == 0)
        return s_userLanguage;
    return language == platform::cnLanguageJapanese ? platform::cnLanguageJapanese : platform::cnLanguageEnglish;
}

int vxIsDoubleByteCheckEx(const char* text, int index) {
    return text && index >= 0 && platform::isTrailByte(text, static_cast<std::size_t>(index));
}

int vxIsOnlyNumberString(const char* text) {
    if (!text || !*text)
        return 0;
    for (; *text; ++text)
        if (*text < '0' || *text > '9')
            return 0;
    return 1;
}
