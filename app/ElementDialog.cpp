#include "app/ElementDialog.h"
#include "app/ProjectFiles.h"
#include "app/UndoStep.h"
#include "kernel/KDirectory.h"
#include "kernel/KFileReference.h"
#include "kernel/KPath.h"
#include "windowing/KCheckBoxNativeControl.h"
#include "windowing/KDialogHandler.h"

#include "app/ActorActionDialog.h"
#include "app/ImageDialog.h"
#include "app/MovieDialog.h"
#include "app/PauseDialog.h"
#include "app/SoundDialog.h"
#include "app/SpeechDialog.h"
#include "app/StylusActions.h"
#include "app/StylusWindow.h"
#include "app/TextDialogStandard.h"
#include "app/UiText.h"
#include "app/WaitObjectDialog.h"
#include "app/WipeOutDialog.h"
#include "app/actors/ActorAction.h"
#include "kernel/KClass.h"
#include "tape/StylusImage.h"
#include "tape/StylusMovie.h"
#include "tape/StylusPause.h"
#include "tape/StylusSound.h"
#include "tape/StylusSpeech.h"
#include "tape/StylusText.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "tape/WaitObject.h"
#include "tape/WipeOut.h"
#include "windowing/KAlert.h"
#include "windowing/KSliderNativeControl.h"
#include "windowing/KStaticTextNativeControl.h"
#include "windowing/KTimer.h"

#include <algorithm>
#include <cmath>
#include <string>

K_DEFINE_ABSTRACT_CLASS(ElementDialog, KDialog)

ElementDialog::ElementDialog() = default;

ElementDialog::~ElementDialog() = default;

// The text names the dialog and the element class it wants, so the one who
// called it wrongly reads at once what to call instead. It is a message
// for the program's developers, and stays in English.
void ElementDialog::tellRefusedOpen() const
{
    std::string dialog = getClass()->getName();
    std::string text = "Please Use " + dialog + "::open(const " + elementClassName() + "&)!";
    std::string where = dialog + "::open()";
    alert(KString(where.c_str()), KString(text.c_str()));
}

void ElementDialog::open() { tellRefusedOpen(); }

Tape* ElementDialog::getTapeEdited() const { return tape.get(); }

bool ElementDialog::prepare(Tape& onTape, TapeObject& edited, bool isNew)
{
    if (!takesElement(edited)) {
        tellRefusedOpen();
        return false;
    }
    tape = &onTape;
    element = &edited;
    newElement = isNew;
    accepted = false;
    return true;
}

bool ElementDialog::open(Tape& onTape, TapeObject& edited, bool isNew)
{
    if (!prepare(onTape, edited, isNew))
        return false;
    runModal();
    return accepted;
}

void ElementDialog::open(OpenMode mode, int32_t standardButtons)
{
    if (!element) {
        tellRefusedOpen();
        return;
    }
    KDialog::open(mode, standardButtons);
    if (isOpen())
        makeControls();
}

void ElementDialog::close()
{
    stopTrying();
    KDialog::close();
}

KEventReturn ElementDialog::doDialogAction(int32_t buttonId)
{
    if (buttonId == getButtonId(OkButton) && element && tape) {
        KString refused = refusal();
        if (!refused.isEmpty()) {
            alert(getTitle(), refused);
            return 1;
        }
        stopTrying();
        UndoStep step(tape.get(), newElement ? UndoHistory::Name::Insert : UndoHistory::Name::Change);
        if (!newElement)
            step.willChange(*element);
        applyValues();
        commit();
        accepted = true;
    }
    return KDialog::doDialogAction(buttonId);
}

void ElementDialog::commit()
{
    TapeHost& host = TapeHost::get();
    if (newElement) {
        tape->addElement(*element);
        host.updateMenuBar();
    } else {
        tape->elementChanged(*element);
        if (drawsOnPage()) {
            element->setPreviewValid(false);
            tape->invalidatePreviewsFrom(tape->getPosition(), false);
        }
        tape->setModified();
    }
    StylusWindow* window = StylusWindow::current();
    if (window && window->getTape() == tape.get())
        window->redrawPage(true);
    else
        host.redrawPage(*tape);
    if (StylusActions* actions = StylusActions::current())
        actions->elementAdded();
    host.refreshThumbnails();
}

// --- Shared controls ------------------------------------------------------------------

void ElementDialog::addLabel(const KString& text, int32_t x, int32_t y, int32_t width)
{
    addControl(*new KStaticTextNativeControl(text, KWideRectangle(x, y, width, 20)));
}

KPtr<KSliderNativeControl> ElementDialog::addVolumeSlider(int32_t id, int32_t x, int32_t y, double volume)
{
    addLabel(uiText("Volume"), x, y + 2, 70);
    KPtr<KSliderNativeControl> slider
        = kAdopt(new KSliderNativeControl(id, KWideRectangle(x + 74, y, 200, 24), 0, 100, sliderOfVolume(volume)));
    addControl(*slider);
    return slider;
}

int32_t ElementDialog::sliderOfVolume(double volume)
{
    if (!std::isfinite(volume))
        return 0;
    return int32_t(std::lround(std::clamp(volume, 0.0, 1.0) * 100.0));
}

double ElementDialog::volumeOfSlider(int32_t position, double was)
{
    if (position == sliderOfVolume(was))
        return was;
    return std::clamp(position, 0, 100) / 100.0;
}

double ElementDialog::trialSpeechSpeed()
{
    double speed = TapeHost::get().speechSpeed();
    return speed < 0.0 || std::isnan(speed) ? StylusSpeech::kDefaultSpeed : speed;
}

// --- What the application opens -------------------------------------------------------

void ElementDialog::registerDialogClasses()
{
    ElementDialog::registerClass();
    PauseDialog::registerClass();
    WaitObjectDialog::registerClass();
    SpeechDialog::registerClass();
    SoundDialog::registerClass();
    TextDialogStandard::registerClass();
    ActorActionDialog::registerClass();
    ImageDialog::registerClass();
    MovieDialog::registerClass();
    WipeOutDialog::registerClass();
}

KPtr<ElementDialog> ElementDialog::makeFor(int32_t type)
{
    switch (type) {
    case PauseType:
        return kAdopt(new PauseDialog());
    case WaitType:
        return kAdopt(new WaitObjectDialog());
    case SpeechType:
        return kAdopt(new SpeechDialog());
    case SoundType:
        return kAdopt(new SoundDialog());
    case TextType:
        return kAdopt(new TextDialogStandard());
    case ActorActionType:
        return kAdopt(new ActorActionDialog());
    case ImageType:
        return kAdopt(new ImageDialog());
    case MovieType:
        return kAdopt(new MovieDialog());
    case PageTransitionType:
        return kAdopt(new WipeOutDialog());
    default:
        return KPtr<ElementDialog>();
    }
}

// A text is made in place, where the user types it; its dialog only edits.
bool ElementDialog::createsKind(int32_t type)
{
    return type == PauseType || type == WaitType || type == SpeechType || type == SoundType || type == ImageType
           || type == MovieType || type == PageTransitionType || type == ActorActionType;
}

TapeObjectPtr ElementDialog::makeElement(int32_t type)
{
    switch (type) {
    case PauseType:
        return kAdopt(new StylusPause());
    case WaitType:
        return kAdopt(new WaitObject());
    case SpeechType:
        return kAdopt(new StylusSpeech());
    case SoundType:
        return kAdopt(new StylusSound());
    case TextType:
        return kAdopt(new StylusText());
    case ActorActionType:
        return kAdopt(new ActorAction());
    case ImageType:
        return kAdopt(new StylusImage());
    case MovieType:
        return kAdopt(new StylusMovie());
    case PageTransitionType:
        return kAdopt(new WipeOut());
    default:
        return TapeObjectPtr();
    }
}

KPtr<KCheckBoxNativeControl> ElementDialog::addCheckBox(int32_t id, const KString& text, int32_t y, bool checked)
{
    KPtr<KCheckBoxNativeControl> made
        = kAdopt(new KCheckBoxNativeControl(id, text, KWideRectangle(16, int16_t(y), 300, 22), checked));
    addControl(*made);
    return made;
}

KGraphicSize ElementDialog::editedPageSize() const
{
    Tape* edited = getTapeEdited();
    KGraphicSize size = edited ? edited->getPageSize() : KGraphicSize();
    return size.isEmpty() ? TapeHost::get().newDocumentPageSize() : size;
}

KGraphicSize ElementDialog::fittedSize(const KGraphicSize& natural, const KGraphicSize& page)
{
    if (natural.width <= 0 || natural.height <= 0 || page.width <= 0 || page.height <= 0)
        return natural;
    double scale = std::min({ 1.0, double(page.width) / natural.width, double(page.height) / natural.height });
    return KGraphicSize(int16_t(std::max(1L, std::lround(natural.width * scale))),
                        int16_t(std::max(1L, std::lround(natural.height * scale))));
}

KGraphicRectangle ElementDialog::placeOnPage(KGraphicRectangle bounds, const KGraphicSize& natural,
                                             const KGraphicSize& page, bool ownSize, bool centre)
{
    if (ownSize || bounds.isEmpty()) {
        KGraphicSize fitted = fittedSize(natural, page);
        if (!fitted.isEmpty()) {
            bounds.width = fitted.width;
            bounds.height = fitted.height;
        }
    }
    if (centre)
        bounds.centreIn(KGraphicRectangle(0, 0, page.width, page.height));
    return bounds;
}

bool ElementDialog::askImportFile(KFileReference& chosen)
{
    KDialogHandler* dialogs = KDialogHandler::current();
    if (!dialogs) {
        beep();
        return false;
    }
    chosen = KFileReference(documentsFolder().getPath().getChildFile(KString("x")));
    return dialogs->doOpenDialog(chosen, uiText("Import"), KFileTypeID(0));
}

bool ElementDialog::importIntoTapeMedia(const KFileReference& chosen, KFileReference& imported) const
{
    Tape* edited = getTapeEdited();
    return importIntoMedia(chosen, edited ? edited->getMediaDirectory() : nullptr, getTitle(), imported);
}

bool ElementDialog::edit(Tape& onTape, TapeObject& edited)
{
    KPtr<ElementDialog> dialog = makeFor(edited.getType());
    if (!dialog) {
        TapeHost::get().beep();
        return false;
    }
    TapeObjectPtr keep(&edited);
    return dialog->open(onTape, edited, false);
}

bool ElementDialog::create(Tape& onTape, int32_t type)
{
    KPtr<ElementDialog> dialog = makeFor(type);
    TapeObjectPtr fresh = makeElement(type);
    if (!dialog || !fresh) {
        TapeHost::get().beep();
        return false;
    }
    return dialog->open(onTape, *fresh, true);
}
