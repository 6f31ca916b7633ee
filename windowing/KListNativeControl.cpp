#include "windowing/KListNativeControl.h"

#include "kernel/KClass.h"

K_DEFINE_CLASS(KListNativeControl, KChoiceNativeControl)

KListNativeControl::KListNativeControl() = default;

KListNativeControl::KListNativeControl(int32_t id, const KWideRectangle& bounds, const std::vector<KString>& texts)
{
    setId(id);
    setPosition(bounds.getOrigin());
    setSize(bounds.getSize());
    setItems(texts);
}

KListNativeControl::~KListNativeControl() = default;

bool KListNativeControl::describeNative(KNativeControlSetup& setup) const
{
    KChoiceNativeControl::describeNative(setup);
    setup.kind = KNativeControlKind::List;
    return true;
}
