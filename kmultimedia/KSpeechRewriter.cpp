#include "kmultimedia/KSpeechRewriter.h"

#include "kmultimedia/KSpeechExceptionHandler.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace {

// Maps each new stretch of output onto the stretch of given text that
// produced it, from the end of the last pair of lengths on.
class PositionMapper {
public:
    explicit PositionMapper(std::vector<int32_t>& target)
        : map(target)
    {
    }

    void advance(int32_t givenLength, int32_t outputLength)
    {
        if (givenLength <= lastGiven || outputLength <= lastOutput)
            return;
        int32_t givenStep = givenLength - lastGiven;
        int32_t outputStep = outputLength - lastOutput;
        double ratio = double(givenStep) / double(outputStep);
        for (int32_t k = 0; k < outputStep; ++k)
            map.push_back(int32_t(double(k) * ratio) + lastGiven);
        lastGiven = givenLength;
        lastOutput = outputLength;
    }

    // One more output character that stands for the last given one: the
    // space after a text's final word has nothing of its own in the text.
    void repeatLast()
    {
        if (lastGiven <= 0)
            return;
        map.push_back(lastGiven - 1);
        ++lastOutput;
    }

private:
    std::vector<int32_t>& map;
    int32_t lastGiven = 0;
    int32_t lastOutput = 0;
};

// Cuts the closing mark the word is looked up without: a period only when
// it is the word's one period.
char cutClosingMark(const char* word, int32_t& length)
{
    if (length <= 0)
        return 0;
    char last = word[length - 1];
    if (last == '.') {
        if (std::count(word, word + length, '.') != 1)
            return 0;
    } else if (std::string_view(KSpeechRewriter::kPunctuation).find(last) == std::string_view::npos) {
        return 0;
    }
    --length;
    return last;
}

} // namespace

KSpeechRewriter::KSpeechRewriter(const KSpeechExceptionHandler* exceptions)
    : handler(exceptions)
{
}

KSpeechRewrite KSpeechRewriter::rewrite(const KString& given) const
{
    KSpeechRewrite out;
    rewrite(given, out);
    return out;
}

void KSpeechRewriter::rewrite(const KString& given, KSpeechRewrite& out) const
{
    out.positionMap.clear();
    out.spoken.clear();
    int32_t length = given.getLength();
    if (length == 0)
        return;
    KString hostText;
    if (given.getCharSet() != KString::kHostCharSet) {
        hostText = given;
        hostText.convertToHostCharSet();
    }
    const char* text = hostText.isEmpty() ? given.getText() : hostText.getText();
    out.positionMap.reserve(size_t(length) + size_t(length) / 4 + 1);
    std::string spoken;
    spoken.reserve(size_t(length) + size_t(length) / 4 + 1);
    PositionMapper mapper(out.positionMap);
    KString word;
    int32_t wordBegin = 0;
    for (int32_t i = 0; i < length; ++i) {
        bool separator = isSeparator(text[i]);
        // The last character ends the word it belongs to.
        if (!separator && i < length - 1)
            continue;
        int32_t wordLength = (separator ? i : i + 1) - wordBegin;
        char mark = cutClosingMark(text + wordBegin, wordLength);
        word.setText(text + wordBegin, wordLength);
        const KSpeechException* exception = handler ? handler->find(word) : nullptr;
        if (exception)
            spoken.append(exception->getSpoken().c_str(), size_t(exception->getSpoken().getLength()));
        else
            spoken.append(text + wordBegin, size_t(wordLength));
        if (mark)
            spoken.push_back(mark);
        if (separator) {
            spoken.push_back(' ');
            mapper.advance(i + 1, int32_t(spoken.size()));
        } else {
            // The final word is mapped without the space the engine gets
            // after it, so its last character lights too.
            mapper.advance(i + 1, int32_t(spoken.size()));
            spoken.push_back(' ');
            mapper.repeatLast();
        }
        wordBegin = i + 1;
    }
    out.spoken.setText(spoken.data(), int32_t(spoken.size()));
}

bool KSpeechRewriter::mapWord(const std::vector<int32_t>& positionMap, int32_t wordStart, int32_t wordLength,
                              int32_t& start, int32_t& length)
{
    if (positionMap.empty())
        return false;
    int64_t last = int64_t(positionMap.size()) - 1;
    int64_t first = wordStart < 1 ? 0 : wordStart;
    int64_t end = std::min(int64_t(wordStart) + int64_t(wordLength) - 1, last);
    if (first > last || end < first)
        return false;
    int32_t mappedStart = positionMap[size_t(first)];
    int32_t mappedLength = positionMap[size_t(end)] - mappedStart + 1;
    if (mappedLength <= 0)
        return false;
    start = mappedStart;
    length = mappedLength;
    return true;
}
