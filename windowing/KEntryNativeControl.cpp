#include "windowing/KEntryNativeControl.h"

#include "kernel/KClass.h"
#include "kernel/KJsonWriter.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KNativeLayer.h"

#include <algorithm>

K_DEFINE_CLASS(KEntryNativeControl, KControl)

KEntryNativeControl::KEntryNativeControl() = default;

KEntryNativeControl::KEntryNativeControl(int32_t id, const KString& text, const KWideRectangle& bounds,
                                         int32_t characters)
    : limit(std::max(characters, 0))
{
    setId(id);
    setText(text);
    setPosition(bounds.getOrigin());
    setSize(bounds.getSize());
}

KEntryNativeControl::~KEntryNativeControl() = default;

KString KEntryNativeControl::cut(const KString& text) const
{
    if (limit <= 0 || text.getLength() <= limit)
        return text;
    KString shorter;
    shorter.setText(text.c_str(), limit);
    return shorter;
}

void KEntryNativeControl::setText(const KString& text) { KControl::setText(cut(text)); }

void KEntryNativeControl::setLimit(int32_t characters)
{
    limit = std::max(characters, 0);
    if (hasNativePart())
        KNativeLayer::get().setControlTextLimit(getNativeControl(), limit);
    if (limit > 0 && getText().getLength() > limit)
        setText(getText());
}

KEventReturn KEntryNativeControl::doNativeEvent(KNativeEvent& event)
{
    std::string reported;
    if (notificationOf(event) != KControlNotification::Changed
        || !KNativeLayer::get().controlText(getNativeControl(), reported))
        return 0;
    KString now;
    now.setText(reported.data(), static_cast<int32_t>(reported.size()));
    now = cut(now);
    if (now == getText())
        return 1;
    storeText(now);
    return sendAction(KControlActionEvent::Changed);
}

void KEntryNativeControl::describe(KJsonWriter& out) const
{
    KControl::describe(out);
    out.member("value", getText());
    out.member("limit", limit);
}

bool KEntryNativeControl::describeNative(KNativeControlSetup& setup) const
{
    setup.kind = KNativeControlKind::Entry;
    setup.textLimit = limit;
    return true;
}
