#include "windowing/KChoiceNativeControl.h"

#include "kernel/KClass.h"
#include "kernel/KJsonWriter.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KNativeLayer.h"

#include <cmath>

namespace {

std::vector<std::string> nativeItems(const std::vector<KString>& items)
{
    std::vector<std::string> texts;
    texts.reserve(items.size());
    for (const KString& item : items)
        texts.emplace_back(item.c_str());
    return texts;
}

} // namespace

K_DEFINE_CLASS(KChoiceNativeControl, KControl)

KChoiceNativeControl::KChoiceNativeControl() = default;

KChoiceNativeControl::~KChoiceNativeControl() = default;

void KChoiceNativeControl::setItems(const std::vector<KString>& texts)
{
    items = texts;
    itemsChanged();
}

void KChoiceNativeControl::addItem(const KString& text)
{
    items.push_back(text);
    itemsChanged();
}

void KChoiceNativeControl::clearItems()
{
    items.clear();
    itemsChanged();
}

void KChoiceNativeControl::itemsChanged()
{
    selected = normalise(selected);
    if (!hasNativePart())
        return;
    KNativeLayer::get().setControlItems(getNativeControl(), nativeItems(items));
    KNativeLayer::get().setControlValue(getNativeControl(), selected);
}

void KChoiceNativeControl::setSelected(int32_t index)
{
    selected = normalise(index);
    if (hasNativePart())
        KNativeLayer::get().setControlValue(getNativeControl(), selected);
}

KString KChoiceNativeControl::getSelectedText() const { return selected >= 0 ? items[size_t(selected)] : KString(); }

int32_t KChoiceNativeControl::normalise(int32_t index) const { return index >= 0 && index < countItems() ? index : -1; }

// A confirmed item is chosen too: the change, if any, comes first.
KEventReturn KChoiceNativeControl::doNativeEvent(KNativeEvent& event)
{
    int32_t code = notificationOf(event);
    double value = 0;
    if ((code != KControlNotification::Changed && code != KControlNotification::Activated)
        || !KNativeLayer::get().controlValue(getNativeControl(), value))
        return 0;
    KControlPtr alive(this);
    int32_t index = normalise(static_cast<int32_t>(std::lround(value)));
    KEventReturn result = 1;
    if (index != selected) {
        selected = index;
        result = sendAction(KControlActionEvent::Changed);
    }
    if (code == KControlNotification::Activated && selected >= 0)
        result = sendAction(KControlActionEvent::Activated);
    return result;
}

void KChoiceNativeControl::describe(KJsonWriter& out) const
{
    KControl::describe(out);
    out.key("items");
    out.beginArray();
    for (const KString& item : items)
        out.value(item);
    out.endArray();
    out.member("value", selected);
}

bool KChoiceNativeControl::describeNative(KNativeControlSetup& setup) const
{
    setup.items = nativeItems(items);
    setup.value = selected;
    return true;
}
