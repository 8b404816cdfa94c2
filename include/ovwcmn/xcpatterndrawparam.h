#ifndef OVWCMN_XCPATTERNDRAWPARAM_H
#define OVWCMN_XCPATTERNDRAWPARAM_H

/// @file
/// The settings of a brush, and their conversion into the values of single stamps.

#include <cstdint>
#include <memory>
#include <span>

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"
#include "ovwcmn/xcarray.h"
#include "ovwcmn/xcgeometry.h"
#include "ovwcmn/xcpattern.h"

class XCColorAverage;
struct XCStrokePoint;

/// @{ What a control field lets its value follow; later bits override earlier ones, random multiplies the result.
inline constexpr int cnControlRandom = 1;
inline constexpr int cnControlPressure = 2;
inline constexpr int cnControlAuxScale = 4;
inline constexpr int cnControlSpeed = 32; ///< 1 - speed
/// @}

/// @{ The control bits of the rotation; random wins, then the lowest bit.
inline constexpr int cnRotateRandom = 1;
inline constexpr int cnRotateAngleA = 8;
inline constexpr int cnRotateAngleB = 16;
inline constexpr int cnRotateDirection = 64;
inline constexpr int cnRotateRadial = 128; ///< away from the stroke point
/// @}

// The bits of sprayFlags.
inline constexpr int cnSprayScatter = 1;    ///< off the position: as the next two say, else densest in the middle
inline constexpr int cnSprayFixedPlots = 4; ///< at the places of fixedPlots, one after the other
inline constexpr int cnSprayTrailing = 8;   ///< towards the position, at most half the width from the stamp before

/// The tip.
struct PDPARAM_PATTERN {
    int patternKind = 0;          ///< XCPattern::cnKindCircle, cnKindRect, cnKindPolygon or cnKindImage
    XCTArray<tagPOINTD> polygon;  ///< the outline of a polygon tip, in tip units
    int reserved = 0;             ///< 0
    XCPattern* patterns[32] = {}; ///< the tips of cnKindImage; not owned
    int patternCount = 0;         ///< 0 to 32
    int patternOrder = 0;         ///< 0 cyclic, 1 back and forth, 2 random
};

/// The size of stamps.
struct PDPARAM_SIZE {
    int size = 1;        ///< pixels
    int sizeMin = 0;     ///< 0 to 255, what remains of the size at a control of 0; likewise the other minimums
    int sizeControl = 0; ///< bits cnControl...
};

/// Colours have red in bits 0 to 7, green, blue, and alpha in bits 24 to 31.
struct PDPARAM_COLOR {
    std::uint32_t drawColor = 0xFF000000; ///< 0xAABBGGRR
    std::uint32_t subColor = 0xFFFFFFFF;  ///< of tips with two colours
    int opacity = 255;                    ///< 0 to 255
    int opacityMin = 0;                   ///< 0 to 255, at a control of 0
    int opacityControl = 0;               ///< bits cnControl...
};

/// How steep the edge of a stamp is: 255 is hard.
struct PDPARAM_HARDNESS {
    int hardness = 255;      ///< 0 to 255
    int hardnessMin = 0;     ///< 0 to 255, at a control of 0
    int hardnessControl = 0; ///< bits cnControl...
};

/// How much of the brush's own colour and alpha a smudging brush paints; the rest is picked up from the image.
struct PDPARAM_MIXCOLOR {
    int mixColor = 255;      ///< 0 to 255
    int mixColorMin = 0;     ///< 0 to 255, at a control of 0
    int mixColorControl = 0; ///< bits cnControl...
    int mixAlpha = 255;      ///< 0 to 255
    int mixAlphaMin = 0;     ///< 0 to 255, at a control of 0
    int mixAlphaControl = 0; ///< bits cnControl...
    int smudge = 50;         ///< the larger, the longer a colour is carried along
};

/// The tip's aspect. Here and below, "AtFull" and "AtZero" are the values at a control of 1 and of 0.
struct PDPARAM_SIZERATE {
    float rateAtFull = 1.0f;   ///< horizontal shape factor of the tip
    float rateAtZero = 100.0f; ///< not below 0
    int rateControl = 0;       ///< bits cnControl...
};

/// How the tip is turned.
struct PDPARAM_ROTATE {
    float angle = 0.0f;      ///< radians
    float angleRange = 0.0f; ///< radians; the most that the control turns either way, no limit below 0
    float angleStep = 0.0f;  ///< radians; the control turns by multiples of it when above 0
    int angleControl = 0;    ///< bits cnRotate...
};

/// How far stamps lie apart.
struct PDPARAM_INTERVAL {
    int intervalMode = 2;     ///< 0 none, 1 pixels, 2 percent of the stamp's size
    int intervalAtFull = 30;  ///< pixels or percent
    int intervalAtZero = 100; ///< pixels or percent
    int intervalControl = 0;  ///< bits cnControl...
    int intervalKind = 2;     ///< 3 uses the fields above; any other value derives the interval from hardness and kind
};

/// Several stamps a position.
struct PDPARAM_AIRBRUSH {
    static constexpr int cnMaxPlots = 256; ///< fixed plots at most

    int sprayFlags = 0;                    ///< bits cnSpray...
    int sprayWidthAtFull = 1;              ///< pixels
    int sprayWidthAtZero = 100;            ///< pixels
    int sprayWidthControl = 0;             ///< bits cnControl...
    int plotCountAtFull = 4;               ///< stamps a position
    int plotCountAtZero = 100;             ///< stamps a position
    int plotCountControl = 0;              ///< bits cnControl...
    int reserved = 0;                      ///< 0
    tagPOINTD fixedPlots[cnMaxPlots] = {}; ///< in half spray widths
};

/// What else a brush has.
struct PDPARAM_ETC {
    int overSampling = 1; ///< anti-aliased stamps
    int fadeStep = 0;     ///< kept for the application
    int continueFlag = 0; ///< 1: GetNextInterval answers 0
    int bendFlag = 0;     ///< 1: image tips bend along the stroke
    int etcValue = 0;     ///< for the application; travels with every stamp
};

/// The values of one stamp.
struct PLOTPATTERNPARAM {
    XCPattern* pattern = nullptr; ///< not owned
    std::uint32_t color = 0;      ///< 0xAABBGGRR
    std::uint32_t subColor = 0;   ///< 0xAABBGGRR
    int reserved1 = 0;            ///< 0
    double x = 0.0;               ///< the stamp's centre, in the coordinates of the stroke point
    double y = 0.0;               ///< downward
    float size = 0.0f;            ///< pixels
    int opacity = 0;              ///< 0 to 255
    int hardness = 0;             ///< 0 to 255
    float sizeScale = 0.0f;       ///< what the controls leave, 0 to 1
    float opacityScale = 0.0f;    ///< what the controls leave, 0 to 1
    float hardnessScale = 0.0f;   ///< what the controls leave, 0 to 1
    float intervalRatio = 0.0f;   ///< spacing / size of a single stamp, 1 when a position has several
    int etcValue = 0;             ///< of PDPARAM_ETC
    int sizeFixed = 0;            ///< 1 when no control changes it
    int hardnessFixed = 0;        ///< 1 when no control changes it
    int overSampling = 0;         ///< 1: anti-aliased
    int reserved2 = 0;            ///< 0
};

/// A brush: its settings, and the random state that makes scatter, sizes and rotations repeat when a stroke is redrawn.
/// Owns the tip that it builds for its tip kind, never the designated or listed ones. A copy takes over settings,
/// designated tip, seeds and the place in the tip list, but no stamp sequence under way. Throws XCException only when
/// memory runs out. One thread at a time.
class OVWCMN_API XCPatternDrawParam {
public:
    /// Default settings with fresh seeds.
    XCPatternDrawParam();
    XCPatternDrawParam(const XCPatternDrawParam& other);            ///< as the class says
    XCPatternDrawParam& operator=(const XCPatternDrawParam& other); ///< as the class says
    ~XCPatternDrawParam();

    /// Back to the default settings, with fresh seeds and without designated tip.
    void InitParam();
    // clang-format off
    /// @{ The default settings of one family; or those given.
    void InitPatternParam()  { m_settings.pattern = {}; }
    void InitSizeParam()     { m_settings.size = {}; }
    void InitColorParam()    { m_settings.color = {}; }
    void InitHardnessParam() { m_settings.hardness = {}; }
    void InitMixColorParam() { m_settings.mixColor = {}; }
    void InitSizeRateParam() { m_settings.sizeRate = {}; }
    void InitRotateParam()   { m_settings.rotate = {}; }
    void InitIntervalParam() { m_settings.interval = {}; }
    void InitAirbrushParam() { m_settings.airbrush = {}; }
    void InitEtcParam()      { m_settings.etc = {}; }
    void SetPatternParam(const PDPARAM_PATTERN& value)   { m_settings.pattern = value; }
    void SetSizeParam(const PDPARAM_SIZE& value)         { m_settings.size = value; }
    void SetColorParam(const PDPARAM_COLOR& value)       { m_settings.color = value; }
    void SetHardnessParam(const PDPARAM_HARDNESS& value) { m_settings.hardness = value; }
    void SetMixColorParam(const PDPARAM_MIXCOLOR& value) { m_settings.mixColor = value; }
    void SetSizeRateParam(const PDPARAM_SIZERATE& value) { m_settings.sizeRate = value; }
    void SetRotateParam(const PDPARAM_ROTATE& value)     { m_settings.rotate = value; }
    void SetIntervalParam(const PDPARAM_INTERVAL& value) { m_settings.interval = value; }
    void SetAirbrushParam(const PDPARAM_AIRBRUSH& value) { m_settings.airbrush = value; }
    void SetEtcParam(const PDPARAM_ETC& value)           { m_settings.etc = value; }
    /// @}
    /// @{ The settings of one family.
    void GetPatternParam(PDPARAM_PATTERN& value) const   { value = m_settings.pattern; }
    void GetSizeParam(PDPARAM_SIZE& value) const         { value = m_settings.size; }
    void GetColorParam(PDPARAM_COLOR& value) const       { value = m_settings.color; }
    void GetHardnessParam(PDPARAM_HARDNESS& value) const { value = m_settings.hardness; }
    void GetMixColorParam(PDPARAM_MIXCOLOR& value) const { value = m_settings.mixColor; }
    void GetSizeRateParam(PDPARAM_SIZERATE& value) const { value = m_settings.sizeRate; }
    void GetRotateParam(PDPARAM_ROTATE& value) const     { value = m_settings.rotate; }
    void GetIntervalParam(PDPARAM_INTERVAL& value) const { value = m_settings.interval; }
    void GetAirbrushParam(PDPARAM_AIRBRUSH& value) const { value = m_settings.airbrush; }
    void GetEtcParam(PDPARAM_ETC& value) const           { value = m_settings.etc; }
    /// @}
    // clang-format on
    void SetDrawColor(std::uint32_t color) { m_settings.color.drawColor = color; } ///< 0xAABBGGRR
    /// A tip that replaces the tip kind; null takes it back. It must outlive its use here.
    void SetDesignatedPattern(XCPattern* pattern) { m_settings.designatedPattern = pattern; }
    XCPattern* GetDesignatedPattern() const { return m_settings.designatedPattern; } ///< null without one

    /// @{ Fields of PDPARAM_ETC.
    int IsOverSampling() const { return m_settings.etc.overSampling; }
    int IsContinue() const { return m_settings.etc.continueFlag; }
    int GetFadeStep() const { return m_settings.etc.fadeStep; }
    int IsBendPattern() const { return m_settings.etc.bendFlag; }
    /// @}
    /// Whether any of the ten control fields has a bit of the mask.
    int IsUseParamControl(int mask) const;
    /// Whether stamps mix in colour that is picked up from the image.
    int IsUseMixColorParam() const;
    /// Whether every stamp covers in full what lies inside its outline.
    int IsOpaquePattern() const;
    /// What the images of the chosen tips are: 1, 2, 8 or 32 bits a pixel (colours of their own count as 32, as do two
    /// colours beside densities); 0 without image tips.
    int GetIamgePatternBitCount() const;

    /// @{ Scales of 0 to 1 and other values at a stroke point. A control with the random bit draws a number each time.
    float ConvertPatternScale(const XCStrokePoint* point);
    float ConvertOpacityScale(const XCStrokePoint* point);
    float ConvertHardnessScale(const XCStrokePoint* point);
    float ConvertMixColorScale(const XCStrokePoint* point);
    float ConvertMixAlphaScale(const XCStrokePoint* point);
    float ConvertSizeRate(const XCStrokePoint* point);
    /// @}
    /// @param direction of the stroke, radians
    /// @return the tip's rotation, radians
    float ConvertRotate(const XCStrokePoint* point, double direction, const XCPointD& stampPosition);
    /// @return the stamps of a position, 1 to 256
    int ConvertPlotCount(const XCStrokePoint* point);
    /// @return pixels or percent, as intervalMode says
    int ConvertInterval(const XCStrokePoint* point);
    /// @return the place of the next stamp, scattered around the point when spraying
    tagPOINTD ConvertPlotPoint(const XCStrokePoint* point);
    /// @return the next tip of the list, or null
    XCPattern* ConvertPattern();

    /// Begins the stamps of one position. @param intervalRatio spacing / size, as GetNextInterval gives it
    void BeginPlotParam(const XCStrokePoint* point, double intervalRatio);
    /// @return 1 with the next stamp in `out`, 0 when there is none
    int NextPlotParam(PLOTPATTERNPARAM& out, const XCStrokePoint* point, double direction);
    void EndPlotParam(); ///< Ends what BeginPlotParam began.
    /// The values of a strip that bends from one point to the other. @param side 0 to 3: the tip's quarter turn
    void ParamForBendPattern(const XCStrokePoint* first, const XCStrokePoint* second, PLOTPATTERNPARAM& out,
                             float& secondScale, int& side);
    /// @return how far the next position is away, at least 1 pixel, times `factor` when that is above 0; 0 with the
    /// continue switch set
    double GetNextInterval(const XCStrokePoint* point, double& intervalToSize, double factor);
    /// The stamp's colour, mixed with what `average` (may be null) has picked up.
    /// @param noColor set to 1, and never cleared, when nothing has been picked up yet
    std::uint32_t MixDrawColor(XCColorAverage* average, const XCStrokePoint* point, int& noColor);

    /// Fresh seeds from the library-wide generator.
    void InitRandom();
    /// Back to the start of the random sequence and of the tip list.
    void ResetPatternState();
    /// Places plotCountAtFull fixed plots on concentric rings of `perRing` each, from radius `inner` to 1.
    static void AirbrushFixedPlot_FireWork(PDPARAM_AIRBRUSH& airbrush, int perRing, double inner);

private:
    struct Settings {
        PDPARAM_PATTERN pattern;
        PDPARAM_SIZE size;
        PDPARAM_COLOR color;
        PDPARAM_HARDNESS hardness;
        PDPARAM_MIXCOLOR mixColor;
        PDPARAM_SIZERATE sizeRate;
        PDPARAM_ROTATE rotate;
        PDPARAM_INTERVAL interval;
        PDPARAM_AIRBRUSH airbrush;
        PDPARAM_ETC etc;
        XCPattern* designatedPattern = nullptr;
        int patternIndex = 0;
        int patternDirection = 0; ///< 0 forward, 1 backward through the tip list
        std::uint32_t initialSeed = 0;
        std::uint32_t workingSeed = 0;
    };

    double convertParamScale(int control, const XCStrokePoint* point);
    float minBasedScale(int minimum, int control, const XCStrokePoint* point);
    int rangeBasedValue(int atFull, int atZero, int control, const XCStrokePoint* point);
    double rotationOffset(const XCStrokePoint* point, double direction, const XCPointD& stampPosition);
    tagPOINTD gaussianScatter(const XCStrokePoint* point, int width);
    XCPattern* nextBackAndForth(int count);
    std::span<XCPattern* const> chosenTips() const;
    XCPattern* defaultTip();
    void fillTemplate(double intervalRatio);

    Settings m_settings;
    int m_plotCount = 0;
    int m_plotIndex = 0;
    tagPOINTD m_previousPlot{};
    PLOTPATTERNPARAM m_template;
    XCPattern* m_defaultPattern = nullptr; ///< one of the three below while a position is under way
    XCCirclePattern m_circle;
    XCRectPattern m_rect;
    std::unique_ptr<XCPolygonPattern> m_polygon; ///< kept from stamp to stamp for its storage
};

/// The next number of a linear congruential sequence, 0 <= value < 1. A null seed takes the library-wide one, which
/// starts at 1 and may be used from several threads.
OVWCMN_API double xcRandom(std::uint32_t* seed);
/// A number around 0 with a bell-shaped distribution, -1 to 1; draws twelve numbers of xcRandom.
OVWCMN_API double xcGetGaussRand(std::uint32_t* seed);
/// Sets the library-wide seed.
OVWCMN_API void xcSetRandomSeed(std::uint32_t seed);
/// Sets the library-wide seed from the millisecond clock.
OVWCMN_API void xcGenerateRandom();

#endif // OVWCMN_XCPATTERNDRAWPARAM_H
