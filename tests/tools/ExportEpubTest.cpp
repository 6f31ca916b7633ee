// Stories exported as EPUB read-along books: what epubcheck says of them,
// their pages, and the times of their lit words against the trace.

#include "tests/kernel/FileTestSupport.h"

#include "app/AppClasses.h"
#include "kernel/KFileReference.h"
#include "kmultimedia/KSoundHiliteMarker.h"
#include "kmultimedia/KSoundHiliteMedia.h"
#include "kmultimedia/KWavWriter.h"
#include "project/BookPrinter.h"
#include "project/StylusProject.h"
#include "tape/StylusPause.h"
#include "tape/StylusText.h"
#include "tape/Tape.h"
#include "tools/make-sample-story/SampleStory.h"
#include "tools/taleloom-tool/EpubText.h"
#include "tools/taleloom-tool/ExportEpubCommand.h"
#include "tools/taleloom-tool/TaleloomTool.h"
#include "tools/taleloom-tool/ToolProject.h"
#include "tools/taleloom-tool/TraceCommand.h"

#include <gtest/gtest.h>
#include <zip.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <regex>
#include <sstream>

using namespace filetest;
namespace fs = std::filesystem;

namespace {

constexpr const char* kEpubcheckJar = "/usr/share/java/epubcheck.jar";

// The entries of a zip in their order, with their contents.
struct ZipEntry {
    std::string name;
    std::string content;
    bool stored = false;
};

std::vector<ZipEntry> readZip(const std::string& path)
{
    std::vector<ZipEntry> entries;
    int error = 0;
    zip_t* archive = zip_open(path.c_str(), ZIP_RDONLY, &error);
    if (!archive)
        return entries;
    for (zip_int64_t i = 0; i < zip_get_num_entries(archive, 0); ++i) {
        zip_stat_t stat;
        zip_stat_index(archive, zip_uint64_t(i), 0, &stat);
        ZipEntry entry { stat.name, std::string(size_t(stat.size), '\0'), stat.comp_method == ZIP_CM_STORE };
        if (zip_file_t* file = zip_fopen_index(archive, zip_uint64_t(i), 0)) {
            zip_fread(file, entry.content.data(), stat.size);
            zip_fclose(file);
        }
        entries.push_back(entry);
    }
    zip_close(archive);
    return entries;
}

std::string entry(const std::vector<ZipEntry>& entries, const std::string& name)
{
    for (const ZipEntry& found : entries) {
        if (found.name == name)
            return found.content;
    }
    return {};
}

// The word pars of an overlay: the word's id and its clip's start in ms.
std::vector<std::pair<std::string, int32_t>> overlayWords(const std::string& smil)
{
    std::vector<std::pair<std::string, int32_t>> words;
    std::regex par(R"re(#(w[0-9]+-[0-9]+)"/><audio src="[^"]+" clipBegin="([0-9]+)\.([0-9]{3})s")re");
    for (std::sregex_iterator it(smil.begin(), smil.end(), par), end; it != end; ++it)
        words.emplace_back((*it)[1].str(), std::stoi((*it)[2].str()) * 1000 + std::stoi((*it)[3].str()));
    return words;
}

// epubcheck's verdict, or empty when it cannot run here.
std::string epubcheck(const std::string& book)
{
    if (!fs::exists(kEpubcheckJar) || std::system("java -version >/dev/null 2>&1") != 0)
        return {};
    std::string command = std::string("java -jar ") + kEpubcheckJar + " '" + book + "' 2>&1";
    std::string output;
    if (FILE* pipe = popen(command.c_str(), "r")) {
        char buffer[4096];
        while (size_t read = fread(buffer, 1, sizeof buffer, pipe))
            output.append(buffer, read);
        pclose(pipe);
    }
    return output;
}

void expectEpubcheckClean(const std::string& book)
{
    std::string verdict = epubcheck(book);
    if (verdict.empty()) {
        GTEST_LOG_(INFO) << "epubcheck is not installed: the book is not validated";
        return;
    }
    EXPECT_NE(verdict.find("0 fatals / 0 errors / 0 warnings"), std::string::npos) << verdict;
}

class ExportEpub : public ::testing::Test {
protected:
    void SetUp() override
    {
        registerDocumentClasses();
        std::string reason;
        ASSERT_TRUE(SampleStory::write(folder.path(), reason)) << reason;
        sample = folder.path() + "/" + SampleStory::kProjectName + "/" + SampleStory::kProjectName + ".TPD";
    }
    std::string saveStory(const std::vector<TapeObjectPtr>& elements)
    {
        fs::create_directories(folder.file("story/Media"));
        StylusProjectPtr story(new StylusProject());
        story->getTape()->setPageSize(KGraphicSize(160, 120));
        for (const TapeObjectPtr& element : elements)
            story->getTape()->addElement(*element);
        EXPECT_TRUE(story->save(KFileReference(folder.pathOf("story/story.TPD"))));
        return folder.file("story/story.TPD");
    }
    // A text read from a recording of a second: its three words begin at
    // 0, 300 and 600 ms.
    StylusTextPtr recordedText()
    {
        fs::create_directories(folder.file("story/Media"));
        KWavFormat format;
        std::vector<int16_t> tone(size_t(format.sampleRate), 0);
        for (size_t i = 0; i < tone.size(); ++i)
            tone[i] = int16_t((i / 20) % 2 ? 8000 : -8000);
        KWavWriter writer;
        EXPECT_EQ(writer.open(folder.file("story/Media/reading.wav"), format), KWavWriter::Written);
        writer.write(tone.data(), tone.size() * sizeof(int16_t));
        EXPECT_EQ(writer.close(), KWavWriter::Written);
        StylusTextPtr made(new StylusText());
        made->setTextBlock(
            KTextBlock(KString("one two three"), KTextStyle(KFont("Sans", 14.0), KColor(KColor::Black))));
        made->setBounds(KGraphicRectangle(10, 10, 140, 40));
        made->setSpeaks(false);
        made->setUsesRecording(true);
        KSoundHiliteMediaPtr recording(new KSoundHiliteMedia());
        recording->setText("one two three");
        recording->setSoundFile(KFileReference(folder.pathOf("story/Media/reading.wav")));
        recording->addMarker(*new KSoundHiliteMarker(0, 0, "one"));
        recording->addMarker(*new KSoundHiliteMarker(300, 4, "two"));
        recording->addMarker(*new KSoundHiliteMarker(600, 8, "three"));
        made->setRecording(*recording);
        made->setRecordingDuration(1000);
        return made;
    }
    bool exportTo(const std::string& story, const std::string& book)
    {
        reason.clear();
        warnings.clear();
        return exportEpub(story, book, report, reason, warnings);
    }

    TempFolder folder;
    std::string sample;
    EpubExportReport report;
    std::string reason;
    std::vector<std::string> warnings;
};

} // namespace

TEST_F(ExportEpub, TheSampleStoryIsAValidBookOfItsPagesWithItsWordsAtTheTracedTimes)
{
    std::string book = folder.file("sample.epub");
    ASSERT_TRUE(exportTo(sample, book)) << reason;
    EXPECT_TRUE(warnings.empty());
    std::vector<ZipEntry> entries = readZip(book);
    ASSERT_FALSE(entries.empty());
    EXPECT_EQ(entries[0].name, "mimetype");
    EXPECT_TRUE(entries[0].stored);
    EXPECT_EQ(entries[0].content, "application/epub+zip");

    // As many pages as the story shows a reader, each in the reading order.
    StylusProjectPtr project(new StylusProject());
    std::vector<std::string> ignored;
    ASSERT_TRUE(loadToolProject(sample, *project, reason, ignored));
    Tape& tape = *project->getTape();
    size_t pages = BookPrinter::picturePositions(tape).size();
    EXPECT_EQ(size_t(report.pages), pages);
    std::string opf = entry(entries, "OEBPS/package.opf");
    std::regex itemref("<itemref ");
    EXPECT_EQ(size_t(std::distance(std::sregex_iterator(opf.begin(), opf.end(), itemref), std::sregex_iterator())),
              pages);
    EXPECT_NE(opf.find("pre-paginated"), std::string::npos);

    // The last page is read aloud: each word of its overlay starts where
    // the trace lit it, counted from the end of the page's transition.
    TraceResult trace;
    ASSERT_TRUE(traceStory(sample, {}, kDefaultTraceLimitMs, trace, reason, ignored)) << reason;
    int32_t transition = -1;
    for (int32_t i = tape.getCount() - 1; i >= 0 && transition < 0; --i) {
        if (tape.getAt(i)->getType() == PageTransitionType)
            transition = i;
    }
    int32_t pageStart = -1;
    for (const TraceElement& element : trace.elements) {
        if (element.index == transition)
            pageStart = element.endMs;
    }
    ASSERT_GE(pageStart, 0);
    std::vector<std::pair<std::string, int32_t>> expected;
    for (const TraceWord& word : trace.words)
        expected.emplace_back(epubWordId(word.element, word.wordStart), word.timeMs - pageStart);
    ASSERT_FALSE(expected.empty());
    std::string smil = entry(entries, "OEBPS/page-" + std::to_string(pages) + ".smil");
    EXPECT_EQ(overlayWords(smil), expected);
    // Every word of the overlay is a span of the page.
    std::string page = entry(entries, "OEBPS/page-" + std::to_string(pages) + ".xhtml");
    for (const auto& [id, time] : expected)
        EXPECT_NE(page.find("<span id=\"" + id + "\">"), std::string::npos) << id;
    expectEpubcheckClean(book);
}

TEST_F(ExportEpub, ARecordingLightsItsWordsAtItsMarkersAndAPageWithoutSoundHasNoOverlay)
{
    StylusPausePtr after(new StylusPause());
    after->setDuration(0);
    std::string book = folder.file("recorded.epub");
    ASSERT_TRUE(exportTo(saveStory({ recordedText(), after }), book)) << reason;
    std::vector<ZipEntry> entries = readZip(book);
    std::vector<std::pair<std::string, int32_t>> words = overlayWords(entry(entries, "OEBPS/page-1.smil"));
    // Lit on the tick after each marker, as the player shows them.
    std::vector<std::pair<std::string, int32_t>> expected { { "w0-0", 20 }, { "w0-4", 320 }, { "w0-8", 620 } };
    EXPECT_EQ(words, expected);
    EXPECT_EQ(report.overlays, 1);
    EXPECT_NE(entry(entries, "OEBPS/audio/page-1.mp3").size(), 0u);
    expectEpubcheckClean(book);

    // A pause alone: a page of a picture, no sound, no overlay.
    StylusPausePtr only(new StylusPause());
    only->setDuration(500);
    ASSERT_TRUE(exportTo(saveStory({ only }), book)) << reason;
    entries = readZip(book);
    EXPECT_EQ(report.pages, 1);
    EXPECT_EQ(report.overlays, 0);
    EXPECT_EQ(entry(entries, "OEBPS/package.opf").find("media:duration"), std::string::npos);
    EXPECT_FALSE(entry(entries, "OEBPS/images/page-1.png").empty());
    expectEpubcheckClean(book);
}

TEST_F(ExportEpub, MissingMediaAreNamedAndABookThatCannotBeWrittenLeavesNothing)
{
    fs::remove(folder.path() + "/" + SampleStory::kProjectName + "/Media/" + SampleStory::kChimeName);
    std::string book = folder.file("without.epub");
    ASSERT_TRUE(exportTo(sample, book)) << reason;
    ASSERT_EQ(warnings.size(), 1u);
    EXPECT_NE(warnings[0].find(SampleStory::kChimeName), std::string::npos) << warnings[0];

    std::ostringstream out;
    std::ostringstream err;
    std::string nowhere = folder.file("no such folder/book.epub");
    EXPECT_EQ(runTaleloomTool({ "export-epub", sample, "-o", nowhere }, out, err), 1);
    std::string said = err.str();
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
    EXPECT_FALSE(fs::exists(folder.file("no such folder")));

    // A stop after the first page leaves no book, and the one there stays.
    std::vector<uint8_t> before = bytesOf(book);
    int32_t told = 0;
    EXPECT_FALSE(exportEpub(sample, book, report, reason, warnings, [&](int32_t, int32_t) { return ++told < 1; }));
    EXPECT_EQ(told, 1);
    EXPECT_EQ(bytesOf(book), before);
    EXPECT_FALSE(fs::exists(book + ".part"));
}
