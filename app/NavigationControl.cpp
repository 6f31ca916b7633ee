#include "app/NavigationControl.h"
#include "app/StylusPreviews.h"

#include "app/ArtResources.h"
#include "app/StylusActions.h"
#include "app/StylusWindow.h"
#include "app/UiText.h"
#include "graphics/KGraphicStateGuard.h"
#include "graphics/KImageTransforms.h"
#include "kernel/KClass.h"
#include "kernel/KLocalizer.h"
#include "tape/Tape.h"
#include "tape/TapePage.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KWindow.h"

#include <algorithm>

namespace {

struct Place {
    int32_t id;
    int16_t x, y, width, height;
};

// Below the bar, in rows: the filter label and button with the beginning
// and end buttons; the bookmark list; the bookmark line with "Go!"; the
// counter.
constexpr Place kPlaces[] = {
    { NavigationControl::ScrollBar, 4, 56, 194, 16 },
    { NavigationControl::BackButton, 10, 10, 52, 36 },
    { NavigationControl::ForwardButton, 140, 10, 52, 36 },
    { NavigationControl::ElementPicture, 69, 4, NavigationControl::kPictureWidth, NavigationControl::kPictureHeight },
    { NavigationControl::FilterButton, 46, 76, 40, 20 },
    { NavigationControl::FilterLabel, 4, 79, 40, 14 },
    { NavigationControl::BeginningButton, 154, 76, 20, 20 },
    { NavigationControl::EndButton, 178, 76, 20, 20 },
    { NavigationControl::BookmarkList, 4, 100, 194, 16 },
    { NavigationControl::BookmarkLine, 4, 120, 114, 18 },
    { NavigationControl::GoButton, 128, 120, 70, 18 },
    { NavigationControl::Counter, 4, 142, 194, 14 },
};

bool isStopped(const Tape& tape) { return tape.getPlayState() == Tape::PlayState::Stopped; }

} // namespace

K_DEFINE_CLASS(NavigationControl, KControl)

NavigationControl::NavigationControl()
    : filterMenu(new TapeObjectMenu())
    , bookmarks(new KBag())
{
    setPosition(KWidePoint(0, 0));
    setSize(KWideSize(kWidth, kHeight));
    build();
    lastShownPosition = -1;
    refreshBookmarks();
}

NavigationControl::~NavigationControl() = default;

KWideRectangle NavigationControl::placeOf(int32_t id)
{
    for (const Place& place : kPlaces) {
        if (place.id == id)
            return KWideRectangle(place.x, place.y, place.width, place.height);
    }
    return KWideRectangle();
}

template<class Part>
Part& NavigationControl::place(Part* part)
{
    KWideRectangle bounds = placeOf(part->getId());
    part->setPosition(KWidePoint(bounds.x, bounds.y));
    part->setSize(KWideSize(bounds.width, bounds.height));
    addChild(*part);
    return *part;
}

KImageControl& NavigationControl::addPicture(int32_t id, int16_t art, int16_t mask)
{
    KImageControlPtr control(new KImageControl(id, placeOf(id)));
    if (art >= 0) {
        KAlphaImagePtr plain = ArtResources::loadMaskedPicture(art, mask);
        control->setPicture(plain.get());
    }
    addChild(*control);
    switch (id) {
    case BackButton:
        backButton = control;
        break;
    case ForwardButton:
        forwardButton = control;
        break;
    case ElementPicture:
        picture = control;
        break;
    case FilterButton:
        filterButton = control;
        break;
    case BeginningButton:
        beginningButton = control;
        break;
    default:
        endButton = control;
        break;
    }
    return *control;
}

void NavigationControl::build()
{
    scrollBar = new KScrollBarNativeControl(ScrollBar, placeOf(ScrollBar), 0, 0, 0);
    scrollBar->setStep(1);
    addChild(*scrollBar);
    addPicture(BackButton, ArtResources::kNavigationBack, ArtResources::kNavigationBackMask)
        .setTooltip(uiTranslate("Back"));
    addPicture(ElementPicture, -1, -1).setTooltip(uiTranslate("Go to this element"));
    addPicture(ForwardButton, ArtResources::kNavigationForward, ArtResources::kNavigationForwardMask)
        .setTooltip(uiTranslate("Forward"));
    KImageControl& filterPart = addPicture(FilterButton, -1, -1);
    filterPart.setPicture(TapeObjectMenu::loadPicture(0).get());
    filterPart.setTooltip(uiTranslate("Filter"));
    filterLabel = new KStaticTextNativeControl(uiText("Filter:"), placeOf(FilterLabel));
    filterLabel->setId(FilterLabel);
    addChild(*filterLabel);
    addPicture(BeginningButton, ArtResources::kNavigationBeginning, ArtResources::kNavigationBeginningMask)
        .setTooltip(uiTranslate("Beginning"));
    addPicture(EndButton, ArtResources::kNavigationEnd, ArtResources::kNavigationEndMask)
        .setTooltip(uiTranslate("End"));
    bookmarkList = new KPopUpListNativeControl(BookmarkList, placeOf(BookmarkList));
    addChild(*bookmarkList);
    bookmarkLine = new KStaticTextNativeControl(KString(), placeOf(BookmarkLine));
    bookmarkLine->setId(BookmarkLine);
    addChild(*bookmarkLine);
    goButton = new KButtonNativeControl(GoButton, uiText("Go!"), placeOf(GoButton));
    addChild(*goButton);
    counter = new KStaticTextNativeControl(KString(), placeOf(Counter));
    counter->setId(Counter);
    addChild(*counter);
}

KControl* NavigationControl::getPart(int32_t id) const
{
    for (const KControlPtr& child : getChildren()) {
        if (child->getId() == id)
            return child.get();
    }
    return nullptr;
}

void NavigationControl::setTape(Tape* given)
{
    tape = given;
    lastShownPosition = -1;
    barCount = -1;
    refreshBookmarks();
    followTape();
}

Tape* NavigationControl::getTape() const
{
    if (tape)
        return tape.get();
    StylusWindow* window = StylusWindow::current();
    return window ? window->getTape() : nullptr;
}

// --- The shown position --------------------------------------------------------------

void NavigationControl::setPosition(int32_t p)
{
    if (p == lastShownPosition)
        return;
    showPosition(p);
}

void NavigationControl::showPosition(int32_t p)
{
    Tape* shown = getTape();
    int32_t count = shown ? shown->getCount() : 0;
    p = std::clamp(p, 0, count);
    updateScrollBar(count);
    scrollBar->setValue(p);
    shownPosition = p;
    refresh();
    lastShownPosition = p;
}

void NavigationControl::updateScrollBar(int32_t count)
{
    if (count == barCount)
        return;
    barCount = count;
    scrollBar->setRange(0, count);
    scrollBar->setPage(std::max(1, count / 10));
}

void NavigationControl::refresh()
{
    Tape* shown = getTape();
    int32_t count = shown ? shown->getCount() : 0;
    if (shownPosition > count || shownPosition < 0) {
        shownPosition = std::clamp(shownPosition, 0, count);
        lastShownPosition = shownPosition;
    }
    updateScrollBar(count);
    if (scrollBar->getIntegerValue() != shownPosition)
        scrollBar->setValue(shownPosition);
    counter->setText(counterText(shown, shownPosition));
    updatePicture(shown);
    updateBookmarkLine(shown);
    updateParts();
}

KString NavigationControl::counterText(const Tape* tape, int32_t p)
{
    int32_t count = tape ? tape->getCount() : 0;
    KString text
        = KString("(") + KString(std::to_string(p).c_str()) + "/" + KString(std::to_string(count).c_str()) + ")";
    if (tape && p >= 1 && p <= count)
        text += KString(" ") + TapeObjectMenu::titleOf(tape->getTypeAtPosition(p));
    return text;
}

// The preview's thumbnail of the position, once it is built.
bool NavigationControl::showThumbnail(const Tape* shown)
{
    StylusPreviews* previews = StylusPreviews::current();
    if (!shown || !previews || previews->getPreview().getTape() != shown)
        return false;
    KImage* built = previews->getThumbnail(shownPosition);
    if (!built)
        return false;
    KAlphaImagePtr copy(new KAlphaImage(KGraphicSize(kPictureWidth, kPictureHeight)));
    KGraphicRectangle whole(0, 0, kPictureWidth, kPictureHeight);
    built->getDevice().copyTo(copy->getDevice(), whole, whole);
    picture->setPicture(copy.get());
    pictureIsPage = true;
    pictureType = -1;
    scaledPage = 0;
    return true;
}

// The page at the picture's size. Sampled rather than filtered over every
// pixel: it is redone at each change of the page, and 64 by 48 pixels show
// no difference.
KAlphaImagePtr NavigationControl::scaledPicture(KImage& page)
{
    KGraphicSize size = page.getSize();
    KAlphaImagePtr thumbnail(new KAlphaImage(KGraphicSize(kPictureWidth, kPictureHeight)));
    if (size.width <= 0 || size.height <= 0)
        return thumbnail;
    KPixelBuffer from;
    KPixelBuffer to;
    if (page.getDevice().beginPixelAccess(from) && thumbnail->getDevice().beginPixelAccess(to)) {
        KImageTransforms::sampledShrink(from, to);
        thumbnail->getDevice().endPixelAccess(KWideRectangle(0, 0, to.width, to.height));
        return thumbnail;
    }
    page.getDevice().copyTo(thumbnail->getDevice(), KGraphicRectangle(0, 0, size.width, size.height),
                            KGraphicRectangle(0, 0, kPictureWidth, kPictureHeight));
    return thumbnail;
}

// The page is only scaled, never built: at another position the kind of
// the element stands for it.
void NavigationControl::updatePicture(const Tape* shown)
{
    if (showThumbnail(shown))
        return;
    bool atTape = shown && shownPosition == shown->getPosition() && isStopped(*shown) && shown->hasSpriteSystem();
    if (atTape && shown->getCount() > 0) {
        KImage& page = shown->getSpriteSystem()->getPageImage();
        const KGraphicDevice& pageDevice = page.getDevice();
        if (pictureIsPage && scaledPage == pageDevice.getSerial() && scaledPageChanges == pageDevice.getChangeCount())
            return;
        scaledPage = pageDevice.getSerial();
        scaledPageChanges = pageDevice.getChangeCount();
        picture->setPicture(scaledPicture(page).get());
        pictureIsPage = true;
        pictureType = -1;
        return;
    }
    int32_t type = shown && shownPosition >= 1 ? shown->getTypeAtPosition(shownPosition) : 0;
    if (!pictureIsPage && type == pictureType)
        return;
    pictureIsPage = false;
    pictureType = type;
    if (type <= 0) {
        picture->setPicture(nullptr);
        return;
    }
    KAlphaImagePtr& kind = kindPictures[type];
    if (!kind)
        kind
            = ArtResources::loadMaskedPicture(int16_t(ArtResources::kTypeIconBase + type), ArtResources::kTypeIconMask);
    picture->setPicture(kind.get());
}

// The line names the bookmark of the element shown, and the list picks it.
void NavigationControl::updateBookmarkLine(const Tape* shown)
{
    TapeObject* element = shown && shownPosition >= 1 ? shown->getElementAtPosition(shownPosition) : nullptr;
    KString name = element && element->hasBookmark() ? element->getBookmark() : KString();
    if (!(bookmarkLine->getText() == name))
        bookmarkLine->setText(name);
    int32_t entry = 0;
    const std::vector<KString>& items = bookmarkList->getItems();
    for (size_t i = 1; i < items.size() && !name.isEmpty(); ++i) {
        if (items[i] == name) {
            entry = int32_t(i);
            break;
        }
    }
    if (bookmarkList->getSelected() != entry)
        bookmarkList->setSelected(entry);
}

void NavigationControl::updateParts()
{
    Tape* shown = getTape();
    bool on = isEnabled() && shown;
    bool idle = on && isStopped(*shown);
    for (const KControlPtr& child : getChildren())
        child->setEnabled(on);
    goButton->setEnabled(idle);
    picture->setEnabled(idle);
}

void NavigationControl::refreshBookmarks()
{
    Tape* shown = getTape();
    bookmarks = shown ? shown->getBookmarkNames() : KBagPtr(new KBag());
    std::vector<KString> items { uiText("No Bookmark") };
    for (int32_t i = 0; i < bookmarks->getSize(); ++i)
        items.push_back(*static_cast<KString*>(bookmarks->getAt(i)));
    bookmarkList->setItems(items);
    bookmarkList->setSelected(0);
    refresh();
}

void NavigationControl::followTape()
{
    Tape* shown = getTape();
    if (shown != followedTape) {
        followedTape = shown;
        lastShownPosition = -1;
        refreshBookmarks();
    }
    if (!shown || !isStopped(*shown))
        return;
    if (shown->getPosition() != lastShownPosition)
        showPosition(shown->getPosition());
    else
        refresh();
}

void NavigationControl::goToPosition(int32_t p)
{
    Tape* shown = getTape();
    if (!shown || !isStopped(*shown))
        return;
    TapePtr held(shown);
    p = std::clamp(p, 0, shown->getCount());
    StylusWindow* window = StylusWindow::current();
    bool onWindow = window && window->getTape() == shown;
    if (onWindow) {
        window->endOpenDrags();
        window->stopEditing();
    }
    if (p != shown->getPosition())
        shown->goToPosition(p);
    else if (onWindow)
        window->redrawPage(true);
    showPosition(shown->getPosition());
}

// --- Commands ----------------------------------------------------------------------------

void NavigationControl::stepBack()
{
    Tape* shown = getTape();
    if (!shown)
        return;
    int32_t p = findBack(*shown, shownPosition, filter);
    if (p >= 0)
        showPosition(p);
}

void NavigationControl::stepForward()
{
    Tape* shown = getTape();
    if (!shown)
        return;
    int32_t p = findForward(*shown, shownPosition, filter);
    if (p >= 0)
        showPosition(p);
}

void NavigationControl::showBeginning() { showPosition(0); }

void NavigationControl::showEnd()
{
    Tape* shown = getTape();
    showPosition(shown ? shown->getCount() : 0);
}

void NavigationControl::setFilter(int32_t kind)
{
    if (kind == ActorMotionType)
        kind = ActorActionType;
    if (TapeObjectMenu::kindOfItem(TapeObjectMenu::kFirstItem + kind) < 0)
        return;
    filter = kind;
    filterButton->setPicture(TapeObjectMenu::loadPicture(kind).get());
}

void NavigationControl::chooseFilter()
{
    KWindow* window = getWindow();
    if (!window)
        return;
    KWideRectangle button = filterButton->getWindowBounds();
    int32_t kind = filterMenu->popUp(*window, KWidePoint(button.x, button.y + button.height), filter);
    if (kind >= 0)
        setFilter(kind);
}

void NavigationControl::showBookmark(int32_t entry)
{
    Tape* shown = getTape();
    if (!shown || entry < 1 || entry > bookmarks->getSize())
        return;
    const KString& name = *static_cast<KString*>(bookmarks->getAt(entry - 1));
    for (int32_t i = 0; i < shown->getCount(); ++i) {
        TapeObject* element = shown->getAt(i);
        if (element && element->hasBookmark() && element->getBookmark() == name) {
            showPosition(i + 1);
            return;
        }
    }
}

// --- Searches --------------------------------------------------------------------------------

bool NavigationControl::matches(int32_t type, int32_t filter)
{
    if (filter == ActorActionType || filter == ActorMotionType)
        return type == ActorActionType || type == ActorMotionType;
    return type == filter;
}

int32_t NavigationControl::findBack(const Tape& tape, int32_t shown, int32_t filter)
{
    if (filter == 0)
        return shown > 0 ? std::min(shown, tape.getCount() + 1) - 1 : -1;
    for (int32_t i = std::min(shown - 2, tape.getCount() - 1); i >= 0; --i) {
        const TapeObject* element = tape.getAt(i);
        if (element && matches(element->getType(), filter))
            return i + 1;
    }
    return -1;
}

int32_t NavigationControl::findForward(const Tape& tape, int32_t shown, int32_t filter)
{
    int32_t count = tape.getCount();
    if (filter == 0)
        return shown < count ? std::max(shown, -1) + 1 : -1;
    for (int32_t i = std::max(shown, 0); i < count; ++i) {
        const TapeObject* element = tape.getAt(i);
        if (element && matches(element->getType(), filter))
            return i + 1;
    }
    return -1;
}

// --- Events --------------------------------------------------------------------------------------

KEventReturn NavigationControl::doControlAction(KControlActionEvent& event)
{
    KThing* source = event.getSource();
    if (source == scrollBar.get()) {
        if (event.getType() == KControlActionEvent::Changed)
            showPosition(scrollBar->getIntegerValue());
        return 1;
    }
    if (source == bookmarkList.get()) {
        if (event.getType() == KControlActionEvent::Changed)
            showBookmark(bookmarkList->getSelected());
        return 1;
    }
    if (source == goButton.get()) {
        goToPosition(shownPosition);
        return 1;
    }
    auto* image = dynamic_cast<KImageControl*>(source);
    if (!image || image->getParentControl() != this)
        return 0;
    if (event.getType() == KImageControl::Pressed)
        pressed(image->getId());
    return 1;
}

void NavigationControl::pressed(int32_t id)
{
    switch (id) {
    case BackButton:
        stepBack();
        return;
    case ForwardButton:
        stepForward();
        return;
    case BeginningButton:
        showBeginning();
        return;
    case EndButton:
        showEnd();
        return;
    case FilterButton:
        chooseFilter();
        return;
    case ElementPicture: {
        Tape* shown = getTape();
        if (!shown || !isStopped(*shown))
            return;
        TapePtr held(shown);
        goToPosition(shownPosition);
        if (shown->hasCurrentElement())
            StylusActions::modifyElementOf(*shown);
        return;
    }
    default:
        return;
    }
}

void NavigationControl::setEnabled(bool enabled)
{
    KControl::setEnabled(enabled);
    updateParts();
}

// Sunken frames around the picture and the step buttons.
void NavigationControl::paintOn(KWindow& target)
{
    KGraphicStateGuard state(target);
    for (const KImageControlPtr& part : { backButton, picture, forwardButton }) {
        KWideRectangle bounds = part->getWindowBounds();
        KGraphicRectangle frame(int16_t(bounds.x - 2), int16_t(bounds.y - 2), int16_t(bounds.width + 4),
                                int16_t(bounds.height + 4));
        target.frameRectangle(frame, KColor(KColor::DarkGrey));
    }
}
