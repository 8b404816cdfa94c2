// What the stages of a row cost on top of a plain fill: the soft falloff, a mask, a texture. One block, row by row,
// beside memcpy of its bytes.

#include "canvas.h"
#include "duel.h"

#include <ovwcmn/xcfastpixelmixer.h>
#include <ovwcmn/xcplotgauss.h>
#include <ovwcmn/xcvoffscreenlock.h>

#include <functional>

namespace {

using Mixer = XCFastPixelMixer;

constexpr int cnSide = XCVOffscreen::cnBlockSize;

/// What a stage needs beside the mixer.
class Stage {
public:
    explicit Stage(ovwbench::Canvas& canvas) : m_texels(cnTexels * cnTexels) {
        m_cache.Create(&canvas.store(), cnSide, cnSide, 72.0);
        m_before.Create(&canvas.store(), cnSide, cnSide, 72.0);
        canvas.copyFirstPixelsTo(m_before);
        m_mask.Create(&canvas.store(), cnSide, cnSide, 72.0);
        for (std::size_t i = 0; i < m_texels.size(); i++)
            m_texels[i] = static_cast<std::uint8_t>(i * 37);
        XCVOffscreenAutoLock mask(&m_mask, 0, 0, 1);
        m_mask.RectFill(m_mask.GetRect(), 0, 0x90);
    }

    void setHard(Mixer&) {}
    void setSoftLine(Mixer& mixer) { setSoft(mixer, 0); }
    void setSoftTable(Mixer& mixer) { setSoft(mixer, 1); }
    void setMask(Mixer& mixer) { mixer.SetMask(&m_mask, XCPoint(0, 0)); }
    void setCacheOver(Mixer& mixer) {
        mixer.SetCacheOffscreen(&m_cache);
        mixer.SetCompositeOffscreen(&m_before);
        mixer.SetStyleFlag(Mixer::STYLE_CACHE_OVER, 1);
        mixer.SetCacheAlpha(0.5f);
    }
    void setTexture(Mixer& mixer) {
        setCacheOver(mixer);
        mixer.SetTexture(m_texels.data(), cnTexels, cnTexels, XCPoint(0, 0), 60, 1);
    }

    void restore() { ovwbench::clearBlocks(m_cache); }

    void paint(ovwbench::Canvas& canvas, Mixer& mixer) {
        XCVOffscreenAutoLock target(&canvas.image(), 0, 0, 1);
        XCVOffscreenAutoLock cache(&m_cache, 0, 0, 1);
        XCVOffscreenAutoLock before(&m_before, 0, 0, 0);
        XCVOffscreenAutoLock mask(&m_mask, 0, 0, 0);
        mixer.MoveCursorToBlock(0, 0);
        for (int y = 0; y < cnSide; y++)
            mixer.DoLineRow(0, cnSide - 1, y);
    }

private:
    static constexpr int cnTexels = 64;

    void setSoft(Mixer& mixer, int allowTable) {
        mixer.SetStyleFlag(Mixer::STYLE_GAUSS, 1);
        mixer.SetPlotGauss(&m_gauss);
        m_gauss.StartPlot({cnSide / 2.0, cnSide / 2.0}, cnSide / 2.0f, cnSide / 2.0f, 0.5f, 1, allowTable);
    }

    XCVOffscreen16Bit m_cache;
    XCVOffscreen32Bit m_before;
    XCVOffscreen8Bit m_mask;
    std::vector<std::uint8_t> m_texels;
    XCPlotGauss m_gauss;
};

struct Setting {
    const char* name;
    void (Stage::*set)(Mixer&);
};

constexpr Setting cnSettings[] = {
    {"hard", &Stage::setHard},
    {"soft by line", &Stage::setSoftLine},
    {"soft by table", &Stage::setSoftTable},
    {"mask of 8 bits", &Stage::setMask},
    {"cache", &Stage::setCacheOver},
    {"cache and texture", &Stage::setTexture},
};

void paintRows(benchmark::State& state, const Setting& setting) {
    ovwbench::Canvas canvas(cnSide);
    ovwbench::PlainMemory plain(std::size_t{cnSide} * cnSide * 4);
    Stage stage(canvas);
    Mixer mixer;
    mixer.SetDstOffscreen(&canvas.image());
    mixer.SetDrawCompositioin(Mixer::Normal);
    mixer.SetColor(0xFF1E50C8);
    mixer.SetMixAlpha(0.5f);
    (stage.*setting.set)(mixer);
    ovwbench::Duel duel;
    duel.unit = "Mpixel";
    duel.amount = canvas.megapixels();
    duel.work = [&] { stage.paint(canvas, mixer); };
    duel.limitName = "memcpy";
    duel.limit = [&] { plain.copy(); };
    duel.restore = [&] {
        canvas.restore();
        stage.restore();
    };
    ovwbench::run(state, duel);
}

const bool s_added = [] {
    for (const Setting& setting : cnSettings)
        ovwbench::add("row/" + std::string(setting.name),
                      [&setting](benchmark::State& state) { paintRows(state, setting); });
    return true;
}();

} // namespace
