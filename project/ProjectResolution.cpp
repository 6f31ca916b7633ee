#include "project/ProjectResolution.h"

#include "tape/TapeHost.h"

namespace {

KString number(int32_t value)
{
    KString text;
    text.setFromLong(value);
    return text;
}

} // namespace

KString projectResolutionRefusal(int32_t width, int32_t height, int32_t screenWidth, int32_t screenHeight)
{
    if (width <= screenWidth && height <= screenHeight)
        return KString();
    KString text = tapeTranslate("This document's resolution (");
    text += number(width);
    text += ",";
    text += number(height);
    text += tapeTranslate(") exceeds screen resolution (");
    text += number(screenWidth);
    text += ",";
    text += number(screenHeight);
    text += tapeTranslate("); this document cannot be opened.");
    return text;
}
