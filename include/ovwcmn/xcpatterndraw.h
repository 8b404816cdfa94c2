#ifndef OVWCMN_XCPATTERNDRAW_H
#define OVWCMN_XCPATTERNDRAW_H

/// @file
/// The drawing engine: strokes into stamps, stamps into a tiled image.

#include <cstdint>
#include <memory>

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"
#include "ovwcmn/xcarray.h"
#include "ovwcmn/xcgeometry.h"
#include "ovwcmn/xcstroke.h"

class XCColorAverage;
class XCFastPixelMixer;
class XCPattern;
class XCPatternDrawParam;
class XCPlotGauss;
class XCVOffscreen;
struct PLOTPATTERNPARAM;

namespace ovw::brush {
struct MethodLocks;
class BendState;
class StampSetup;
} // namespace ovw::brush

/// The target as the application describes it. The engine reads scale and clip and keeps the rest for the application.
struct PDOFFSCREENINFO {
    void* applicationHead[4] = {}; ///< not read
    double scale = 1.0;            ///< logical units a pixel; 0 stands for 1
    XCRect clip;                   ///< pixels
    void* applicationTail[4] = {}; ///< not read
};

/// How stamps meet the image, and the images that take part. Owns the two caches of a stroke; target, cache reference,
/// mask, clone source and texture belong to the application and must stay until ReleaseOffscreen or the next
/// SetOffscreen. Creating and locking images throws what the block store throws. One thread at a time.
class OVWCMN_API XCPatternDrawMethod {
public:
    XCPatternDrawMethod();
    XCPatternDrawMethod(const XCPatternDrawMethod&) = delete;
    XCPatternDrawMethod& operator=(const XCPatternDrawMethod&) = delete;
    ~XCPatternDrawMethod();

    /// Sets the target and readies empty caches for a stroke.
    /// @param param           (may be null) the brush: tips that paint their own colours need one more cache
    /// @param useCache        stamps of a stroke accumulate in a cache; needs `cacheReference`. Without it a methodKind
    ///                        of 1 becomes 0
    /// @param cacheReference  the image as it was before the stroke
    /// @param methodKind      a draw composition of the mixer: 2 erases, 5 and 7 smudge
    /// @param cacheKind       how stamps accumulate: 0 and 1 over each other, 2 the larger one, 3 added up
    /// @param methodFlag      image tips paint their own colours
    /// @param densityFlag     closely spaced stamps become weaker
    /// @param lowDepthSoft    soft and cached stamps also below 8 bits
    void SetOffscreen(XCVOffscreen* target, int useCache, XCVOffscreen* cacheReference, XCPatternDrawParam* param,
                      int methodKind, int cacheKind, int methodFlag, int densityFlag, int lowDepthSoft);
    /// Pixel (x, y) of the target reads the mask at (x, y) times the ratio of the resolutions, minus the offset.
    void SetMaskOffscreen(XCVOffscreen* mask, const XCPoint& offset);
    /// Paints pixel (x, y) with pixel (x + origin.x, y + origin.y) of the source.
    void SetCloneSrcOffscreen(XCVOffscreen* source, tagPOINT origin);
    /// 8-bit texels of `width` bytes a row. @param mode 0 to 3, see XCFastPixelMixer::SetTexture
    /// @param afterCache the texture changes the opacity of the whole stroke, not the coverage of each stamp
    void SetTextureImage(std::uint8_t* texels, int width, int height, const XCPoint& offset, int density, int mode,
                         int afterCache);
    /// Locks every image for a stroke. @return 1
    int BeginMethod();
    void EndMethod(); ///< Unlocks every image; the caches stay.
    /// Unlocks everything, deletes the caches and forgets all images.
    void ReleaseOffscreen();
    /// Empties the caches: the next stamp begins a new stroke.
    void ClearTempImage();

    /// @{ What was set, and the caches made for it (null without).
    XCVOffscreen* GetOffscreen() const { return m_target; }
    XCVOffscreen* GetCacheOffscreen() const { return m_cache.get(); }
    XCVOffscreen* GetCacheColorOffscreen() const { return m_colorCache.get(); }
    XCVOffscreen* GetCloneSrcOffscreen() const { return m_cloneSource; }
    tagPOINT GetCloneSrcOrigin() const { return m_cloneOrigin; }
    XCPoint GetMaskOffset() const { return m_maskOffset; }
    std::uint8_t* GetTextureImage() const { return m_texture.texels; }
    void GetTextureInfo(int& width, int& height, XCPoint& offset, int& density, int& mode, int& afterCache) const;
    int GetMethodKind() const { return m_methodKind; }
    /// @}

private:
    friend class ovw::brush::StampSetup;

    struct Texture {
        std::uint8_t* texels = nullptr;
        int width = 0;
        int height = 0;
        XCPoint offset;
        int density = 0;
        int mode = 0;
        int afterCache = 0;
    };

    int colorCacheDepth(int tipBitCount) const;
    void prepareCaches(int tipBitCount);

    int m_methodKind = 1;
    int m_cacheKind = 0;
    int m_methodFlag = 1;
    int m_densityFlag = 0;
    int m_lowDepthSoft = 0;
    XCVOffscreen* m_target = nullptr;
    XCVOffscreen* m_cacheReference = nullptr;
    std::unique_ptr<XCVOffscreen> m_cache;
    std::unique_ptr<XCVOffscreen> m_colorCache;
    XCVOffscreen* m_mask = nullptr;
    XCPoint m_maskOffset;
    XCVOffscreen* m_cloneSource = nullptr;
    XCPoint m_cloneOrigin;
    Texture m_texture;
    std::unique_ptr<ovw::brush::MethodLocks> m_locks; ///< between BeginMethod and EndMethod
};

/// Draws strokes: SetOffscreen, BeginDraw, then DrawStroke as samples arrive (or DrawSinglePattern a stamp position),
/// and EndDraw. Strokes and rectangles are in logical units, stamps in pixels. Owns its copy of the brush; the method
/// is the caller's and must be begun (XCPatternDrawMethod::BeginMethod). A cancelled stroke draws nothing more until
/// EndDraw or ReStartDraw; DrawStroke lets no XCException out. Operations that come before what they need do nothing.
/// One thread at a time, except for the abort flag.
class OVWCMN_API XCPatternDraw {
public:
    XCPatternDraw();
    XCPatternDraw(const XCPatternDraw&) = delete;
    XCPatternDraw& operator=(const XCPatternDraw&) = delete;
    ~XCPatternDraw();

    /// The method (may be null) stays the caller's. Not while a stroke is under way.
    void SetOffscreen(const PDOFFSCREENINFO& info, XCPatternDrawMethod* method);
    /// Begins a stroke with a copy of the brush and fresh random numbers. @return 1
    int BeginDraw(const XCPatternDrawParam* param);
    /// Begins the same stroke again, with the same random numbers.
    void ReStartDraw();
    /// Draws what the stroke holds. @param changed (may be null) receives the logical bounds of what was painted
    /// @param consume uses up the samples, see XCStroke::CreateVertex
    /// @return 1 when something was painted
    int DrawStroke(XCRect* changed, XCStroke* stroke, int consume);
    /// Draws one stamp position; with a bending brush, what lies between the previous one and this. @param point
    /// logical @param direction radians
    /// @return the logical distance to the next position, 0 when not drawing
    double DrawSinglePattern(XCRect* changed, const XCStrokePoint* point, double direction);
    /// Ends the stroke. @param changed (may be null) receives the logical bounds of the whole stroke
    void EndDraw(XCRect* changed);
    /// Paints one stamp. @param changed (may be null) as XCPattern::Draw @param noColor only sample the image's colours
    /// @return 1 when something was drawn
    int PlotPattern(XCRect* changed, const PLOTPATTERNPARAM& stamp, float pressure, int noColor);

    /// Paints an ink splatter, as a picture for a tip: round drops on rings around the centre. The image is laid out
    /// anew on the process-wide store, as a square a little larger than `size`; the numbers come from the library-wide
    /// generator (xcSetRandomSeed). Sizes below 4 pixels show nothing.
    /// @param sizeSpread  0 to 1: from small drops to drops of a quarter of the size
    /// @param softness    of the drops' rims, 0 to 1
    /// @param density     0 to 1: from 10 to 256 drops
    /// @param resolution  of the image
    static void CreateSumiPattern(XCVOffscreen* image, int size, double sizeSpread, double softness, double density,
                                  int overSampling, double resolution);

    /// Asked before every stamp position; 0 stops the stroke. Null: never. The default asks vxAbort.
    void SetAbortProc(int (*proceed)()) { m_abortProc = proceed; }
    /// A flag (may be null) that any thread may set to stop the stroke.
    void SetAbortFlag(std::int32_t* flag) { m_abortFlag = flag; }
    /// Cancels the stroke.
    void ProcessAbort();
    /// 1 between BeginDraw and EndDraw.
    int IsDrawing() const { return m_isDrawing; }
    /// Why the last stroke stopped before its end: 0 when it did not, 0x20010004 when it was cancelled, else the code
    /// of the error that was caught. EndDraw keeps it, BeginDraw and ReStartDraw clear it.
    int GetStopCode() const { return m_stopCode; }

    /// @{ Logical units to pixels and back. Integers are truncated toward zero.
    int ValueLogToOffscr(int value) const;
    double ValueLogToOffscrD(double value) const { return value * m_logToOffscr; }
    int ValueOffscrToLog(int value) const;
    double ValueOffscrToLogD(double value) const { return value * m_info.scale; }
    XCPoint PosLogToOffscr(const XCPoint& position) const;
    XCPointD PosLogToOffscrD(const XCPointD& position) const;
    XCPoint PosOffscrToLog(const XCPoint& position) const;
    XCPointD PosOffscrToLogD(const XCPointD& position) const;
    XCRect RectLogToOffscr(const XCRect& rect) const;
    XCRectD RectLogToOffscrD(const XCRectD& rect) const;
    XCRect RectOffscrToLog(const XCRect& rect) const;
    XCRectD RectOffscrToLogD(const XCRectD& rect) const;
    double GetScaleLogToOffscr() const { return m_logToOffscr; }
    /// @}
    int GetDivSCurveLength() const { return m_divSCurveLength; } ///< 1; kept for callers
    /// The clip rectangle in logical units.
    XCRect GetClipLog() const { return RectOffscrToLog(m_info.clip); }
    XCPatternDrawMethod* GetDrawMethod() const { return m_method; } ///< null before SetOffscreen

private:
    class PaintedPart;

    void resetStroke();
    void stop(int code);
    bool isReady() const;
    bool abortStroke() const;
    void throwIfAborted() const;
    bool needsDirection() const;
    XCStrokePoint toPixels(const XCStrokePoint& point) const;
    // What is painted is added to `painted`, in logical units for strokes and segments, in pixels below.
    void drawVertices(XCRect& painted, XCStroke& stroke, int consume);
    void drawSegment(XCRect& painted, const XCStrokePoint& a, const XCStrokePoint& b);
    double drawSinglePosition(XCRect& painted, const XCStrokePoint& pixelPoint, double direction);
    double startOfSegment(double length) const;
    void walkSegment(XCRect& painted, const XCStrokePoint& a, const XCStrokePoint& b, double length);
    void chooseBendPattern();
    void drawBendedSegment(XCRect& painted, const XCStrokePoint& a, const XCStrokePoint& b, double startDirection,
                           double endDirection);
    void drawPosition(XCRect& painted, const XCStrokePoint& pixelPoint, double intervalRatio);

    PDOFFSCREENINFO m_info;
    XCPatternDrawMethod* m_method = nullptr;
    std::unique_ptr<XCPatternDrawParam> m_param;
    int (*m_abortProc)();
    std::int32_t* m_abortFlag = nullptr;
    double m_strokeLength = 0.0;  ///< logical length of the segments completed
    double m_plottedLength = 0.0; ///< logical distance along the stroke of the last stamp position
    double m_nextInterval = 0.0;  ///< logical distance from there to the next one
    double m_direction = 0.0;     ///< radians
    int m_positionCount = 0;
    XCPattern* m_currentPattern = nullptr; ///< of a bending brush; not owned
    XCStrokePoint m_lastPoint;             ///< the previous one of DrawSinglePattern, pixels
    std::unique_ptr<ovw::brush::BendState> m_bend;
    XCTArray<XCStrokePoint> m_vertices; ///< logical; filled and emptied by every DrawStroke
    XCRect m_dirtyRect;                 ///< logical
    int m_isDrawing = 0;
    int m_isStopped = 0;
    int m_stopCode = 0;
    std::unique_ptr<XCColorAverage> m_colorAverage; ///< of the smudging methods
    std::unique_ptr<XCPlotGauss> m_plotGauss;
    double m_logToOffscr = 1.0;
    int m_divSCurveLength = 1;
};

#endif // OVWCMN_XCPATTERNDRAW_H
