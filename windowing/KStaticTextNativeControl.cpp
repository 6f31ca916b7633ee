#include "windowing/KStaticTextNativeControl.h"

#include "kernel/KClass.h"

K_DEFINE_CLASS(KStaticTextNativeControl, KControl)

KStaticTextNativeControl::KStaticTextNativeControl() = default;

KStaticTextNativeControl::KStaticTextNativeControl(const KString& text, const KWideRectangle& bounds)
{
    setText(text);
    setPosition(bounds.getOrigin());
    setSize(bounds.getSize());
}

KStaticTextNativeControl::~KStaticTextNativeControl() = default;

bool KStaticTextNativeControl::describeNative(KNativeControlSetup& setup) const
{
    setup.kind = KNativeControlKind::StaticText;
    return true;
}
