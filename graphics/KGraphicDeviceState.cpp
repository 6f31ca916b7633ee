#include "graphics/KGraphicDeviceState.h"

#include "kernel/KClass.h"

K_DEFINE_CLASS(KGraphicDeviceState, KThing)

KGraphicDeviceState::KGraphicDeviceState() = default;

KThing* KGraphicDeviceState::deepCopy() const
{
    auto* copy = new KGraphicDeviceState();
    copy->assign(*this);
    copy->font = font;
    return copy;
}

void KGraphicDeviceState::assign(const KGraphicDeviceState& other)
{
    penMode = other.penMode;
    penSize = other.penSize;
    foreground = other.foreground;
    background = other.background;
}
