#include "sparsecanvas.h"

#include "canvas.h"

#include <ovwcmn/xcvirtualmemory.h>
#include <ovwcmn/xcvoffscreenlock.h>

#include <cstring>

namespace ovwbench {

SparseCanvas::SparseCanvas(int side, int step) {
    m_image.Create(xcGetVirtualMemory(), side, side, 72.0);
    const std::vector<std::uint32_t> pixels = variedPixels(cnBlock, cnBlock);
    XCVOffscreenAutoLock lock(&m_image, 1);
    const int across = side / cnBlock;
    for (int i = 0; i < across * across; i += step) {
        m_image.MoveCursor(i % across * cnBlock, i / across * cnBlock);
        std::memcpy(m_image.GetBaseAddress(), pixels.data(), cnBlockBytes);
        m_image.GetBaseAddress()[i % 4096] ^= 0x55;
        m_blocks.emplace_back(m_image.GetBaseAddress(), m_image.GetBaseAddress() + cnBlockBytes);
    }
}

SparseCanvas::~SparseCanvas() { m_image.Destroy(); }

} // namespace ovwbench
