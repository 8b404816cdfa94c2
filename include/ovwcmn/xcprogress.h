#ifndef OVWCMN_XCPROGRESS_H
#define OVWCMN_XCPROGRESS_H

/// @file
/// What a long operation tells the application, and asks it.

#include <cstdint>

/// The application's question box: long operations ask it between two steps. Called on the operation's thread; the
/// caller keeps the object. An exception that a member throws ends the operation.
class IXCAbort {
public:
    virtual ~IXCAbort() = default;
    /// Not 0 to stop.
    virtual int IsAbort() = 0;
};

/// The application's progress bar; called and kept as IXCAbort. End is called once for every Begin, after failures too.
class IXCProgress {
public:
    virtual ~IXCProgress() = default;
    /// `total` is counted in the operation's own unit (bytes, files).
    virtual void Begin(std::uint32_t total) = 0;
    /// `count` further units are done.
    virtual void Step(std::uint32_t count) = 0;
    virtual void End() = 0; ///< The operation is over.
};

#endif // OVWCMN_XCPROGRESS_H
