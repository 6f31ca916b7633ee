// Reads arbitrary bytes as a speech exceptions file, fills a dictionary
// with what came, and rewrites a text made of its words through it. The map
// must lead every spoken character back into the given text, in order, and
// the dictionary written again must read back whole.

#include "fuzz/FuzzErrors.h"
#include "kernel/KClassStreamState.h"
#include "kernel/KFile.h"
#include "kernel/KMemory.h"
#include "kmultimedia/KMultimediaClasses.h"
#include "kmultimedia/KSpeechException.h"
#include "kmultimedia/KSpeechExceptionHandler.h"
#include "kmultimedia/KSpeechRewriter.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

// Longest text rewritten per input, to keep each run short.
constexpr size_t kMaxText = 8192;

bool setUp()
{
    fuzzForwardErrors();
    kRegisterMultimediaClasses();
    return true;
}

KFile* openBytes(KFile& file, const uint8_t* data, size_t size)
{
    void* block = KMemory::allocate(size + 1, false);
    if (size > 0)
        std::memcpy(block, data, size);
    file.setMode(KFileModeReadBuffered);
    file.openFromRAM(block, int32_t(size));
    return &file;
}

void check(bool condition)
{
    if (!condition)
        std::abort();
}

// The words of the dictionary between blanks and marks, then the bytes
// that followed the records, as text.
KString textOf(const std::vector<KSpeechExceptionPtr>& records, const uint8_t* rest, size_t restSize)
{
    static const char* const joints[] = { " ", ". ", ",, ", "\t", "\r\n", "  ", "! " };
    std::string text;
    size_t joint = 0;
    for (const KSpeechExceptionPtr& record : records) {
        if (text.size() > kMaxText)
            break;
        text.append(record->c_str(), size_t(record->getLength()));
        text += joints[joint++ % (sizeof joints / sizeof *joints)];
    }
    text.append(reinterpret_cast<const char*>(rest), std::min(restSize, kMaxText));
    KString result;
    result.setText(text.data(), int32_t(text.size()));
    return result;
}

void checkRewrite(const KSpeechExceptionHandler& handler, const KString& given)
{
    KSpeechRewrite rewrite = KSpeechRewriter(&handler).rewrite(given);
    const std::vector<int32_t>& map = rewrite.positionMap;
    check(map.size() == size_t(rewrite.spoken.getLength()));
    check(given.isEmpty() == map.empty());
    for (size_t i = 0; i < map.size(); ++i) {
        check(map[i] >= 0 && map[i] < given.getLength());
        check(i == 0 || map[i - 1] <= map[i]);
    }
    // Every stretch of the spoken text, and some that run past it, map
    // into the given text.
    auto spokenLength = int32_t(map.size());
    for (int32_t start = -2; start < spokenLength + 2; start += 1 + spokenLength / 64) {
        for (int32_t length : { 0, 1, 3, 17, spokenLength }) {
            int32_t mappedStart = 0;
            int32_t mappedLength = 0;
            if (KSpeechRewriter::mapWord(map, start, length, mappedStart, mappedLength))
                check(mappedStart >= 0 && mappedLength > 0 && mappedStart + mappedLength <= given.getLength());
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static bool ready = setUp();
    (void)ready;
    KClassStreamState::reset();

    KFile file;
    openBytes(file, data, size);
    int32_t version = 0;
    std::vector<KSpeechExceptionPtr> records;
    KSpeechExceptionHandler::ReadResult result = KSpeechExceptionHandler::readStream(file, version, records);
    int32_t position = file.getError() ? int32_t(size) : file.getPosition();
    file.close();
    if (result == KSpeechExceptionHandler::ReadResult::NotExceptions)
        check(records.empty());

    // A handler without a file of its own.
    KSpeechExceptionHandlerPtr handler(new KSpeechExceptionHandler(KFileReference()));
    handler->setEntries(records);
    std::vector<KSpeechException*> entries = handler->getEntries();
    for (size_t i = 1; i < entries.size(); ++i)
        check(entries[i - 1]->compare(*entries[i]) < 0);
    for (KSpeechException* entry : entries)
        check(handler->find(*entry) == entry);

    size_t consumed = std::min(size, size_t(std::max(position, 0)));
    checkRewrite(*handler, textOf(records, data + consumed, size - consumed));

    KFile out;
    out.setMode(KFileModeMemory);
    KSpeechExceptionHandler::writeStream(out, entries);
    KFile again;
    openBytes(again, static_cast<const uint8_t*>(out.getMemoryData()), size_t(out.getMemorySize()));
    std::vector<KSpeechExceptionPtr> reread;
    check(KSpeechExceptionHandler::readStream(again, version, reread) == KSpeechExceptionHandler::ReadResult::Read);
    check(reread.size() == entries.size());
    again.close();
    return 0;
}
