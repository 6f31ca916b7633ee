#pragma once

#include "graphics/KGraphicRectangle.h"
#include "graphics/KGraphicSize.h"
#include "kernel/KString.h"
#include "kernel/KThingPtr.h"
#include "tape/TapeForward.h"
#include "windowing/KDialog.h"

class KCheckBoxNativeControl;
class KFileReference;
class KSliderNativeControl;

// The dialogs that change the settings of one element of a tape, or make a
// new one. A dialog is opened on an element: an element already on the
// tape (an edit), or a fresh default element (the create form). The
// controls show the element's values; nothing reaches the element before
// OK, so Cancel leaves an edited element exactly as it was and drops a new
// one.
//
// OK, and only the dialog's own OK button:
// 1. the dialog's check runs; a refused check shows its text under the
//    dialog's title and the dialog stays open;
// 2. the controls' values go into the element;
// 3. a new element enters the tape at its position and the menus are
//    brought up to date; an edited one tells the tape it changed (its page
//    snapshots and, for what draws on the page, its previews from there on);
// 4. the tape is marked changed, the main window redraws its page and the
//    thumbnails are asked to follow.
//
// Whatever the dialog started to let the user try the element (a sound, a
// voice) stops when the dialog closes, however it closes.
class ElementDialog : public KDialog {
    K_DECLARE_CLASS(ElementDialog)
public:
    ElementDialog();
    ~ElementDialog() override;

    // A dialog is never opened without its element: this tells so, naming
    // the dialog, and opens nothing.
    virtual void open();
    // Takes the element; false (after telling, as the plain open() does)
    // when it is not of the dialog's class.
    bool prepare(Tape& tape, TapeObject& element, bool isNew);
    // Prepares and runs the dialog modally. True when the user pressed OK
    // and the element was taken.
    bool open(Tape& tape, TapeObject& element, bool isNew = false);
    using KDialog::open;
    void open(OpenMode mode, int32_t standardButtons) override;
    void close() override;
    KEventReturn doDialogAction(int32_t buttonId) override;

    TapeObject* getElement() const { return element.get(); }
    Tape* getTapeEdited() const;
    bool isNewElement() const { return newElement; }
    // Whether OK took the values.
    bool wasAccepted() const { return accepted; }

    // --- What the application opens ---------------------------------------------

    // Registers this class and the dialog of every kind.
    static void registerDialogClasses();
    // The dialog of the element's kind, or null for a kind without one.
    static KPtr<ElementDialog> makeFor(int32_t type);
    // Whether the kind is made through its dialog.
    static bool createsKind(int32_t type);
    // A fresh default element of the kind, or null.
    static TapeObjectPtr makeElement(int32_t type);
    // Opens the element's dialog on it; false when its kind has none or
    // the user cancelled.
    static bool edit(Tape& tape, TapeObject& element);
    // Opens the kind's dialog on a fresh element; true when the user
    // pressed OK and the element stands on the tape.
    static bool create(Tape& tape, int32_t type);

    // The volume slider's position, 0 to 100, for a volume and back. A
    // slider left where it was gives back the volume it was given, so that
    // a volume between two steps is not rounded by an OK.
    static int32_t sliderOfVolume(double volume);
    // `natural` shrunk to fit `page`, keeping its shape; never grown.
    static KGraphicSize fittedSize(const KGraphicSize& natural, const KGraphicSize& page);
    static double volumeOfSlider(int32_t position, double was);

protected:
    // What each dialog supplies: the name of the element's class it takes,
    // whether an element is of that class, its controls (placed below
    // `top` and filled from the element), its refusal (empty when the
    // values are acceptable), and taking the values into the element.
    virtual const char* elementClassName() const = 0;
    virtual bool takesElement(const TapeObject& candidate) const = 0;
    virtual void makeControls() = 0;
    virtual KString refusal() const { return KString(); }
    virtual void applyValues() = 0;
    // Stops what the dialog started to let the user try the element.
    virtual void stopTrying() { }
    // The element draws on the page: an edit spoils the previews from it.
    virtual bool drawsOnPage() const { return false; }

    // "Import": asks for a file, starting in the documents folder; false
    // when the user cancelled (or, after a beep, when there is no chooser).
    static bool askImportFile(KFileReference& chosen);
    // Copies the file into the edited tape's "Media" folder, as the
    // projects' rule for names says; an alert under the dialog's title
    // when it cannot.
    bool importIntoTapeMedia(const KFileReference& chosen, KFileReference& imported) const;
    // A check box in the left column at row y.
    KPtr<KCheckBoxNativeControl> addCheckBox(int32_t id, const KString& text, int32_t y, bool checked);
    // The edited tape's page, or a new document's when it has none.
    KGraphicSize editedPageSize() const;
    // Where a picture or a film goes: its own size fitted to the page when
    // asked (or when it has no place yet), in the middle when asked.
    static KGraphicRectangle placeOnPage(KGraphicRectangle bounds, const KGraphicSize& natural,
                                         const KGraphicSize& page, bool ownSize, bool centre);
    // A volume slider with its label at (x, y), filled from the volume.
    KPtr<KSliderNativeControl> addVolumeSlider(int32_t id, int32_t x, int32_t y, double volume);
    void addLabel(const KString& text, int32_t x, int32_t y, int32_t width);
    // The speed a voice that tries the element speaks at.
    static double trialSpeechSpeed();

private:
    void tellRefusedOpen() const;
    void commit();

    TapePtr tape;
    TapeObjectPtr element;
    bool newElement = false;
    bool accepted = false;
};
