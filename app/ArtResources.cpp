#include "app/ArtResources.h"

#include "app/native/ArtBundle.h"
#include "kernel/KMemoryBlock.h"

#include <algorithm>
#include <map>
#include <string>

namespace ArtResources {

namespace {

// The palette's controls from the size control on, as make-art names them.
constexpr const char* kToolNames[]
    = { "size",   "play", "stop",  "erase",  "back",  "forward",    "beginning", "end",   "modify",
        "updown", "text", "sound", "speech", "image", "transition", "movie",     "pause", "wait" };
static_assert(std::size(kToolNames) == kLastToolControl - kFirstToolControl + 1);

constexpr const char* kFilterNames[]
    = { "all", "stroke", "text", "image", "movie", "sound", "speech", "transition", "wait", "pause", "actor", "macro" };
static_assert(std::size(kFilterNames) == kFilterIconCount);

constexpr const char* kIndicatorNames[]
    = { "empty",      "wait",       "stroke",     "text",        "speech",         "pause",
        "sound",      "transition", "macro",      "movie",       "image",          "actor-enter",
        "actor-exit", "actor-move", "actor-jump", "actor-order", "actor-movement", "actor-motion" };
static_assert(std::size(kIndicatorNames) == kIndicatorCount);

// By element type, 1 to 12.
constexpr const char* kTypeNames[] = { "wait",       "stroke", "text",  "speech", "pause",        "sound",
                                       "transition", "macro",  "movie", "image",  "actor-action", "actor-motion" };

std::map<int16_t, std::string> makeTable()
{
    std::map<int16_t, std::string> table = {
        { kStartupPicture, "startup.png" },
        { kStartupMask, "startup-mask.png" },
        { kPatternChecks, "pattern-checks.png" },
        { kPatternDots, "pattern-dots.png" },
        { kNavigationBack, "nav-back.png" },
        { kNavigationBackMask, "nav-back-mask.png" },
        { kNavigationForward, "nav-forward.png" },
        { kNavigationForwardMask, "nav-forward-mask.png" },
        { kNavigationBeginning, "nav-beginning.png" },
        { kNavigationBeginningMask, "nav-beginning-mask.png" },
        { kNavigationEnd, "nav-end.png" },
        { kNavigationEndMask, "nav-end-mask.png" },
        { kColourButton, "colour-button.png" },
        { kColourButtonMask, "colour-button-mask.png" },
        { kHandCursor, "cursor-hand.png" },
        { kHandCursorMask, "cursor-hand-mask.png" },
        { kPauseMarker, "marker-pause.png" },
        { kWaitMarker, "marker-wait.png" },
        { kMarkerMask, "marker-mask.png" },
        { kIndicatorMask, "indicator-mask.png" },
        { kTypeIconMask, "kind-mask.png" },
    };
    for (int16_t i = 0; i < kFilterIconCount; ++i)
        table[int16_t(kFilterIconBase + i)] = std::string("filter-") + kFilterNames[i] + ".png";
    for (int16_t i = 0; i < kIndicatorCount; ++i)
        table[int16_t(kIndicatorBase + i)] = std::string("indicator-") + kIndicatorNames[i] + ".png";
    for (int16_t type = 1; type <= 12; ++type)
        table[int16_t(kTypeIconBase + type)] = std::string("kind-") + kTypeNames[type - 1] + ".png";
    for (int32_t control = kFirstToolControl; control <= kLastToolControl; ++control) {
        std::string name = std::string("tool-") + kToolNames[control - kFirstToolControl];
        int16_t picture = toolButtonPicture(control, false);
        table[picture] = name + ".png";
        table[int16_t(picture + 1)] = name + "-mask.png";
        table[int16_t(picture + 2)] = name + "-pushed.png";
        table[int16_t(picture + 3)] = name + "-mask.png";
    }
    return table;
}

const std::map<int16_t, std::string>& table()
{
    static const std::map<int16_t, std::string> files = makeTable();
    return files;
}

} // namespace

int16_t toolButtonPicture(int32_t controlId, bool pushed)
{
    if (controlId < kFirstToolControl || controlId > kLastToolControl)
        return -1;
    return int16_t(kToolButtonBase + 4 * (controlId - kFirstToolControl) + (pushed ? 2 : 0));
}

const char* fileNameOf(int16_t id)
{
    auto found = table().find(id);
    return found == table().end() ? nullptr : found->second.c_str();
}

std::vector<int16_t> allIds()
{
    std::vector<int16_t> ids;
    for (const auto& entry : table())
        ids.push_back(entry.first);
    return ids;
}

bool loadImage(int16_t id, KImage& image)
{
    const char* name = fileNameOf(id);
    if (!name) {
        image.dispose();
        return false;
    }
    registerArtBundle();
    KMemoryBlock bytes;
    std::string path = std::string("/org/taleloom/art/") + name;
    if (!bytes.readFromResourcePath(path.c_str())) {
        image.dispose();
        return false;
    }
    return image.createFromFileBytes(bytes.getAddress(), size_t(bytes.getSize()));
}

KAlphaImagePtr loadMaskedPicture(int16_t picture, int16_t mask)
{
    KAlphaImagePtr image(new KAlphaImage());
    KImagePtr maskImage(new KImage());
    if (!loadImage(picture, *image) || !loadImage(mask, *maskImage))
        return KAlphaImagePtr();
    image->setMask(*maskImage);
    image->setBlendMode(KAlphaImage::Masked);
    image->setHotSpot(cursorHotSpot(picture));
    return image;
}

KGraphicPoint cursorHotSpot(int16_t id)
{
    // The finger's tip of the pointing hand, as make-art draws it.
    if (id == kHandCursor)
        return KGraphicPoint(10, 2);
    return KGraphicPoint(0, 0);
}

} // namespace ArtResources
