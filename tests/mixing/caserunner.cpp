#include "caserunner.h"

#include <cmath>
#include <cstdlib>
#include <sstream>

namespace ovw::test {

namespace {

/// Pixels before the first one of the blur image that the mixer is shown, so that offsets may be negative.
constexpr int cnBlurColumn = 20;
constexpr int cnBlurRow = 5;

int bytesApart(std::uint32_t a, std::uint32_t b) {
    int most = 0;
    for (int shift = 0; shift < 32; shift += 8)
        most = std::max(most, std::abs(int(a >> shift & 255) - int(b >> shift & 255)));
    return most;
}

bool matches(std::uint32_t got, std::uint32_t expected, Match match, int depth) {
    if (got == expected || match == Match::any)
        return true;
    return match == Match::withinOne && depth >= 8 && bytesApart(got, expected) <= 1;
}

} // namespace

std::vector<mixing::InstructionSet> machineSets() {
    std::vector<mixing::InstructionSet> sets;
    mixing::InstructionSet best = mixing::instructionSet();
    for (auto set : {mixing::InstructionSet::Base, mixing::InstructionSet::Avx2, mixing::InstructionSet::Avx512})
        if (mixing::forceInstructionSet(set))
            sets.push_back(set);
    mixing::forceInstructionSet(best);
    return sets;
}

TestImage& ImagePool::load(Role role, const PlainImage& plain) {
    std::unique_ptr<TestImage>& image = m_images[{role, plain.depth}];
    if (!image)
        image = std::make_unique<TestImage>(m_store, plain.depth, plain.width, plain.height);
    write(*image, plain);
    return *image;
}

void ImagePool::write(TestImage& image, const PlainImage& plain) {
    image->SetResolution(plain.resolution);
    for (int index = 0; index < int(plain.blocks.size()); ++index)
        if (!plain.blocks[std::size_t(index)])
            image->DestroyBlock(index, 0);
    for (int y = 0; y < plain.height; ++y)
        for (int left = 0; left < plain.width; left += 256) {
            if (!plain.exists(left, y))
                continue;
            image.visitRow(left, std::min(left + 256, plain.width), y, 1,
                           [&](std::uint8_t* base, int column, int row, int x) {
                               storePixel(base, image->GetBlockRowBytes(), plain.depth, column, row, plain.at(x, y));
                           });
        }
}

LibraryMix::LibraryMix(TestStore& store, ImagePool& pool, const MixCase& mixCase) : m_case(mixCase) {
    setImages(store, pool);
    setHelpers(store);
    m_mixer.SetStyle(m_case.style);
    m_mixer.SetDrawCompositioin(m_case.composition);
    m_mixer.SetColor(m_case.color);
    m_mixer.SetSubColor(m_case.subColor);
    m_mixer.SetNotChangeAlpha(m_case.keepAlpha);
    m_mixer.SetPlotGauss(&m_plotter);
    m_mixer.SetColorAverage(&m_average);
}

void LibraryMix::lock(TestImage* image, int edit) {
    m_locks.push_back(std::make_unique<XCVOffscreenAutoLock>(image->get(), edit));
}

void LibraryMix::setImages(TestStore& store, ImagePool& pool) {
    m_destination = &pool.load(ImagePool::Role::destination, m_case.destination);
    lock(m_destination, 1);
    m_mixer.SetDstOffscreen(m_destination->get());
    if (m_case.cache) {
        m_cache = &pool.load(ImagePool::Role::cache, *m_case.cache);
        lock(m_cache, 1);
        m_mixer.SetCacheOffscreen(m_cache->get());
    }
    if (m_case.colorCache) {
        m_colorCache = &pool.load(ImagePool::Role::colorCache, *m_case.colorCache);
        lock(m_colorCache, 1);
        m_mixer.SetCacheColorOffscreen(m_colorCache->get());
    }
    if (m_case.composite) {
        TestImage& composite = pool.load(ImagePool::Role::composite, *m_case.composite);
        lock(&composite, 0);
        m_mixer.SetCompositeOffscreen(composite.get());
    }
    auto own = [&](const PlainImage& plain) {
        m_own.push_back(std::make_unique<TestImage>(store, plain.depth, plain.width, plain.height));
        ImagePool::write(*m_own.back(), plain);
        lock(m_own.back().get(), 0);
        return m_own.back()->get();
    };
    if (m_case.mask)
        m_mixer.SetMask(own(*m_case.mask), XCPoint(m_case.maskX, m_case.maskY));
    if (m_case.clone)
        m_mixer.SetCloneOffscreen(own(*m_case.clone), XCPoint(m_case.cloneX, m_case.cloneY));
}

void LibraryMix::setHelpers(TestStore& store) {
    if (m_case.texture) {
        const PlainTexture& texture = *m_case.texture;
        m_texels = texture.texels;
        m_mixer.SetTexture(m_texels.data(), texture.rowBytes, texture.height, XCPoint(texture.offsetX, texture.offsetY),
                           texture.density, texture.mode);
    }
    if (m_case.blur) {
        const PlainImage& blur = *m_case.blur;
        int rowBytes = blur.width * 4;
        m_blur.resize(std::size_t(rowBytes) * std::size_t(blur.height));
        for (int y = 0; y < blur.height; ++y)
            for (int x = 0; x < blur.width; ++x)
                storePixel(m_blur.data(), rowBytes, 32, x, y, blur.at(x, y));
        m_mixer.SetBlurImage(m_blur.data() + cnBlurRow * rowBytes + cnBlurColumn * 4, rowBytes,
                             XCPoint(m_case.cloneX - cnBlurColumn, m_case.cloneY - cnBlurRow));
    }
    if (m_case.source) {
        const PlainSource& source = *m_case.source;
        PlainImage plain(source.depth, source.width, source.height);
        plain.pixels = source.pixels;
        TestImage image(store, source.depth, source.width, source.height);
        ImagePool::write(image, plain);
        m_source.CopyFromOffscreen(image.get());
        m_source.SetProtectBorder(source.clampX, source.clampY);
        m_sourceLock = std::make_unique<XCAutoLockSimpleImage>(&m_source);
    }
}

void LibraryMix::startDab(const MixDab& dab) {
    m_mixer.SetMixAlpha(dab.mixAlpha);
    m_mixer.SetCacheAlpha(dab.cacheAlpha);
    if (dab.antiAlpha)
        m_mixer.ScaleAntiAlpha(*dab.antiAlpha);
    m_plotter.StartPlot(XCPointD(dab.centerX, dab.centerY), dab.tableRadius, dab.radius, dab.hardness,
                        dab.keepTableRadius, dab.allowTable);
    if (m_mixer.GetStyleFlag(XCFastPixelMixer::STYLE_ANTIALIAS))
        m_mixer.SetSrcUVParamAntiAlias(dab.u, dab.v, dab.du, dab.dv, dab.uB, dab.vB, dab.duB, dab.dvB);
    else
        m_mixer.SetSrcUVParam(dab.u, dab.v, dab.du, dab.dv);
}

void LibraryMix::paint(const MixDab& dab, const MixSpan& span) {
    m_mixer.MoveCursorToBlock(span.x1, span.y);
    if (!m_case.source)
        return m_mixer.DoLineRow(span.x1, span.x2, span.y);
    double row = dab.v + (span.y - dab.spans[0].y);
    if (m_mixer.GetStyleFlag(XCFastPixelMixer::STYLE_ANTIALIAS))
        m_mixer.SetSrcVParamAntiAlias(row, row + dab.vB - dab.v);
    else
        m_mixer.SetSrcVParam(row);
    m_mixer.DoLineRowCopy(span.x1, span.x2 + 1, span.y, &m_source);
}

ModelMix::ModelMix(const MixCase& mixCase)
    : m_case(mixCase), m_destination(mixCase.destination), m_cache(mixCase.cache), m_colorCache(mixCase.colorCache) {
    auto pointer = [](auto& optional) { return optional ? &*optional : nullptr; };
    m_mixer.style = m_case.style;
    m_mixer.composition = m_case.composition;
    m_mixer.destination = &m_destination;
    m_mixer.cache = cache();
    m_mixer.colorCache = colorCache();
    m_mixer.composite = pointer(m_case.composite);
    m_mixer.mask = pointer(m_case.mask);
    m_mixer.maskX = m_case.maskX;
    m_mixer.maskY = m_case.maskY;
    m_mixer.clone = pointer(m_case.clone);
    m_mixer.blur = pointer(m_case.blur);
    m_mixer.cloneX = m_case.cloneX;
    m_mixer.cloneY = m_case.cloneY;
    m_mixer.paint = unpack(m_case.color);
    m_mixer.subPaint = unpack(m_case.subColor);
    m_mixer.keepAlpha = m_case.keepAlpha;
    m_mixer.plotter = &m_plotter;
    m_mixer.average = &m_average;
    m_mixer.texture = pointer(m_case.texture);
}

void ModelMix::startDab(const MixDab& dab) {
    m_mixer.setMixAlpha(dab.mixAlpha);
    m_mixer.setCacheAlpha(dab.cacheAlpha);
    if (dab.antiAlpha)
        m_mixer.scaleAntiAlpha(*dab.antiAlpha);
    m_plotter.startPlot(dab.centerX, dab.centerY, dab.tableRadius, dab.radius, dab.hardness, dab.keepTableRadius,
                        dab.allowTable);
    auto fixed = [](double value) { return std::int64_t(value * 32768); };
    auto step = [&](double value) { return std::int64_t(value * (m_case.style & 0x400 ? 16384 : 32768)); };
    m_mixer.points = {fixed(dab.u),  fixed(dab.v),  step(dab.du),  step(dab.dv),
                      fixed(dab.uB), fixed(dab.vB), step(dab.duB), step(dab.dvB)};
}

void ModelMix::paint(const MixDab& dab, const MixSpan& span) {
    if (!m_case.source)
        return m_mixer.doLineRow(span.x1, span.x2, span.y);
    double row = dab.v + (span.y - dab.spans[0].y);
    m_mixer.points.v = std::int64_t(row * 32768);
    m_mixer.points.vB = std::int64_t((row + dab.vB - dab.v) * 32768);
    m_mixer.doLineRowCopy(span.x1, span.x2 + 1, span.y, *m_case.source);
}

std::string difference(const TestImage& image, PlainImage& model, std::uint32_t compared, const char* name) {
    std::string first;
    for (int y = 0; y < model.height && first.empty(); ++y)
        image.visitRow(0, model.width, y, 0, [&](std::uint8_t* base, int column, int row, int x) {
            std::uint32_t got = storedPixel(base, image->GetBlockRowBytes(), model.depth, column, row);
            std::uint32_t& expected = model.at(x, y);
            if (first.empty() && !matches(got & compared, expected & compared, model.match(x, y), model.depth)) {
                std::ostringstream text;
                text << name << " at " << x << ", " << y << std::hex << ": got 0x" << got << ", expected 0x"
                     << expected;
                first = text.str();
            }
            expected = got;
            model.match(x, y) = Match::exact;
        });
    return first;
}

Outcome runCase(TestStore& store, ImagePool& pool, const MixCase& mixCase) {
    LibraryMix library(store, pool, mixCase);
    ModelMix model(mixCase);
    // Of a colour cache the stamps keep the colour, two-colour stamps the tone in blue.
    bool isWater = mixCase.family == Family::water || mixCase.family == Family::waterCopy;
    std::uint32_t cachedBits = isWater ? 0xFFFFFFFF : mixCase.family == Family::toneCopy ? 0xFF0000 : 0xFFFFFF;
    for (std::size_t i = 0; i < mixCase.dabs.size(); ++i) {
        const MixDab& dab = mixCase.dabs[i];
        library.startDab(dab);
        model.startDab(dab);
        for (const MixSpan& span : dab.spans) {
            library.paint(dab, span);
            model.paint(dab, span);
        }
        std::string found = difference(library.destination(), model.destination(), 0xFFFFFFFF, "destination");
        if (found.empty() && mixCase.cache)
            found = difference(*library.cache(), *model.cache(), 0xFFFF, "cache");
        if (found.empty() && mixCase.colorCache)
            found = difference(*library.colorCache(), *model.colorCache(), cachedBits, "colour cache");
        if (!found.empty())
            return {found + " after dab " + std::to_string(i), {}};
    }
    // By now the model's images hold the library's pixels.
    Outcome outcome{{}, model.destination().pixels};
    for (const PlainImage* image : {model.cache(), model.colorCache()})
        if (image)
            outcome.pixels.insert(outcome.pixels.end(), image->pixels.begin(), image->pixels.end());
    std::uint32_t average = library.average().ConvertSmudgeColor(0);
    outcome.pixels.push_back(average);
    if (average != model.average().color())
        outcome.difference =
            "colour average " + std::to_string(average) + ", expected " + std::to_string(model.average().color());
    return outcome;
}

} // namespace ovw::test
