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
    for (const KString& heading : columns)
        setup.columns.emplace_back(heading.c_str());
    return true;
}

KString KListNativeControl::joinCells(const std::vector<KString>& cells)
{
    KString joined;
    for (size_t i = 0; i < cells.size(); ++i) {
        if (i > 0)
            joined += KString("\t");
        joined += cells[i];
    }
    return joined;
}
