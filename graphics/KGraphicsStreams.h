#pragma once

#include "kernel/KThing.h"

#include <functional>
#include <initializer_list>

// The class stream frames that the graphics records share. Every record is
// read defensively: a section whose payload does not fit its length, or a
// nested record of another class, counts as damage, and the stream is left
// aligned at the end of the section. Readers gather the payload in locals
// and take it over only when the whole record was read.
namespace KGraphicsStreams {

// A section a graphics record knows: its number and the code that reads its
// payload, answering whether the payload was whole.
struct Section {
    int32_t id;
    std::function<bool()> read;
};

// Writes the frame of `cls` with one section, number 1, filled by `body`.
void writeMainSection(KFile& file, const KClass* cls, const std::function<void()>& body);

// Reads a frame of `cls` through KClassReader::readSections: unknown
// sections are skipped, a payload that ran past its section's end marks the
// file as damaged. True when section 1 was read whole and nothing failed.
bool readSections(KFile& file, const KClass* cls, std::initializer_list<Section> sections);

// A frame whose section 1 is read by `body`, which answers whether the
// payload was whole; other sections are skipped.
bool readMainSection(KFile& file, const KClass* cls, const std::function<bool()>& body);

// The stored forms of a coordinate: big-endian 16 or 32 bits, or a 32-bit
// float. The coordinate's type chooses the form.
void writeValue(KFile& file, int16_t value);
void writeValue(KFile& file, int32_t value);
void writeValue(KFile& file, float value);
void readValue(KFile& file, int16_t& value);
void readValue(KFile& file, int32_t& value);
void readValue(KFile& file, float& value);

// A frame of `cls` whose section 1 holds two coordinates, as points, sizes
// and vectors store them.
template<class C>
void writePair(KFile& file, const KClass* cls, C first, C second)
{
    writeMainSection(file, cls, [&] {
        writeValue(file, first);
        writeValue(file, second);
    });
}

// Reads a pair written by writePair; false, with `first` and `second` as
// they were, when the record is damaged or of another class.
template<class C>
bool readPair(KFile& file, const KClass* cls, C& first, C& second);

// Reads the record of a class of another subsystem (a KString, a KFlagSet)
// inside a payload. True when it was read whole: no error in the file and
// no stream dropped for a class id that did not match.
bool readNested(KFile& file, KThing& object);

} // namespace KGraphicsStreams
