#include "store.h"

#include "failure.h"

#include "ovwcmn/xcfilepath.h"
#include "ovwcmn/xcvirtualmemory.h"

#include <filesystem>

namespace ovwpaint {

Store::Store(int memoryMiB, const std::string& folder) {
    constexpr int cnMiBShift = 20;
    const std::uint32_t budget = static_cast<std::uint32_t>(memoryMiB) << cnMiBShift;
    if (folder.empty()) {
        xcGetVirtualMemory()->Create(budget, nullptr, 1);
        return;
    }
    if (!std::filesystem::is_directory(folder))
        throw Failure(folder + ": no such folder for the swap file");
    XCFilePath path = xcPathFromPosix((std::filesystem::absolute(folder) / "").c_str());
    xcGetVirtualMemory()->Create(budget, &path, 1);
}

Store::~Store() { xcGetVirtualMemory()->Destroy(); }

} // namespace ovwpaint
