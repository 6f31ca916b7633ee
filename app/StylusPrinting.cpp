#include "app/StylusPrinting.h"

#include "app/PrintBookDialog.h"
#include "app/StylusActions.h"
#include "app/StylusApplication.h"
#include "app/StylusWindow.h"
#include "app/UiText.h"
#include "graphics/KImage.h"
#include "project/StylusProject.h"
#include "tape/Tape.h"
#include "windowing/KBusyCursor.h"
#include "windowing/KPrintingManager.h"

namespace {

// The job's title on the printer's queue.
const char* const kJobTitle = "TaleLoom";

Tape* shownTape()
{
    StylusActions* actions = StylusActions::current();
    StylusProject* project = actions ? actions->getProject() : nullptr;
    return project ? project->getTape() : nullptr;
}

// Puts the tape back where it stood after a walk, its changed flag too,
// and lets the page cache work again.
class TapeWalkGuard {
public:
    explicit TapeWalkGuard(Tape& walked)
        : tape(walked)
        , position(walked.getPosition())
        , playIndex(walked.getPlayIndex())
        , modified(walked.isModified())
        , cacheEnabled(walked.getPageCache().isEnabled())
    {
        // What is printed is drawn from the elements, never from a snapshot.
        tape.getPageCache().setEnabled(false);
    }
    ~TapeWalkGuard()
    {
        tape.getPageCache().setEnabled(cacheEnabled);
        tape.setPositionQuietly(position);
        tape.setPlayIndex(playIndex);
        if (!modified)
            tape.clearModified();
    }
    TapeWalkGuard(const TapeWalkGuard&) = delete;
    TapeWalkGuard& operator=(const TapeWalkGuard&) = delete;

private:
    Tape& tape;
    int32_t position;
    int32_t playIndex;
    bool modified;
    bool cacheEnabled;
};

// The print mode for the time of a job.
class PrintModeScope {
public:
    PrintModeScope(int32_t& mode, int32_t value)
        : mode(mode)
    {
        mode = value;
    }
    ~PrintModeScope() { mode = StylusPrinting::NotPrinting; }
    PrintModeScope(const PrintModeScope&) = delete;
    PrintModeScope& operator=(const PrintModeScope&) = delete;

private:
    int32_t& mode;
};

} // namespace

StylusPrinting::StylusPrinting() = default;
StylusPrinting::~StylusPrinting() = default;

KString StylusPrinting::footerText() { return uiText("Created with TaleLoom %1", StylusApplication::versionText()); }

void StylusPrinting::pageSetup() { KPrintingManager::get().doPageSetup(); }

void StylusPrinting::printPage()
{
    StylusWindow* window = StylusWindow::current();
    if (!window || !shownTape())
        return;
    {
        PrintModeScope mode(printMode, OnePage);
        KPrintingManager::get().print(KString(kJobTitle), 1, true);
    }
    window->updateBrushPosition();
}

void StylusPrinting::askAndPrintBook()
{
    BookPrinter::Options chosen = bookOptions;
    if (!PrintBookDialog::ask(chosen))
        return;
    bookOptions = chosen;
    printProject(chosen, true);
}

void StylusPrinting::printProject(const BookPrinter::Options& options, bool showDialog)
{
    Tape* tape = shownTape();
    StylusWindow* window = StylusWindow::current();
    if (!tape || !window || isPrinting())
        return;
    {
        TapeWalkGuard walk(*tape);
        window->hideBrush();
        auto source = [tape, window](int32_t position, KImage& picture) {
            tape->setPositionQuietly(position);
            tape->rebuildPage();
            return window->composePage(picture);
        };
        book = std::make_unique<BookPrinter>(options, BookPrinter::picturePositions(*tape), source, footerText());
        PrintModeScope mode(printMode, Book);
        KPrintingManager::get().print(KString(kJobTitle), book->getSheetCount(), showDialog);
        book.reset();
    }
    window->redrawPage(true);
    window->updateBrushPosition();
}

void StylusPrinting::printSheet(KGraphicDevice& device, const KGraphicRectangle& printable, int32_t sheet)
{
    KBusyCursor busy;
    if (printMode == Book && book) {
        book->printSheet(device, printable, sheet);
        return;
    }
    StylusWindow* window = StylusWindow::current();
    if (printMode != OnePage || !window)
        return;
    KImagePtr picture(new KImage());
    if (window->composePage(*picture))
        BookPrinter::printOnePage(device, printable, *picture, footerText());
}
