#include "tape/TapeHost.h"

#include <cstdio>

#include "tape/Tape.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KServices.h"

namespace {

// The host of a program that installed none.
class QuietTapeHost : public TapeHost { };

TapeHost* gInstalled = nullptr;

TapeHost& quietHost()
{
    static QuietTapeHost host;
    return host;
}

// The new-document size of a program without preferences.
constexpr int16_t kDefaultPageWidth = 640;
constexpr int16_t kDefaultPageHeight = 480;
// Taken for the screen when there is no native layer to ask.
constexpr int32_t kUnknownScreenHeight = 1024;

} // namespace

TapeHost::~TapeHost()
{
    if (gInstalled == this)
        gInstalled = nullptr;
}

TapeHost& TapeHost::get() { return gInstalled ? *gInstalled : quietHost(); }

void TapeHost::install(TapeHost* host) { gInstalled = host; }

void TapeHost::redrawPage(Tape& tape)
{
    tape.rebuildPage();
    selectTool(tape.getToolEntry());
}

void TapeHost::hideHighlight(bool) { }
void TapeHost::showHighlight(Tape&) { }
void TapeHost::beginInPlaceEdit(Tape&, TapeObject&) { }
void TapeHost::leaveInPlaceEdit() { }
void TapeHost::setWindowColour(const KColor&) { }
void TapeHost::showPauseMarks(bool) { }
void TapeHost::showWaitMarks(bool) { }

void TapeHost::stopAction(Tape& tape)
{
    tape.stopPlaying();
    redrawPage(tape);
}

void TapeHost::drawFrameBackground(KGraphicDevice&, const KGraphicRectangle&) { }
void TapeHost::selectTool(int32_t) { }
void TapeHost::refreshBookmarks() { }
void TapeHost::updateMenuBar() { }
void TapeHost::refreshThumbnails() { }

void TapeHost::previewsInvalidated(Tape&) { }
bool TapeHost::autoEditCurrentElement() { return false; }
bool TapeHost::highlightCurrentElement() { return false; }

KGraphicSize TapeHost::newDocumentPageSize() { return KGraphicSize(kDefaultPageWidth, kDefaultPageHeight); }

int32_t TapeHost::screenHeight()
{
    int32_t width = 0;
    int32_t height = kUnknownScreenHeight;
    if (KNativeLayer* layer = KNativeLayer::current())
        layer->screenSize(width, height);
    return height;
}

void TapeHost::beep()
{
    if (KNativeLayer* layer = KNativeLayer::current())
        layer->beep();
}

void TapeHost::alert(const KString&, const KString&) { }
bool TapeHost::chooseColour(KColor&) { return false; }
void TapeHost::openElementDialog(Tape&, TapeObject&) { }
void TapeHost::editBookmark(Tape&, TapeObject&) { }
bool TapeHost::findMissingFile(KFileReference&, KDirectory&, KDirectory*) { return false; }
void TapeHost::collectMediaFile(KFileReference&, KDirectory&, KDirectory&) { }

void TapeHost::refuseMediaName(const KString& name)
{
    std::fprintf(stderr, "TaleLoom: the media name \"%s\" points outside the project folder and was ignored.\n",
                 name.c_str());
}
void TapeHost::checkSpeechEngine() { }
void TapeHost::checkMovieEngine() { }
void TapeHost::checkSoundOutput() { }
void TapeHost::warnSpeechFailed(const KString&) { }
double TapeHost::speechSpeed() { return -1.0; }
void TapeHost::wordLit(TapeObject&, int32_t, int32_t) { }
bool TapeHost::isCursorShown() { return true; }
void TapeHost::showCursor(bool) { }
void TapeHost::releaseCursor(bool) { }
bool TapeHost::isMouseButtonDown() { return false; }
void TapeHost::showingMovie(bool) { }
void TapeHost::beginBusyCursor() { }
void TapeHost::endBusyCursor() { }
void TapeHost::pauseAllMedia() { }
void TapeHost::stopAllMedia() { }
void TapeHost::markActorModified(KThing&) { }
bool TapeHost::loadBitmapResource(int16_t, KImage&) { return false; }
namespace {

bool bookWithoutColourBackgrounds = false;
bool bookWithoutImageBackgrounds = false;

} // namespace

bool TapeHost::printingWithoutColourBackgrounds() { return bookWithoutColourBackgrounds; }
bool TapeHost::printingWithoutImageBackgrounds() { return bookWithoutImageBackgrounds; }

void TapeHost::setBookBackgrounds(bool withoutColour, bool withoutImage)
{
    bookWithoutColourBackgrounds = withoutColour;
    bookWithoutImageBackgrounds = withoutImage;
}

KString tapeTranslate(const char* key)
{
    if (auto translate = kServices().translate)
        return translate(key);
    return KString(key);
}
