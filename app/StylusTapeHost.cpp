#include "app/StylusTapeHost.h"
#include "app/StylusPreviews.h"

#include "app/ActorEditor.h"

#include "app/EditBookmarkDialog.h"

#include "app/ArtResources.h"
#include "app/ElementDialog.h"
#include "app/NavigationPalette.h"
#include "app/StylusActions.h"
#include "app/StylusWindow.h"
#include "app/ToolPalette.h"
#include "graphics/KColor.h"
#include "kernel/KDirectory.h"
#include "kernel/KFileReference.h"
#include "kernel/KPath.h"
#include "kernel/KStringBuilder.h"
#include "kernel/KVariable.h"
#include "kmultimedia/KAbstractMedia.h"
#include "kmultimedia/KMediaManager.h"
#include "kmultimedia/KMovieSupport.h"
#include "kmultimedia/KSoundSupport.h"
#include "kmultimedia/KSpeechSupport.h"
#include "tape/StylusSpeech.h"
#include "windowing/KAlert.h"
#include "windowing/KApplication.h"
#include "windowing/KCursorManager.h"
#include "windowing/KDialogHandler.h"
#include "windowing/KEventTranslator.h"
#include "windowing/KNativeLayer.h"

#include <algorithm>
#include <limits>

namespace {

// The new-document size when the preferences name none.
constexpr int32_t kDefaultPageWidth = 800;
constexpr int32_t kDefaultPageHeight = 600;
// "HighlightElements" is on unless the user turned it off.
constexpr bool kDefaultHighlight = true;
constexpr bool kDefaultAutoEdit = false;

int32_t integerOf(const KVariable& value)
{
    switch (value.getType()) {
    case KVariable::CharType:
        return value.getChar();
    case KVariable::BoolType:
        return value.getBool() ? 1 : 0;
    case KVariable::ShortType:
        return value.getShort();
    case KVariable::LongType:
        return value.getLong();
    case KVariable::FloatType:
        return static_cast<int32_t>(value.getFloat());
    case KVariable::DoubleType:
        return static_cast<int32_t>(value.getDouble());
    case KVariable::UnsignedCharType:
        return static_cast<unsigned char>(value.getChar());
    case KVariable::UnsignedShortType:
        return static_cast<uint16_t>(value.getShort());
    case KVariable::UnsignedLongType:
        return value.getLong();
    default:
        return 0;
    }
}

bool isIntegerKind(int32_t type) { return type != KVariable::StringType && type != KVariable::ObjectType; }

// A stored side of the page, or the default for a missing, zero or
// unusable one. Pages are 16-bit.
int16_t pageSide(int32_t stored, int32_t fallback)
{
    if (stored <= 0 || stored > std::numeric_limits<int16_t>::max())
        return static_cast<int16_t>(fallback);
    return static_cast<int16_t>(stored);
}

KString textOf(const std::string& text) { return KString(text.c_str()); }

} // namespace

// Shows the host's notice on the loop's idle pass, then leaves the list.
class StylusTapeHost::NoticeIdler : public KThing {
public:
    explicit NoticeIdler(StylusTapeHost& owner)
        : host(&owner)
    {
    }
    void forget() { host = nullptr; }
    void idle() override
    {
        if (host)
            host->flushNotices();
    }

private:
    StylusTapeHost* host;
};

StylusTapeHost::StylusTapeHost() = default;

StylusTapeHost::~StylusTapeHost()
{
    cancelScheduledNotice();
    while (busyDepth > 0)
        endBusyCursor();
}

StylusTapeHost& StylusTapeHost::instance()
{
    static StylusTapeHost host;
    return host;
}

// --- The main window ------------------------------------------------------------
// The window shows the tape only when it is the window's; a tape drawn
// elsewhere (a thumbnail, a print) is left to the quiet answers.

namespace {

StylusWindow* windowShowing(const Tape& tape)
{
    StylusWindow* window = StylusWindow::current();
    return window && window->getTape() == &tape ? window : nullptr;
}

} // namespace

void StylusTapeHost::redrawPage(Tape& tape)
{
    if (StylusWindow* window = windowShowing(tape))
        window->redrawPage(true);
    else
        TapeHost::redrawPage(tape);
}

void StylusTapeHost::hideHighlight(bool restore)
{
    if (StylusWindow* window = StylusWindow::current())
        window->hideHighlight(restore);
}

void StylusTapeHost::showHighlight(Tape& tape)
{
    if (StylusWindow* window = windowShowing(tape))
        window->showHighlight();
}

void StylusTapeHost::beginInPlaceEdit(Tape& tape, TapeObject& element)
{
    StylusWindow* window = windowShowing(tape);
    if (!window)
        return;
    KGraphicRectangle bounds = element.getBounds();
    KGraphicPoint centre(int16_t(bounds.x + bounds.width / 2), int16_t(bounds.y + bounds.height / 2));
    window->editElementAt(centre);
}

void StylusTapeHost::leaveInPlaceEdit()
{
    if (StylusWindow* window = StylusWindow::current())
        window->stopEditing();
}

void StylusTapeHost::setWindowColour(const KColor&) { }

void StylusTapeHost::showPauseMarks(bool shown)
{
    if (StylusWindow* window = StylusWindow::current())
        window->showPauseMarks(shown);
}

void StylusTapeHost::showWaitMarks(bool shown)
{
    if (StylusWindow* window = StylusWindow::current())
        window->showWaitMarks(shown);
}

void StylusTapeHost::stopAction(Tape& tape)
{
    StylusActions* actions = StylusActions::current();
    if (actions && windowShowing(tape))
        actions->stopPlay();
    else
        TapeHost::stopAction(tape);
}

void StylusTapeHost::selectTool(int32_t entry)
{
    if (ToolPalette* palette = ToolPalette::current())
        palette->setElementIndicator(entry);
    if (NavigationPalette* navigation = NavigationPalette::current())
        navigation->getControl().followTape();
}

void StylusTapeHost::refreshBookmarks()
{
    if (NavigationPalette* navigation = NavigationPalette::current())
        navigation->getControl().refreshBookmarks();
}

void StylusTapeHost::refreshThumbnails()
{
    if (NavigationPalette* navigation = NavigationPalette::current())
        navigation->getControl().refresh();
}

void StylusTapeHost::previewsInvalidated(Tape& tape)
{
    StylusPreviews* previews = StylusPreviews::current();
    if (previews && previews->getPreview().getTape() == &tape)
        previews->requestUpdate();
}

// --- Preferences --------------------------------------------------------------

const KPreferences& StylusTapeHost::preferences()
{
    if (!cachedPreferences) {
        cachedPreferences = std::make_unique<KPreferences>();
        cachedPreferences->load(kPreferenceGroup);
    }
    return *cachedPreferences;
}

void StylusTapeHost::setPreferences(const KPreferences& values)
{
    cachedPreferences = std::make_unique<KPreferences>(values);
}

void StylusTapeHost::reloadPreferences() { cachedPreferences.reset(); }

bool StylusTapeHost::readFlag(const char* key, bool fallback) { return readInteger(key, fallback ? 1 : 0) != 0; }

int32_t StylusTapeHost::readInteger(const char* key, int32_t fallback)
{
    KVariable* value = preferences().getVariable(KString(key));
    if (!value || !isIntegerKind(value->getType()))
        return fallback;
    return integerOf(*value);
}

double StylusTapeHost::readReal(const char* key, double fallback)
{
    KVariable* value = preferences().getVariable(KString(key));
    if (!value)
        return fallback;
    if (value->getType() == KVariable::DoubleType)
        return value->getDouble();
    if (value->getType() == KVariable::FloatType)
        return value->getFloat();
    return isIntegerKind(value->getType()) ? integerOf(*value) : fallback;
}

double StylusTapeHost::speechSpeed()
{
    return StylusSpeech::speedFromSettings(readFlag("CustomSpeechSpeed", false), readReal("SpeechSpeed", -1.0));
}

bool StylusTapeHost::autoEditCurrentElement() { return readFlag("AutoEdit", kDefaultAutoEdit); }

bool StylusTapeHost::highlightCurrentElement() { return readFlag("HighlightElements", kDefaultHighlight); }

bool StylusTapeHost::limitActorSize() { return readFlag("LimitActorSize", true); }

KGraphicSize StylusTapeHost::newDocumentPageSize()
{
    return KGraphicSize(pageSide(readInteger("NewDocW", 0), kDefaultPageWidth),
                        pageSide(readInteger("NewDocH", 0), kDefaultPageHeight));
}

int32_t StylusTapeHost::screenHeight()
{
    KNativeLayer* layer = KNativeLayer::current();
    if (!layer)
        return kFallbackScreenHeight;
    int32_t width = 0;
    int32_t height = 0;
    layer->screenSize(width, height);
    return height > 0 ? height : kFallbackScreenHeight;
}

// --- The user ---------------------------------------------------------------

void StylusTapeHost::beep() { ::beep(); }

void StylusTapeHost::alert(const KString& title, const KString& text)
{
    // A box that opens under the pen would keep the button's release.
    if (StylusWindow* window = StylusWindow::current())
        window->endOpenDrags();
    if (KNativeLayer::current())
        ::alert(title, text);
    else
        TapeHost::alert(title, text);
}

bool StylusTapeHost::chooseColour(KColor& colour)
{
    KDialogHandler* dialogs = KDialogHandler::current();
    return dialogs && KNativeLayer::current() && dialogs->doColorDialog(colour);
}

// A kind without a dialog beeps.
void StylusTapeHost::openElementDialog(Tape& tape, TapeObject& element) { ElementDialog::edit(tape, element); }

void StylusTapeHost::editBookmark(Tape& tape, TapeObject& element) { EditBookmarkDialog::edit(tape, element); }

// The chooser starts in `directory`; any file may be taken, since a media
// file may have come back under another extension. Nobody to ask counts as
// giving up, so that a search stops instead of asking for every element.
bool StylusTapeHost::findMissingFile(KFileReference& file, KDirectory& directory, KDirectory*)
{
    KDialogHandler* dialogs = KDialogHandler::current();
    if (!dialogs || !KNativeLayer::current())
        return true;
    KString name = file.getObjectName();
    KFileReference asked(directory.getPath().getChildFile(name));
    // TRANSLATORS: a chooser's title; %1 is the missing file's name.
    KString title = name.isEmpty() ? tapeTranslate("Look for missing file")
                                   : tapeTranslate("Look for missing file: %1").withArguments({ name });
    if (!dialogs->doOpenDialog(asked, title, KFileTypeID(0)))
        return true;
    file = asked;
    return false;
}

// A file already in `to`, or whose copy is already there, is not copied
// again; either way the reference ends up naming the file in `to`.
void StylusTapeHost::collectMediaFile(KFileReference& file, KDirectory&, KDirectory& to)
{
    if (file.getPath().isEmpty() || to.getPath().isEmpty())
        return;
    KFileReference target(to.getPath().getChildFile(file.getObjectName()));
    if (target.getPath() == file.getPath())
        return;
    if (!target.doesExist()) {
        if (!file.doesExist() || !file.copy(to) || !target.doesExist())
            return;
    }
    file = target;
}

// --- Refused media names ---------------------------------------------------------

void StylusTapeHost::refuseMediaName(const KString& name)
{
    std::string text = name.c_str();
    if (std::find(refusedNames.begin(), refusedNames.end(), text) == refusedNames.end())
        refusedNames.push_back(text);
    scheduleNotice();
}

void StylusTapeHost::scheduleNotice()
{
    KApplication* application = KApplication::current();
    if (!application)
        return;
    if (!noticeIdler)
        noticeIdler = new NoticeIdler(*this);
    application->addIdler(*noticeIdler.get());
}

void StylusTapeHost::cancelScheduledNotice()
{
    if (!noticeIdler)
        return;
    if (KApplication* application = KApplication::current())
        application->removeIdler(*noticeIdler.get());
    static_cast<NoticeIdler*>(noticeIdler.get())->forget();
    noticeIdler.clear();
}

KString StylusTapeHost::noticeText() const
{
    KStringBuilder text;
    text.append(tapeTranslate("Some media names pointed outside the project folder and were ignored:"));
    int32_t count = static_cast<int32_t>(refusedNames.size());
    int32_t listed = std::min(count, kMaximumListedNames);
    for (int32_t i = 0; i < listed; ++i) {
        text.append("\n");
        text.append(textOf(refusedNames[size_t(i)]));
    }
    if (count > listed) {
        text.append("\n");
        KString left;
        left.setFromLong(count - listed);
        // TRANSLATORS: ends a list of file names; %1 is the number of names left out.
        text.append(tapeTranslate("Not listed: %1").withArguments({ left }));
    }
    return text.toString();
}

// The list is taken before the box opens: the box runs a loop of its own,
// whose idle passes must not show it a second time.
void StylusTapeHost::flushNotices()
{
    if (noticeIdler) {
        if (KApplication* application = KApplication::current())
            application->removeIdler(*noticeIdler.get());
    }
    if (refusedNames.empty())
        return;
    KString text = noticeText();
    refusedNames.clear();
    alert(tapeTranslate("Load Project"), text);
}

// --- Engines, mouse, movie ------------------------------------------------------

bool StylusTapeHost::hasSpeechEngine() { return KSpeechSupport::hasEngine(); }

bool StylusTapeHost::hasMovieEngine() { return KMovieSupport::availableEngines() != 0; }

void StylusTapeHost::checkSpeechEngine()
{
    if (speechWarningGiven || hasSpeechEngine())
        return;
    speechWarningGiven = true;
    alert(tapeTranslate("TaleLoom"), tapeTranslate("No Speech Synthesis is installed!"));
}

void StylusTapeHost::checkMovieEngine()
{
    if (movieWarningGiven || hasMovieEngine())
        return;
    movieWarningGiven = true;
    alert(tapeTranslate("TaleLoom"), tapeTranslate("No Movie Player is installed!"));
}

bool StylusTapeHost::hasSoundOutput() { return KSoundSupport::availableEngines() != 0; }

void StylusTapeHost::checkSoundOutput()
{
    if (soundWarningGiven || hasSoundOutput())
        return;
    soundWarningGiven = true;
    alert(tapeTranslate("TaleLoom"), tapeTranslate("No Sound Output is available!"));
}

// Once a run: a story full of speech must not stop at every sentence.
void StylusTapeHost::warnSpeechFailed(const KString& voice)
{
    if (speechFailureWarningGiven)
        return;
    speechFailureWarningGiven = true;
    // TRANSLATORS: %1 is the name of a synthetic voice.
    KString text = tapeTranslate("The voice %1 could not speak.").withArguments({ voice });
    alert(tapeTranslate("TaleLoom"), text);
}

bool StylusTapeHost::isMouseButtonDown() { return kksMouseButtonDown(); }

void StylusTapeHost::showingMovie(bool on) { movieShown = on; }

// --- Cursor and media ---------------------------------------------------------------

void StylusTapeHost::beginBusyCursor()
{
    if (busyDepth++ > 0)
        return;
    busyCursorManager = KCursorManager::current();
    if (busyCursorManager)
        busyCursorManager->beginWait();
}

void StylusTapeHost::endBusyCursor()
{
    if (busyDepth == 0 || --busyDepth > 0)
        return;
    if (busyCursorManager)
        busyCursorManager->endWait();
    busyCursorManager.clear();
}

bool StylusTapeHost::isCursorShown()
{
    StylusWindow* window = StylusWindow::current();
    return !window || window->isCursorShown();
}

void StylusTapeHost::showCursor(bool shown)
{
    if (StylusWindow* window = StylusWindow::current())
        window->showCursorForWait(shown);
}

void StylusTapeHost::releaseCursor(bool shown)
{
    if (StylusWindow* window = StylusWindow::current())
        window->releaseCursorFromWait(shown);
}

// Only what plays is paused: a paused medium stays so, a loaded one stays
// ready.
void StylusTapeHost::pauseAllMedia()
{
    KMediaManager* manager = KMediaManager::current();
    if (!manager)
        return;
    std::vector<KAbstractMedia*> playing;
    for (int32_t i = 0; i < manager->mediaCount(); ++i) {
        KAbstractMedia* media = manager->getMediaAt(i);
        if (media && media->isPlaying())
            playing.push_back(media);
    }
    for (KAbstractMedia* media : playing) {
        if (manager->hasMedia(*media))
            media->pause();
    }
}

void StylusTapeHost::stopAllMedia()
{
    if (KMediaManager* manager = KMediaManager::current())
        manager->stopAllMedia();
}

bool StylusTapeHost::loadBitmapResource(int16_t id, KImage& image) { return ArtResources::loadImage(id, image); }

// The actor editor's choice of background, behind the frame being drawn.
void StylusTapeHost::drawFrameBackground(KGraphicDevice& device, const KGraphicRectangle& area)
{
    if (ActorEditor* editor = ActorEditor::current())
        editor->drawBackground(device, area);
}
