#pragma once

#include "kernel/KForward.h"

#include <cstdint>

// Forward declarations of the graphics subsystem and its counted references.

class KGraphicPoint;
class KGraphicSize;
class KGraphicRectangle;
class KWidePoint;
class KWideSize;
class KWideRectangle;
class KColor;
class KGraphicRegion;
class KFont;
class KGraphicDeviceState;
class KGraphicDevice;
class KGraphicObject;
class KImage;
class KAlphaImage;
class KPattern;
class KTextStyle;
class KTextStyleRun;
class KTextLine;
class KTextBlock;
class KTextBlockObject;
class KTextLineObject;

// Opaque handles of the native side (cairo, pango); only graphics/native
// knows what they are.
class KNativeDevice;
class KNativeRegion;
class KNativeFont;
class KNativeTextLayout;

// The standard fonts: 0 the system font, 1 to 3 the application's fonts,
// anything else the fallback.
using KStandardFont = int32_t;

using KGraphicPointPtr = KPtr<KGraphicPoint>;
using KGraphicSizePtr = KPtr<KGraphicSize>;
using KGraphicRectanglePtr = KPtr<KGraphicRectangle>;
using KWidePointPtr = KPtr<KWidePoint>;
using KWideSizePtr = KPtr<KWideSize>;
using KWideRectanglePtr = KPtr<KWideRectangle>;
using KColorPtr = KPtr<KColor>;
using KGraphicRegionPtr = KPtr<KGraphicRegion>;
using KFontPtr = KPtr<KFont>;
using KGraphicDeviceStatePtr = KPtr<KGraphicDeviceState>;
using KGraphicDevicePtr = KPtr<KGraphicDevice>;
using KGraphicObjectPtr = KPtr<KGraphicObject>;
using KImagePtr = KPtr<KImage>;
using KAlphaImagePtr = KPtr<KAlphaImage>;
using KPatternPtr = KPtr<KPattern>;
using KTextStylePtr = KPtr<KTextStyle>;
using KTextStyleRunPtr = KPtr<KTextStyleRun>;
using KTextLinePtr = KPtr<KTextLine>;
using KTextBlockPtr = KPtr<KTextBlock>;
using KTextBlockObjectPtr = KPtr<KTextBlockObject>;
using KTextLineObjectPtr = KPtr<KTextLineObject>;
