#ifndef OVWCMN_OVWCMN_H
#define OVWCMN_OVWCMN_H

/// @file
/// The whole interface of the library.

// IWYU pragma: begin_exports
#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/ovwhooks.h"
#include "ovwcmn/vxmath.h"
#include "ovwcmn/vxwutl.h"
#include "ovwcmn/wintypes.h"
#include "ovwcmn/xcarray.h"
#include "ovwcmn/xcblockgetter.h"
#include "ovwcmn/xccolor.h"
#include "ovwcmn/xccoloraverage.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcfastpixelmixer.h"
#include "ovwcmn/xcfile.h"
#include "ovwcmn/xcfilepath.h"
#include "ovwcmn/xcfindfile.h"
#include "ovwcmn/xcgeometry.h"
#include "ovwcmn/xchandle.h"
#include "ovwcmn/xclength.h"
#include "ovwcmn/xclookuptable.h"
#include "ovwcmn/xcmatrix.h"
#include "ovwcmn/xcnumber.h"
#include "ovwcmn/xcpattern.h"
#include "ovwcmn/xcpatterndraw.h"
#include "ovwcmn/xcpatterndrawparam.h"
#include "ovwcmn/xcpixelmixer.h"
#include "ovwcmn/xcplotgauss.h"
#include "ovwcmn/xcpolygon.h"
#include "ovwcmn/xcprogress.h"
#include "ovwcmn/xcsimpleimage.h"
#include "ovwcmn/xcstring.h"
#include "ovwcmn/xcstringarray.h"
#include "ovwcmn/xcstroke.h"
#include "ovwcmn/xcswap.h"
#include "ovwcmn/xctexturemap.h"
#include "ovwcmn/xcthread.h"
#include "ovwcmn/xctime.h"
#include "ovwcmn/xcvirtualmemory.h"
#include "ovwcmn/xcvoffpixelmixer.h"
#include "ovwcmn/xcvoffscreen.h"
#include "ovwcmn/xcvoffscreenblock.h"
#include "ovwcmn/xcvoffscreenedits.h"
#include "ovwcmn/xcvoffscreenlock.h"
#include "ovwcmn/xcvoffscreenvariants.h"
// IWYU pragma: end_exports

#endif // OVWCMN_OVWCMN_H
