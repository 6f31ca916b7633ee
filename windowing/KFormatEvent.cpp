#include "windowing/KFormatEvent.h"

#include "kernel/KClass.h"
#include "kernel/KVariable.h"

#include <cmath>
#include <cstring>

K_DEFINE_CLASS(KFormatEvent, KEvent)

namespace {

const KVariable* variableOf(const KEvent& event, const char* name)
{
    return dynamic_cast<const KVariable*>(event.getParameter(name));
}

bool colourOf(const KEvent& event, const char* name, KColor& colour)
{
    const auto* value = dynamic_cast<const KColor*>(event.getParameter(name));
    if (!value)
        return false;
    colour = *value;
    return true;
}

} // namespace

KFormatEvent::KFormatEvent()
    : KEvent(kFormatType)
{
}

bool KFormatEvent::isFormatEvent(const KEvent& event)
{
    return event.getType() == kFormatType && std::strcmp(event.getClass()->getName(), "KFormatEvent") == 0;
}

void KFormatEvent::setFontSize(double points) { setParameter(kFontSize, new KVariable(points)); }
void KFormatEvent::setFontFace(const KString& family) { setParameter(kFontFace, new KVariable(family)); }
void KFormatEvent::setFontStyle(int32_t face) { setParameter(kFontStyle, new KVariable(face)); }
void KFormatEvent::setFontColor(const KColor& colour) { setParameter(kFontColor, new KColor(colour)); }
void KFormatEvent::setBackgroundColor(const KColor& colour) { setParameter(kBackgroundColor, new KColor(colour)); }
void KFormatEvent::setAlignment(int16_t alignment) { setParameter(kAlignment, new KVariable(alignment)); }

// A size that is not a number of points (a damaged or hostile value) is
// not a size.
bool KFormatEvent::getFontSize(const KEvent& event, double& points)
{
    const KVariable* value = variableOf(event, kFontSize);
    if (!value || value->getType() != KVariable::DoubleType || !std::isfinite(value->getDouble())
        || value->getDouble() <= 0)
        return false;
    points = value->getDouble();
    return true;
}

bool KFormatEvent::getFontFace(const KEvent& event, KString& family)
{
    const KVariable* value = variableOf(event, kFontFace);
    if (!value || value->getType() != KVariable::StringType || value->getString().isEmpty())
        return false;
    family = value->getString();
    return true;
}

bool KFormatEvent::getFontStyle(const KEvent& event, int32_t& face)
{
    const KVariable* value = variableOf(event, kFontStyle);
    if (!value || value->getType() != KVariable::LongType)
        return false;
    face = value->getLong();
    return true;
}

bool KFormatEvent::getFontColor(const KEvent& event, KColor& colour) { return colourOf(event, kFontColor, colour); }

bool KFormatEvent::getBackgroundColor(const KEvent& event, KColor& colour)
{
    return colourOf(event, kBackgroundColor, colour);
}

bool KFormatEvent::getAlignment(const KEvent& event, int16_t& alignment)
{
    const KVariable* value = variableOf(event, kAlignment);
    if (!value || value->getType() != KVariable::ShortType)
        return false;
    alignment = value->getShort();
    return true;
}
