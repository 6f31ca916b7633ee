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
    // TRANSLATORS: %1 is the story's page size and %2 the screen's, as "1024,768".
    return tapeTranslate("This document's resolution (%1) exceeds the screen resolution (%2); this document cannot "
                         "be opened.")
        .withArguments({ number(width) + "," + number(height), number(screenWidth) + "," + number(screenHeight) });
}
