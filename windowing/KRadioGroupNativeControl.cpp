#include "windowing/KRadioGroupNativeControl.h"

#include "kernel/KClass.h"

K_DEFINE_CLASS(KRadioGroupNativeControl, KChoiceNativeControl)

KRadioGroupNativeControl::KRadioGroupNativeControl() = default;

KRadioGroupNativeControl::KRadioGroupNativeControl(int32_t id, const KWideRectangle& bounds,
                                                   const std::vector<KString>& texts)
{
    setId(id);
    setPosition(bounds.getOrigin());
    setSize(bounds.getSize());
    setItems(texts);
}

KRadioGroupNativeControl::~KRadioGroupNativeControl() = default;

bool KRadioGroupNativeControl::describeNative(KNativeControlSetup& setup) const
{
    KChoiceNativeControl::describeNative(setup);
    setup.kind = KNativeControlKind::RadioGroup;
    return true;
}

int32_t KRadioGroupNativeControl::normalise(int32_t index) const
{
    if (countItems() == 0)
        return -1;
    return index >= 0 && index < countItems() ? index : 0;
}
