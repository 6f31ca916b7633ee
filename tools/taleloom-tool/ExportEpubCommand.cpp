#include "tools/taleloom-tool/ExportEpubCommand.h"

#include "app/SceneTapePage.h"
#include "app/UiText.h"
#include "app/actors/ActorLoading.h"
#include "graphics/KImage.h"
#include "kernel/KDirectory.h"
#include "kernel/KStringBag.h"
#include "kernel/KTextCodec.h"
#include "project/StylusProject.h"
#include "tape/StylusText.h"
#include "tape/Tape.h"
#include "tools/taleloom-tool/AudioTimeline.h"
#include "tools/taleloom-tool/EpubPackage.h"
#include "tools/taleloom-tool/EpubText.h"
#include "tools/taleloom-tool/ExportFiles.h"
#include "tools/taleloom-tool/ExportProgress.h"
#include "tools/taleloom-tool/TextsLeftOut.h"
#include "tools/taleloom-tool/ToolProject.h"
#include "tools/taleloom-tool/TraceMedia.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <ostream>

namespace fs = std::filesystem;

namespace {

constexpr const char* kActiveClass = "taleloom-lit";
constexpr const char* kPageId = "page";

std::string pageName(size_t page) { return "page-" + std::to_string(page + 1); }

std::string nowUtc()
{
    std::time_t now = std::time(nullptr);
    std::tm parts {};
    gmtime_r(&now, &parts);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
    return text;
}

std::string utf8(const KString& text) { return KTextCodec::toUtf8(text); }

std::string bookCss(const EpubFonts& fonts, int32_t width, int32_t height)
{
    std::string size = "width: " + std::to_string(width) + "px; height: " + std::to_string(height) + "px;";
    return fonts.css("fonts/") + "html, body { margin: 0; padding: 0; " + size
           + " }\n"
             ".page { position: relative; overflow: hidden; "
           + size + " }\n.background { position: absolute; left: 0; top: 0; " + size
           + " }\n"
             ".text { position: absolute; overflow: hidden; }\n"
             ".line { position: absolute; white-space: pre; margin: 0; }\n";
}

// Everything one page of the book is made of.
struct PageParts {
    std::string texts;
    std::string markCss;
    std::vector<PageWord> words;
};

PageParts pageTexts(Tape& tape, const StoryPage& page, const TraceResult& trace, EpubFonts& fonts)
{
    PageParts parts;
    parts.words = pageWords(page, trace);
    for (int32_t index : page.texts) {
        auto* text = dynamic_cast<StylusText*>(tape.getAt(index));
        if (!text)
            continue;
        std::vector<std::pair<int32_t, int32_t>> lit;
        for (const PageWord& word : parts.words) {
            if (word.element == index)
                lit.emplace_back(word.wordStart, word.wordLength);
        }
        parts.texts += epubTextHtml(*text, index, lit, fonts);
        parts.markCss += epubMarkCss(*text, index, kActiveClass);
    }
    return parts;
}

std::string pageDocument(const std::string& title, const std::string& language, int32_t width, int32_t height,
                         const PageParts& parts, size_t page)
{
    std::string xhtml
        = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE html>\n"
          "<html xmlns=\"http://www.w3.org/1999/xhtml\" xmlns:epub=\"http://www.idpf.org/2007/ops\" lang=\""
          + language + "\" xml:lang=\"" + language + "\">\n<head>\n<meta charset=\"UTF-8\"/>\n<title>"
          + epubEscape(title + " - " + utf8(uiText("Page %1", int32_t(page + 1)))) + "</title>\n"
          + "<meta name=\"viewport\" content=\"width=" + std::to_string(width) + ", height=" + std::to_string(height)
          + "\"/>\n<link rel=\"stylesheet\" type=\"text/css\" href=\"book.css\"/>\n";
    if (!parts.markCss.empty())
        xhtml += "<style>\n" + parts.markCss + "</style>\n";
    xhtml += "</head>\n<body>\n<div class=\"page\" id=\"" + std::string(kPageId) + "\">\n";
    xhtml += "<img class=\"background\" src=\"images/" + pageName(page) + ".png\" alt=\""
             + epubEscape(utf8(uiText("Picture of page %1", int32_t(page + 1)))) + "\"/>\n";
    xhtml += parts.texts + "</div>\n</body>\n</html>\n";
    return xhtml;
}

std::string parElement(const std::string& textRef, const std::string& audio, int32_t from, int32_t to)
{
    return "    <par><text src=\"" + textRef + "\"/><audio src=\"" + audio + "\" clipBegin=\"" + epubSeconds(from)
           + "\" clipEnd=\"" + epubSeconds(to) + "\"/></par>\n";
}

// The overlay covers the page's sound from start to end: each word with
// its stretch, and what lies between (sounds, pauses) with the page.
std::string overlayDocument(const std::vector<PageWord>& words, size_t page, int32_t durationMs)
{
    std::string document = pageName(page) + ".xhtml";
    std::string audio = "audio/" + pageName(page) + ".mp3";
    std::string smil = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                       "<smil xmlns=\"http://www.w3.org/ns/SMIL\" xmlns:epub=\"http://www.idpf.org/2007/ops\" "
                       "version=\"3.0\">\n  <body>\n    <seq epub:textref=\""
                       + document + "#" + kPageId + "\">\n";
    int32_t at = 0;
    for (const PageWord& word : words) {
        int32_t from = std::clamp(word.beginMs, at, durationMs);
        int32_t to = std::clamp(word.endMs, from, durationMs);
        if (to <= from)
            continue;
        if (from > at)
            smil += parElement(document + "#" + kPageId, audio, at, from);
        smil += parElement(document + "#" + epubWordId(word.element, word.wordStart), audio, from, to);
        at = to;
    }
    if (at < durationMs)
        smil += parElement(document + "#" + kPageId, audio, at, durationMs);
    smil += "    </seq>\n  </body>\n</smil>\n";
    return smil;
}

// The table of contents: the story's bookmarks, or each page by number.
std::string navigationDocument(Tape& tape, const std::vector<StoryPage>& pages, const std::string& title,
                               const std::string& language)
{
    std::string entries;
    for (size_t page = 0; page < pages.size(); ++page) {
        for (int32_t index = pages[page].firstIndex; index < pages[page].endPosition; ++index) {
            TapeObject* element = tape.getAt(index);
            if (element && element->hasBookmark())
                entries += "      <li><a href=\"" + pageName(page) + ".xhtml\">"
                           + epubEscape(utf8(element->getBookmark())) + "</a></li>\n";
        }
    }
    if (entries.empty()) {
        for (size_t page = 0; page < pages.size(); ++page)
            entries += "      <li><a href=\"" + pageName(page) + ".xhtml\">"
                       + epubEscape(utf8(uiText("Page %1", int32_t(page + 1)))) + "</a></li>\n";
    }
    std::string contents = epubEscape(utf8(uiText("Contents")));
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE html>\n"
           "<html xmlns=\"http://www.w3.org/1999/xhtml\" xmlns:epub=\"http://www.idpf.org/2007/ops\" lang=\""
           + language + "\" xml:lang=\"" + language + "\">\n<head>\n<meta charset=\"UTF-8\"/>\n<title>"
           + epubEscape(title) + "</title>\n</head>\n<body>\n  <nav epub:type=\"toc\" id=\"toc\">\n    <h1>" + contents
           + "</h1>\n    <ol>\n" + entries + "    </ol>\n  </nav>\n</body>\n</html>\n";
}

// The page's picture as the reader had it in front of them, texts left out.
bool writePicture(Tape& tape, SceneTapePage& scene, const StoryPage& page, const std::string& path)
{
    tape.setPositionQuietly(page.endPosition);
    {
        TextsLeftOut texts(tape);
        tape.rebuildPage();
    }
    KImagePtr picture(new KImage());
    scene.composeInto(*picture);
    return picture->hasImage() && picture->writeToPath(KTextCodec::fromUtf8(path));
}

struct BookRun {
    Tape& tape;
    SceneTapePage& scene;
    const TraceResult& trace;
    AudioTimeline& audio;
    EpubFonts& fonts;
    EpubPackage& package;
    EpubExportReport& report;
    std::vector<std::string>& warnings;
    std::string staging;
    std::string title;
    std::string language;
};

bool addPageSound(BookRun& run, const StoryPage& page, size_t index, std::string& reason)
{
    std::vector<std::string> failed;
    KAudioBuffer sound = run.audio.mix(page.beginMs, page.endMs, failed);
    for (const std::string& line : failed)
        run.warnings.push_back(line + ": its sound is left out");
    std::string path = run.staging + "/" + pageName(index) + ".mp3";
    if (!knsEncodeMp3File(sound, path, reason)) {
        reason = "the sound of page " + std::to_string(index + 1) + " cannot be made: " + reason;
        return false;
    }
    std::string overlayId = "overlay-" + std::to_string(index + 1);
    run.package.add(
        { "audio-" + std::to_string(index + 1), "audio/" + pageName(index) + ".mp3", "audio/mpeg", "", "", path, "" });
    run.package.add({ overlayId, pageName(index) + ".smil", "application/smil+xml", "", "", "",
                      overlayDocument(run.report.words.back(), index, page.durationMs()) });
    run.package.setOverlayDuration(overlayId, page.durationMs());
    run.report.overlays += 1;
    run.report.durationMs += page.durationMs();
    return true;
}

bool addPage(BookRun& run, const StoryPage& page, size_t index, std::string& reason)
{
    std::string picture = run.staging + "/" + pageName(index) + ".png";
    if (!writePicture(run.tape, run.scene, page, picture)) {
        reason = "the picture of page " + std::to_string(index + 1) + " cannot be made";
        return false;
    }
    run.package.add({ "image-" + std::to_string(index + 1), "images/" + pageName(index) + ".png", "image/png", "", "",
                      picture, "" });
    PageParts parts = pageTexts(run.tape, page, run.trace, run.fonts);
    run.report.words.push_back(parts.words);
    bool heard = page.durationMs() > 0 && (!parts.words.empty() || run.audio.isHeardIn(page.beginMs, page.endMs));
    if (heard && !addPageSound(run, page, index, reason))
        return false;
    KGraphicSize size = run.tape.getPageSize();
    run.package.addPage({ pageName(index), pageName(index) + ".xhtml", "application/xhtml+xml", "",
                          heard ? "overlay-" + std::to_string(index + 1) : "", "",
                          pageDocument(run.title, run.language, size.width, size.height, parts, index) });
    return true;
}

void addBookParts(BookRun& run, const std::vector<StoryPage>& pages)
{
    KGraphicSize size = run.tape.getPageSize();
    run.package.add({ "style", "book.css", "text/css", "", "", "", bookCss(run.fonts, size.width, size.height) });
    run.package.add({ "nav", "nav.xhtml", "application/xhtml+xml", "nav", "", "",
                      navigationDocument(run.tape, pages, run.title, run.language) });
    int32_t number = 0;
    for (const EpubFonts::Face& face : run.fonts.getFaces()) {
        bool openType = face.name.size() > 4 && face.name.substr(face.name.size() - 4) == ".otf";
        run.package.add({ "font-" + std::to_string(++number), "fonts/" + face.name, openType ? "font/otf" : "font/ttf",
                          "", "", face.file, "" });
    }
}

// Written beside the target and renamed over it at the end.
bool writeBook(const EpubPackage& package, const EpubPackage::Metadata& metadata, const std::string& target,
               std::string& reason)
{
    std::string partial = target + ".part";
    if (!package.write(partial, metadata, reason)) {
        reason = target + ": cannot be written: " + reason;
        return false;
    }
    std::error_code failed;
    fs::rename(partial, target, failed);
    if (failed) {
        fs::remove(partial, failed);
        reason = target + ": cannot be written";
        return false;
    }
    return true;
}

} // namespace

void warnMissingMedia(StylusProject& project, const std::string& story, std::vector<std::string>& warnings)
{
    Tape& tape = *project.getTape();
    KDirectory* media = project.getMediaDirectory();
    std::vector<KString> actorFiles;
    for (int32_t i = 0; i < tape.getCount(); ++i) {
        TapeObject* element = tape.getAt(i);
        if (element && !element->getActorName().isEmpty())
            actorFiles.push_back(actorFileName(element->getActorName()));
    }
    KStringBagPtr names = tape.getMediaNames();
    for (int32_t i = 0; names && i < names->getSize(); ++i) {
        const KString* name = names->getStringAt(i);
        if (!name || std::find(actorFiles.begin(), actorFiles.end(), *name) != actorFiles.end())
            continue;
        fs::path path = media ? fs::path(utf8(media->getPath().getNativeText())) / utf8(*name) : fs::path(utf8(*name));
        std::error_code ignored;
        if (!fs::is_regular_file(path, ignored))
            warnings.push_back(story + ": " + utf8(*name) + " is missing: it is left out of the book");
    }
}

namespace {

struct ExportRequest {
    std::string story;
    std::string output;
    bool progress = false;
};

bool parseRequest(const std::vector<std::string>& arguments, ExportRequest& request)
{
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "-o" && i + 1 < arguments.size() && request.output.empty())
            request.output = arguments[++i];
        else if (argument == "--progress")
            request.progress = true;
        else if (request.story.empty() && !argument.empty() && argument[0] != '-')
            request.story = argument;
        else
            return false;
    }
    return !request.story.empty() && !request.output.empty();
}

int runExportEpub(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err)
{
    ExportRequest request;
    if (!parseRequest(arguments, request))
        return toolUsageError(exportEpubCommand(), err);
    EpubExportReport report;
    std::string reason;
    std::vector<std::string> warnings;
    ExportProgressLines lines(out);
    ExportProgress progress;
    if (request.progress)
        progress = [&lines](int32_t done, int32_t total) { return lines.report(done, total); };
    bool done = exportEpub(request.story, request.output, report, reason, warnings, progress);
    for (const std::string& warning : warnings)
        err << "taleloom-tool: warning: " << warning << '\n';
    if (!done)
        return toolInputError(reason, err);
    out << request.output << ": " << report.pages << " pages, " << report.overlays << " read aloud, "
        << epubClock(report.durationMs) << '\n';
    return kToolSucceeded;
}

} // namespace

ToolCommand exportEpubCommand() { return { "export-epub", "STORY.TPD -o BOOK.epub [--progress]", &runExportEpub }; }

std::string epubLanguage()
{
    for (const char* name : { "LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG" }) {
        const char* value = std::getenv(name);
        std::string language = value ? value : "";
        language = language.substr(0, language.find_first_of(":_.@"));
        if (language.size() >= 2 && language.size() <= 3
            && std::all_of(language.begin(), language.end(), [](unsigned char c) { return std::isalpha(c); }))
            return language;
    }
    return "en";
}

bool exportEpub(const std::string& story, const std::string& target, EpubExportReport& report, std::string& reason,
                std::vector<std::string>& warnings, const ExportProgress& progress)
{
    report = EpubExportReport();
    if (!exportTargetUsable(target, reason))
        return false;
    ExportFolder staging("taleloom-epub");
    std::error_code failed;
    if (staging.path.empty() || !fs::create_directory(staging.path + "/heard", failed)) {
        reason = "no room for the book's parts in the temporary folder";
        return false;
    }
    TraceAudioLog log(staging.path + "/heard");
    TraceOptions options;
    options.answerWaitsAfterMs = 0;
    options.audioLog = &log;
    options.withoutPictures = true;
    TraceResult trace;
    if (!traceStory(story, options, trace, reason, warnings))
        return false;
    StylusProjectPtr project(new StylusProject());
    std::vector<std::string> loadedAgain;
    if (!loadToolProject(story, *project, reason, loadedAgain))
        return false;
    warnMissingMedia(*project, story, warnings);
    Tape& tape = *project->getTape();
    KPtr<SceneTapePage> scene(new SceneTapePage(tape.getPageSize()));
    if (KDirectory* actors = project->getActorsDirectory())
        loadTapeActors(tape, *actors);
    tape.setSpriteSystem(*scene);
    tape.getPageCache().setEnabled(false);
    std::vector<StoryPage> pages = storyPages(tape, trace);
    AudioTimeline audio(log.getClips());
    EpubFonts fonts;
    EpubPackage package;
    std::string title = fs::path(story).stem().string();
    BookRun run { tape, *scene, trace, audio, fonts, package, report, warnings, staging.path, title, epubLanguage() };
    bool made = true;
    for (size_t page = 0; made && page < pages.size(); ++page) {
        made = addPage(run, pages[page], page, reason);
        if (made && progress && !progress(int32_t(page + 1), int32_t(pages.size()))) {
            reason = "stopped";
            made = false;
        }
    }
    tape.clearSpriteSystem();
    if (!made)
        return false;
    report.pages = int32_t(pages.size());
    addBookParts(run, pages);
    KGraphicSize size = tape.getPageSize();
    EpubPackage::Metadata metadata { title,
                                     run.language,
                                     epubNewIdentifier(),
                                     nowUtc(),
                                     utf8(uiText("A picture story whose words light up as they are read aloud.")),
                                     kActiveClass,
                                     size.width,
                                     size.height };
    return writeBook(package, metadata, target, reason);
}
