#include "ovwcmn/vxwutl.h"

#include "Platform/systemerror.h"
#include "Platform/text.h"
#include "Utility/encoding.h"
#include "Utility/hooks.h"
#include "Utility/librarystrings.h"

#include <cstring>
#include <new>
#include <optional>
#include <string>

namespace platform = ovw::platform;
namespace utility = ovw::utility;

namespace {

// Its address is the library's module.
char s_libraryModule = 0;

// In the language in effect, or in English when the code page cannot hold that (or memory is short).
int loadLibraryString(std::uint32_t id, char* buffer, int size) {
    const utility::LibraryString* const entry = utility::findLibraryString(id);
    if (!entry)
        return 0;
    if (vxGetLanguage() == platform::cnLanguageJapanese) {
        try {
            if (const std::optional<std::string> text = utility::utf8ToCodePage(entry->japanese))
                return utility::copyCut(buffer, size, text->c_str());
        } catch (const std::bad_alloc&) {
            vxSetLastError(platform::cnErrorNotEnoughMemory);
        }
    }
    return utility::copyCut(buffer, size, entry->english);
}

} // namespace

HINSTANCE vxGetLibraryModule() { return reinterpret_cast<HINSTANCE>(&s_libraryModule); }

int vxLoadString(HINSTANCE module, std::uint32_t id, std::uint32_t selector, char* buffer, int size) {
    if (!buffer || size < 1)
        return 0;
    buffer[0] = '\0';
    if (module == vxGetLibraryModule())
        return loadLibraryString(id, buffer, size);
    utility::hooks().loadString(id, selector, buffer, size);
    buffer[size - 1] = '\0';
    return static_cast<int>(std::strlen(buffer));
}
