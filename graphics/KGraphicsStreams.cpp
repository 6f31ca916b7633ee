#include "graphics/KGraphicsStreams.h"

#include "kernel/KClassReader.h"
#include "kernel/KClassStreamState.h"
#include "kernel/KClassWriter.h"
#include "kernel/KError.h"
#include "kernel/KFile.h"

namespace KGraphicsStreams {

namespace {

// Puts the position at the section's end after its payload was read.
bool closeSection(KFile& file, int32_t sectionEnd)
{
    if (file.getError())
        return false;
    int32_t position = file.getPosition();
    if (position > sectionEnd) {
        file.setError(KError::CouldNotReadFile);
        return false;
    }
    if (position < sectionEnd)
        file.setPosition(sectionEnd);
    return true;
}

} // namespace

void writeMainSection(KFile& file, const KClass* cls, const std::function<void()>& body)
{
    KClassWriter writer;
    writer.begin(file, cls);
    writer.newSection(1);
    body();
    writer.end();
}

bool readSections(KFile& file, const KClass* cls, const std::function<SectionResult(int32_t id)>& body)
{
    KClassReader reader;
    int32_t version = 0;
    int32_t sections = 0;
    reader.begin(file, cls, &version, &sections);
    bool mainRead = false;
    bool failed = false;
    int32_t id = 0;
    while (reader.nextSection(&id)) {
        int32_t sectionEnd = file.getPosition() + reader.getSectionSize();
        SectionResult result = body(id);
        if (result == SectionResult::Unknown) {
            reader.skipSection();
            continue;
        }
        if (!closeSection(file, sectionEnd) || result == SectionResult::Failed)
            failed = true;
        else if (id == 1)
            mainRead = true;
    }
    reader.end();
    return mainRead && !failed && file.getError() == 0;
}

bool readMainSection(KFile& file, const KClass* cls, const std::function<bool()>& body)
{
    bool seen = false;
    return readSections(file, cls, [&](int32_t id) {
        // A second section 1 is not read over the first.
        if (id != 1 || seen)
            return SectionResult::Unknown;
        seen = true;
        return body() ? SectionResult::Read : SectionResult::Failed;
    });
}

bool readNested(KFile& file, KThing& object)
{
    int32_t dropped = KClassStreamState::droppedObjects();
    object.readFromFile(file);
    return file.getError() == 0 && KClassStreamState::droppedObjects() == dropped;
}

} // namespace KGraphicsStreams
