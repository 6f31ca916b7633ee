#include "tools/taleloom-tool/PrintBookCommand.h"

#include "app/SceneTapePage.h"
#include "app/StylusPrinting.h"
#include "app/actors/ActorLoading.h"
#include "graphics/KImage.h"
#include "kernel/KJsonWriter.h"
#include "project/BookPrinter.h"
#include "project/StylusProject.h"
#include "tape/Tape.h"
#include "tools/taleloom-tool/ToolMessages.h"
#include "tools/taleloom-tool/ToolProject.h"

#include <chrono>
#include <ostream>
#include <utility>

namespace {

struct PrintBookRequest {
    std::string project;
    std::string output;
    BookPrinter::Options options;
    bool perSheetGiven = false;
    bool landscape = false;
    // Points.
    double paperWidth = 595.276;
    double paperHeight = 841.89;
};

bool parsePaper(const std::string& name, PrintBookRequest& request)
{
    if (name == "a4")
        request.paperWidth = 595.276, request.paperHeight = 841.89;
    else if (name == "letter")
        request.paperWidth = 612.0, request.paperHeight = 792.0;
    else
        return false;
    return true;
}

bool parsePerSheet(const std::string& text, int32_t& perSheet)
{
    if (text != "1" && text != "2" && text != "4" && text != "9")
        return false;
    perSheet = text[0] - '0';
    return true;
}

bool parseRequest(const std::vector<std::string>& arguments, PrintBookRequest& request)
{
    bool paperGiven = false;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        bool hasValue = i + 1 < arguments.size();
        if (argument == "--per-sheet" && hasValue && !request.perSheetGiven) {
            request.perSheetGiven = true;
            if (!parsePerSheet(arguments[++i], request.options.perSheet))
                return false;
        } else if (argument == "--paper" && hasValue && !paperGiven) {
            paperGiven = true;
            if (!parsePaper(arguments[++i], request))
                return false;
        } else if (argument == "--landscape") {
            request.landscape = true;
        } else if (argument == "--no-colour-backgrounds") {
            request.options.withoutColourBackgrounds = true;
        } else if (argument == "--no-image-backgrounds") {
            request.options.withoutImageBackgrounds = true;
        } else if (argument == "-o" && hasValue && request.output.empty()) {
            request.output = arguments[++i];
        } else if (request.project.empty() && !argument.empty() && argument[0] != '-') {
            request.project = argument;
        } else {
            return false;
        }
    }
    if (request.landscape)
        std::swap(request.paperWidth, request.paperHeight);
    return !request.project.empty() && !request.output.empty() && request.perSheetGiven;
}

// Colour backgrounds print unless asked otherwise: the tool prints what the
// page shows.
PrintBookRequest defaultRequest()
{
    PrintBookRequest request;
    request.options.withoutColourBackgrounds = false;
    request.options.withoutImageBackgrounds = false;
    return request;
}

bool openStory(const std::string& path, StylusProject& project, std::string& reason, std::ostream& err)
{
    std::vector<std::string> warnings;
    bool opened = loadToolProject(path, project, reason, warnings);
    if (opened) {
        if (KDirectory* actors = project.getActorsDirectory()) {
            ToolMessages messages;
            loadTapeActors(*project.getTape(), *actors);
            for (const std::string& line : messages.getLines())
                warnings.push_back(path + ": " + line);
        }
    }
    for (const std::string& warning : warnings)
        err << "taleloom-tool: warning: " << warning << '\n';
    return opened;
}

void printSummary(std::ostream& out, const PrintBookRequest& request, const BookPrinter& book, double milliseconds)
{
    KJsonWriter writer;
    writer.beginObject();
    writer.member("pictures", book.getPictureCount());
    writer.member("sheets", book.getSheetCount());
    writer.member("perSheet", book.getOptions().perSheet);
    writer.member("paperWidthPoints", request.paperWidth);
    writer.member("paperHeightPoints", request.paperHeight);
    writer.member("milliseconds", milliseconds);
    writer.endObject();
    out << writer.getText() << '\n';
}

int runPrintBook(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err)
{
    PrintBookRequest request = defaultRequest();
    if (!parseRequest(arguments, request))
        return toolUsageError(printBookCommand(), err);
    StylusProjectPtr project(new StylusProject());
    std::string reason;
    if (!openStory(request.project, *project, reason, err))
        return toolInputError(reason, err);

    auto start = std::chrono::steady_clock::now();
    Tape& tape = *project->getTape();
    KPtr<SceneTapePage> page(new SceneTapePage(tape.getPageSize()));
    tape.setSpriteSystem(*page);
    tape.getPageCache().setEnabled(false);
    auto source = [&tape, &page](int32_t position, KImage& picture) {
        tape.setPositionQuietly(position);
        tape.rebuildPage();
        page->composeInto(picture);
        return picture.hasImage();
    };
    BookPrinter book(request.options, BookPrinter::picturePositions(tape), source, StylusPrinting::footerText());
    bool written = book.printToPdf(request.output, request.paperWidth, request.paperHeight, reason);
    tape.clearSpriteSystem();
    if (!written)
        return toolInputError(reason, err);
    double milliseconds = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    printSummary(out, request, book, milliseconds);
    return kToolSucceeded;
}

} // namespace

ToolCommand printBookCommand()
{
    return { "print-book",
             "STORY.TPD --per-sheet 1|2|4|9 [--landscape] [--paper a4|letter] [--no-colour-backgrounds] "
             "[--no-image-backgrounds] -o BOOK.pdf",
             &runPrintBook };
}
