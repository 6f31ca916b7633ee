#include "graphics/KGraphicsStreams.h"

#include "kernel/KClassReader.h"
#include "kernel/KClassStreamState.h"
#include "kernel/KClassWriter.h"
#include "kernel/KError.h"
#include "kernel/KFile.h"

#include <vector>

namespace KGraphicsStreams {

void writeMainSection(KFile& file, const KClass* cls, const std::function<void()>& body)
{
    KClassWriter writer;
    writer.begin(file, cls);
    writer.newSection(1);
    body();
    writer.end();
}

bool readSections(KFile& file, const KClass* cls, std::initializer_list<Section> sections)
{
    bool mainRead = false;
    bool failed = false;
    std::vector<KClassReader::KnownSection> known;
    known.reserve(sections.size());
    for (const Section& section : sections) {
        // The entry lives in `sections`, which outlasts the read.
        auto readAndNote = [&, entry = &section](int32_t) {
            if (!entry->read())
                failed = true;
            else if (entry->id == 1)
                mainRead = true;
        };
        known.push_back({ section.id, readAndNote });
    }
    KClassReader::readSections(file, cls, known);
    return mainRead && !failed && file.getError() == 0;
}

bool readMainSection(KFile& file, const KClass* cls, const std::function<bool()>& body)
{
    return readSections(file, cls, { { 1, body } });
}

void writeValue(KFile& file, int16_t value) { file.writeShort(value); }
void writeValue(KFile& file, int32_t value) { file.writeLong(value); }
void writeValue(KFile& file, float value) { file.writeFloat(value); }
void readValue(KFile& file, int16_t& value) { value = file.readShort(); }
void readValue(KFile& file, int32_t& value) { value = file.readLong(); }
void readValue(KFile& file, float& value) { value = file.readFloat(); }

template<class C>
bool readPair(KFile& file, const KClass* cls, C& first, C& second)
{
    C newFirst {};
    C newSecond {};
    bool read = readMainSection(file, cls, [&] {
        readValue(file, newFirst);
        readValue(file, newSecond);
        return file.getError() == 0;
    });
    if (read) {
        first = newFirst;
        second = newSecond;
    }
    return read;
}

template bool readPair<int16_t>(KFile&, const KClass*, int16_t&, int16_t&);
template bool readPair<int32_t>(KFile&, const KClass*, int32_t&, int32_t&);
template bool readPair<float>(KFile&, const KClass*, float&, float&);

bool readNested(KFile& file, KThing& object)
{
    int32_t dropped = KClassStreamState::droppedObjects();
    object.readFromFile(file);
    return file.getError() == 0 && KClassStreamState::droppedObjects() == dropped;
}

} // namespace KGraphicsStreams
