#pragma once

#include "graphics/KGraphicRectangle.h"
#include "kernel/KString.h"
#include "project/BookPrinter.h"

#include <cstdint>
#include <memory>

class KGraphicDevice;

// The program's printing: the current page alone, or the story as a book.
// While a job runs, the print mode says what each sheet is (1 the page, 2 a
// book sheet); the job's sheets come back through the application's
// `doPrintPage`.
//
// A book walks the tape from picture to picture on the main window's page;
// afterwards the tape stands where it stood, its changed flag as it was,
// and the page is drawn again.
class StylusPrinting {
public:
    enum PrintMode : int32_t { NotPrinting = 0, OnePage = 1, Book = 2 };

    StylusPrinting();
    ~StylusPrinting();
    StylusPrinting(const StylusPrinting&) = delete;
    StylusPrinting& operator=(const StylusPrinting&) = delete;

    void pageSetup();
    // The page at the tape's position, one sheet.
    void printPage();
    // Asks how ("Print Book"), then prints the book.
    void askAndPrintBook();
    // Prints the open story as a book; without the dialog the job goes to
    // the default printer.
    void printProject(const BookPrinter::Options& options, bool showDialog);

    // One sheet of the job that runs; nothing when none does.
    void printSheet(KGraphicDevice& device, const KGraphicRectangle& printable, int32_t sheet);

    int32_t getPrintMode() const { return printMode; }
    bool isPrinting() const { return printMode != NotPrinting; }
    // The choices of the last book, offered the next time.
    const BookPrinter::Options& getBookOptions() const { return bookOptions; }
    void setBookOptions(const BookPrinter::Options& options) { bookOptions = options; }

    // "Created with TaleLoom " and the version.
    static KString footerText();

private:
    BookPrinter::Options bookOptions;
    int32_t printMode = NotPrinting;
    std::unique_ptr<BookPrinter> book;
};
