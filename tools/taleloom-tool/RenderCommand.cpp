#include "tools/taleloom-tool/RenderCommand.h"

#include "app/SceneTapePage.h"
#include "app/actors/ActorLoading.h"
#include "graphics/KImage.h"
#include "kernel/KTextCodec.h"
#include "project/StylusProject.h"
#include "tape/StylusText.h"
#include "tools/taleloom-tool/TextsLeftOut.h"
#include "tools/taleloom-tool/ToolMessages.h"
#include "tools/taleloom-tool/ToolProject.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <ostream>

namespace {

struct RenderRequest {
    std::string project;
    std::string output;
    int32_t position = -1;
    int32_t size = 0;
    RenderMark mark;
    bool marked = false;
    bool withoutTexts = false;
};

// Digits only, and no larger than `largest`.
bool parseCount(const std::string& text, int64_t largest, int32_t& count)
{
    if (text.empty() || text.size() > 10
        || !std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c); }))
        return false;
    long long value = std::stoll(text);
    if (value > largest)
        return false;
    count = int32_t(value);
    return true;
}

bool endsWithPng(const std::string& name)
{
    if (name.size() < 5)
        return false;
    std::string extension = name.substr(name.size() - 4);
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return char(std::tolower(c)); });
    return extension == ".png";
}

bool parseRequest(const std::vector<std::string>& arguments, RenderRequest& request)
{
    bool positionGiven = false;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        bool hasValue = i + 1 < arguments.size();
        if (argument == "--position" && hasValue && !positionGiven) {
            positionGiven = true;
            if (!parseCount(arguments[++i], INT32_MAX, request.position))
                return false;
        } else if (argument == "--size" && hasValue && request.size == 0) {
            if (!parseCount(arguments[++i], kLargestPictureSide, request.size) || request.size == 0)
                return false;
        } else if (argument == "--lit" && hasValue && !request.marked) {
            request.marked = true;
            if (!parseRenderMark(arguments[++i], request.mark))
                return false;
        } else if (argument == "--no-texts" && !request.withoutTexts) {
            request.withoutTexts = true;
        } else if (argument == "-o" && hasValue && request.output.empty()) {
            request.output = arguments[++i];
        } else if (request.project.empty() && !argument.empty() && argument[0] != '-') {
            request.project = argument;
        } else {
            return false;
        }
    }
    return !request.project.empty() && endsWithPng(request.output);
}

// The page the tape draws on for the picture: a scene without a window,
// with the project's actors ready in the tape. An actor whose file cannot be
// read is left out, with a warning.
KPtr<SceneTapePage> makePageFor(Tape& tape, StylusProject& project, const std::string& path,
                                std::vector<std::string>& warnings)
{
    KPtr<SceneTapePage> page(new SceneTapePage(tape.getPageSize()));
    if (KDirectory* actors = project.getActorsDirectory()) {
        ToolMessages messages;
        loadTapeActors(tape, *actors);
        for (const std::string& line : messages.getLines())
            warnings.push_back(path + ": " + line);
    }
    return page;
}

// The text lit over the page as the play shows it.
void drawMark(Tape& tape, TapePage& page, const RenderMark& mark)
{
    auto* text = dynamic_cast<StylusText*>(tape.getAt(mark.element));
    KGraphicRectangle bounds = text->getBounds();
    text->drawMarked(page.getPageDevice(), bounds, bounds, mark.start, mark.length);
    page.refresh(bounds);
}

// The page at the position, with the actors that stand there over it.
bool drawPage(StylusProject& project, const std::string& path, int32_t position, KImage& picture,
              std::vector<std::string>& warnings, const RenderMark* mark, bool withoutTexts)
{
    Tape& tape = *project.getTape();
    KPtr<SceneTapePage> page = makePageFor(tape, project, path, warnings);
    tape.setSpriteSystem(*page);
    tape.getPageCache().setEnabled(false);
    tape.setPositionQuietly(position < 0 ? tape.getCount() : std::min(position, tape.getCount()));
    if (withoutTexts) {
        TextsLeftOut texts(tape);
        tape.rebuildPage();
    } else {
        tape.rebuildPage();
    }
    if (mark)
        drawMark(tape, *page, *mark);
    page->composeInto(picture);
    tape.clearSpriteSystem();
    return picture.hasImage();
}

int runRender(const std::vector<std::string>& arguments, std::ostream&, std::ostream& err)
{
    RenderRequest request;
    if (!parseRequest(arguments, request))
        return toolUsageError(renderCommand(), err);
    std::string reason;
    std::vector<std::string> warnings;
    bool done = renderProjectPage(request.project, request.position, request.output, reason, warnings, request.size,
                                  request.marked ? &request.mark : nullptr, request.withoutTexts);
    for (const std::string& warning : warnings)
        err << "taleloom-tool: warning: " << warning << '\n';
    if (!done)
        return toolInputError(reason, err);
    return kToolSucceeded;
}

} // namespace

ToolCommand renderCommand()
{
    return { "render", "PROJECT.TPD [--position N] [--size N] [--lit E:S:L] [--no-texts] -o PAGE.png", &runRender };
}

bool parseRenderMark(const std::string& text, RenderMark& mark)
{
    size_t first = text.find(':');
    size_t second = first == std::string::npos ? first : text.find(':', first + 1);
    if (second == std::string::npos)
        return false;
    RenderMark parsed;
    if (!parseCount(text.substr(0, first), INT32_MAX, parsed.element)
        || !parseCount(text.substr(first + 1, second - first - 1), INT32_MAX, parsed.start)
        || !parseCount(text.substr(second + 1), INT32_MAX, parsed.length))
        return false;
    mark = parsed;
    return true;
}

KGraphicSize scaledPageSize(const KGraphicSize& page, int32_t longerSide)
{
    if (page.width <= 0 || page.height <= 0 || longerSide <= 0)
        return page;
    int64_t longer = std::max(page.width, page.height);
    int64_t shorter = std::min(page.width, page.height);
    // Rounded to the nearest pixel, and never thinner than one.
    int64_t scaled = std::max<int64_t>(1, (shorter * longerSide + longer / 2) / longer);
    if (page.width >= page.height)
        return KGraphicSize(int16_t(longerSide), int16_t(scaled));
    return KGraphicSize(int16_t(scaled), int16_t(longerSide));
}

bool renderProjectPage(const std::string& path, int32_t position, const std::string& pngPath, std::string& reason,
                       std::vector<std::string>& warnings, int32_t longerSide, const RenderMark* mark,
                       bool withoutTexts)
{
    StylusProjectPtr project(new StylusProject());
    if (!loadToolProject(path, *project, reason, warnings))
        return false;
    Tape& tape = *project->getTape();
    if (mark && (mark->element >= tape.getCount() || !dynamic_cast<StylusText*>(tape.getAt(mark->element)))) {
        reason = path + ": element " + std::to_string(mark->element) + " is not a text";
        return false;
    }
    KImagePtr picture(new KImage());
    if (!drawPage(*project, path, position, *picture, warnings, mark, withoutTexts)) {
        reason = path + ": the page could not be drawn";
        return false;
    }
    if (longerSide > 0) {
        KImagePtr scaled(new KImage(scaledPageSize(picture->getSize(), longerSide)));
        if (!scaled->hasImage()) {
            reason = path + ": the page could not be drawn";
            return false;
        }
        picture->drawIn(scaled->getDevice(), scaled->getBounds());
        picture = scaled;
    }
    if (!picture->writeToPath(KTextCodec::fromUtf8(pngPath))) {
        reason = pngPath + ": cannot write the picture";
        return false;
    }
    return true;
}
