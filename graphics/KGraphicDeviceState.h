#pragma once

#include "graphics/KColor.h"
#include "graphics/KFont.h"
#include "graphics/KGraphicsForward.h"
#include "kernel/KThing.h"
#include "kernel/KThingPtr.h"

// The portable drawing state of a device: pen mode and size, the two
// colours, the font.
class KGraphicDeviceState : public KThing {
    K_DECLARE_CLASS(KGraphicDeviceState)
public:
    enum class PenMode : int32_t {
        CopyForeground = 0, // paint in the foreground colour
        Invert = 1, // invert the surface exactly
        CopyBackground = 2, // paint in the background colour
    };
    using enum PenMode;

    KGraphicDeviceState();
    // A state is copied only by assign, which leaves the font out.
    KGraphicDeviceState(const KGraphicDeviceState&) = delete;
    KGraphicDeviceState& operator=(const KGraphicDeviceState&) = delete;

    KThing* deepCopy() const override;

    // Copies colours, pen mode and pen size; not the font.
    void assign(const KGraphicDeviceState& other);

    PenMode penMode = CopyForeground;
    int16_t penSize = 1;
    KColor foreground { KColor::Black };
    KColor background { KColor::White };
    KFontPtr font;
};
