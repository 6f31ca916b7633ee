#include "app/TapeObjectMenu.h"

#include "app/ArtResources.h"
#include "app/UiText.h"
#include "kernel/KClass.h"
#include "kernel/KLocalizer.h"
#include "tape/TapeForward.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KWindow.h"

#include <algorithm>

namespace {

constexpr std::array<int32_t, TapeObjectMenu::kEntryCount> kMenuKinds = {
    NoTapeObject, StrokeType, TextType,           ImageType, MovieType,       SoundType,
    SpeechType,   PauseType,  PageTransitionType, WaitType,  ActorActionType,
};

// By type from 0 to 12.
constexpr const char* kTitles[] = {
    kTranslatable("All"),         kTranslatable("Wait"),  kTranslatable("Stroke"), kTranslatable("Text"),
    kTranslatable("Speech"),      kTranslatable("Pause"), kTranslatable("Sound"),  kTranslatable("Page Transition"),
    kTranslatable("Relay Macro"), kTranslatable("Movie"), kTranslatable("Image"),  kTranslatable("Actor"),
    kTranslatable("Actor"),
};

// The index of each type's picture among the filter pictures (all, stroke,
// text, image, movie, sound, speech, transition, wait, pause, actor, macro).
constexpr int16_t kPictureIndex[] = { 0, 8, 1, 2, 6, 9, 5, 7, 11, 4, 3, 10, 10 };

bool isKnownType(int32_t type) { return type >= 0 && type <= ActorMotionType; }

} // namespace

K_DEFINE_CLASS(TapeObjectMenu, KThing)

TapeObjectMenu::TapeObjectMenu() = default;
TapeObjectMenu::~TapeObjectMenu() = default;

const std::array<int32_t, TapeObjectMenu::kEntryCount>& TapeObjectMenu::kinds() { return kMenuKinds; }

KString TapeObjectMenu::titleOf(int32_t type) { return isKnownType(type) ? uiTranslate(kTitles[type]) : KString(); }

int16_t TapeObjectMenu::pictureOf(int32_t type)
{
    return int16_t(ArtResources::kFilterIconBase + (isKnownType(type) ? kPictureIndex[type] : 0));
}

// The filter pictures are drawn whole, without a mask.
KAlphaImagePtr TapeObjectMenu::loadPicture(int32_t type)
{
    KAlphaImagePtr picture(new KAlphaImage());
    if (!ArtResources::loadImage(pictureOf(type), *picture))
        return KAlphaImagePtr();
    return picture;
}

std::vector<KNativeMenuItem> TapeObjectMenu::buildItems(int32_t current) const
{
    if (current == ActorMotionType)
        current = ActorActionType;
    std::vector<KNativeMenuItem> items;
    for (int32_t kind : kMenuKinds) {
        KNativeMenuItem item;
        item.id = kFirstItem + kind;
        item.text = titleOf(kind).c_str();
        item.checkable = true;
        item.radio = true;
        item.checked = kind == current;
        items.push_back(std::move(item));
    }
    return items;
}

int32_t TapeObjectMenu::popUp(KWindow& window, const KWidePoint& where, int32_t current) const
{
    if (!window.getNativeWindow())
        return -1;
    int32_t chosen = KNativeLayer::get().popUpMenu(window.getNativeWindow(), buildItems(current), where.x, where.y);
    return kindOfItem(chosen);
}

int32_t TapeObjectMenu::kindOfItem(int32_t item)
{
    int32_t kind = item - kFirstItem;
    return std::find(kMenuKinds.begin(), kMenuKinds.end(), kind) != kMenuKinds.end() ? kind : -1;
}
