#ifndef OVW_TESTS_MIXING_CASERUNNER_H
#define OVW_TESTS_MIXING_CASERUNNER_H

#include "mixcase.h"

#include "mixing/instructionset.h"
#include "ovwcmn/xccoloraverage.h"
#include "ovwcmn/xcfastpixelmixer.h"
#include "ovwcmn/xcplotgauss.h"
#include "ovwcmn/xcsimpleimage.h"
#include "support/testimage.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace ovw::test {

/// The sets of kernels that this machine runs.
std::vector<mixing::InstructionSet> machineSets();

/// Tiled images that are kept from case to case, one a purpose.
class ImagePool {
public:
    enum class Role { destination, cache, colorCache, composite };

    explicit ImagePool(TestStore& store) : m_store(store) {}
    /// The image of a role with these pixels and blocks.
    TestImage& load(Role role, const PlainImage& plain);
    static void write(TestImage& image, const PlainImage& plain);

private:
    TestStore& m_store;
    std::map<std::pair<Role, int>, std::unique_ptr<TestImage>> m_images;
};

/// A case laid out for the library.
class LibraryMix {
public:
    LibraryMix(TestStore& store, ImagePool& pool, const MixCase& mixCase);

    void startDab(const MixDab& dab);
    void paint(const MixDab& dab, const MixSpan& span);
    XCFastPixelMixer& mixer() { return m_mixer; }
    XCSimpleImage& source() { return m_source; }
    TestImage& destination() { return *m_destination; }
    TestImage* cache() { return m_cache; }
    TestImage* colorCache() { return m_colorCache; }
    XCColorAverage& average() { return m_average; }

private:
    void setImages(TestStore& store, ImagePool& pool);
    void setHelpers(TestStore& store);
    void lock(TestImage* image, int edit);

    const MixCase& m_case;
    XCFastPixelMixer m_mixer;
    XCPlotGauss m_plotter;
    XCColorAverage m_average;
    TestImage* m_destination = nullptr;
    TestImage* m_cache = nullptr;
    TestImage* m_colorCache = nullptr;
    std::vector<std::unique_ptr<TestImage>> m_own;
    XCSimpleImage m_source;
    std::unique_ptr<XCAutoLockSimpleImage> m_sourceLock;
    std::vector<std::uint8_t> m_texels, m_blur;
    std::vector<std::unique_ptr<XCVOffscreenAutoLock>> m_locks;
};

/// The same case laid out for the model, with images of its own.
class ModelMix {
public:
    explicit ModelMix(const MixCase& mixCase);

    void startDab(const MixDab& dab);
    void paint(const MixDab& dab, const MixSpan& span);
    PlainImage& destination() { return m_destination; }
    PlainImage* cache() { return m_cache ? &*m_cache : nullptr; }
    PlainImage* colorCache() { return m_colorCache ? &*m_colorCache : nullptr; }
    const ReferenceAverage& average() const { return m_average; }

private:
    const MixCase& m_case;
    PlainImage m_destination;
    std::optional<PlainImage> m_cache, m_colorCache;
    ReferenceMixer m_mixer;
    ReferencePlotter m_plotter;
    ReferenceAverage m_average;
};

/// Compares the image with the model's, by each pixel's match; where they differ within it the model takes the image's
/// pixel over. The bits of `compared` count. The first difference as text, empty when there is none.
std::string difference(const TestImage& image, PlainImage& model, std::uint32_t compared, const char* name);

/// What became of a case that was run in both, dab by dab.
struct Outcome {
    std::string difference;            // the first one, empty when there is none
    std::vector<std::uint32_t> pixels; // the library's images at the end, and its average
};
Outcome runCase(TestStore& store, ImagePool& pool, const MixCase& mixCase);

} // namespace ovw::test

#endif // OVW_TESTS_MIXING_CASERUNNER_H
