#include "tools/taleloom-tool/StoryPages.h"

#include "project/BookPrinter.h"
#include "tape/Tape.h"
#include "tape/TapeObject.h"

#include <algorithm>
#include <map>

namespace {

// The first trace of each element.
std::map<int32_t, const TraceElement*> firstTraces(const TraceResult& trace)
{
    std::map<int32_t, const TraceElement*> traced;
    for (const TraceElement& element : trace.elements)
        traced.emplace(element.index, &element);
    return traced;
}

int32_t pageBegin(const Tape& tape, const std::map<int32_t, const TraceElement*>& traced, int32_t firstIndex)
{
    auto found = traced.find(firstIndex);
    if (found == traced.end())
        return 0;
    const TraceElement& opening = *found->second;
    if (tape.getTypeAtPosition(firstIndex + 1) == PageTransitionType && opening.endMs >= 0)
        return opening.endMs;
    return opening.startMs;
}

int32_t pageEnd(const std::map<int32_t, const TraceElement*>& traced, int32_t endPosition, int32_t playEnd)
{
    auto found = traced.find(endPosition);
    return found == traced.end() ? playEnd : found->second->startMs;
}

} // namespace

std::vector<StoryPage> storyPages(const Tape& tape, const TraceResult& trace)
{
    std::map<int32_t, const TraceElement*> traced = firstTraces(trace);
    std::vector<StoryPage> pages;
    int32_t first = 0;
    for (int32_t position : BookPrinter::picturePositions(tape)) {
        StoryPage page;
        page.firstIndex = first;
        page.endPosition = position;
        page.beginMs = pageBegin(tape, traced, first);
        page.endMs = std::max(page.beginMs, pageEnd(traced, position, trace.endMs));
        for (int32_t index = first; index < position; ++index) {
            TapeObject* element = tape.getAt(index);
            if (element && element->isActive() && element->getType() == TextType)
                page.texts.push_back(index);
        }
        pages.push_back(page);
        first = position;
    }
    return pages;
}

std::vector<PageWord> pageWords(const StoryPage& page, const TraceResult& trace)
{
    std::vector<PageWord> words;
    for (int32_t text : page.texts) {
        const TraceElement* reading = nullptr;
        for (const TraceElement& element : trace.elements) {
            if (element.index == text) {
                reading = &element;
                break;
            }
        }
        size_t first = words.size();
        for (const TraceWord& word : trace.words) {
            if (word.element != text || word.timeMs < page.beginMs || word.timeMs >= page.endMs)
                continue;
            if (words.size() > first && words.back().wordStart == word.wordStart)
                continue;
            words.push_back({ text, word.wordStart, word.wordLength, word.timeMs - page.beginMs, 0 });
        }
        // The mark taken away after the last word ends it.
        int32_t lastWord = words.size() > first ? words.back().beginMs + page.beginMs : page.beginMs;
        int32_t cleared = -1;
        for (const TraceClear& clear : trace.cleared) {
            if (clear.element == text && clear.timeMs > lastWord) {
                cleared = clear.timeMs;
                break;
            }
        }
        int32_t last = cleared >= 0 ? cleared : (reading && reading->endMs >= 0 ? reading->endMs : page.endMs);
        last = std::clamp(last - page.beginMs, 0, page.durationMs());
        for (size_t i = first; i < words.size(); ++i)
            words[i].endMs = std::max(words[i].beginMs, i + 1 < words.size() ? words[i + 1].beginMs : last);
    }
    std::stable_sort(words.begin(), words.end(),
                     [](const PageWord& a, const PageWord& b) { return a.beginMs < b.beginMs; });
    return words;
}
