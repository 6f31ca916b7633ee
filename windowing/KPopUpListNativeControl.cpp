#include "windowing/KPopUpListNativeControl.h"

#include "kernel/KClass.h"

K_DEFINE_CLASS(KPopUpListNativeControl, KChoiceNativeControl)

KPopUpListNativeControl::KPopUpListNativeControl() = default;

KPopUpListNativeControl::KPopUpListNativeControl(int32_t id, const KWideRectangle& bounds,
                                                 const std::vector<KString>& texts)
{
    setId(id);
    setPosition(bounds.getOrigin());
    setSize(bounds.getSize());
    setItems(texts);
}

KPopUpListNativeControl::~KPopUpListNativeControl() = default;

bool KPopUpListNativeControl::describeNative(KNativeControlSetup& setup) const
{
    KChoiceNativeControl::describeNative(setup);
    setup.kind = KNativeControlKind::PopUpList;
    return true;
}
