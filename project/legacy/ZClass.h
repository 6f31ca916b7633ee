#pragma once

#include <cstdint>

class ZFile;

// The classes of old documents, kept apart from the program's own class
// registry. Each old class stands in the stream under a name, and its id is
// made from that name by the same rule as today's (the wrapping product of
// its characters), so an old "Tape" has the id of today's. The names are one
// table, to be corrected there should a real old file disagree.
class ZClass {
public:
    enum Kind : int32_t {
        Array,
        Bag,
        String,
        Color,
        Point,
        Rectangle,
        Size,
        Font,
        StyledText,
        StyleInfo,
        Tape,
        TapeObject,
        Stroke,
        StylusText,
        StylusSound,
        StylusSpeech,
        StylusPause,
        Image,
        Movie,
        WaitMouseClick,
        WipeOut,
        KindCount,
    };

    // The reader's name of the class ("ZStroke") and its name in the stream.
    static const char* readerName(Kind kind);
    static const char* streamName(Kind kind);
    static int32_t idOf(Kind kind);
    // The kind of an id; false ("Class Was Not Registered.") for an unknown
    // one.
    static bool findClass(ZFile& file, int32_t id, Kind& kind);
    // Reads a class head, id and version, and checks the id: another old
    // class is "Wrong Class.", anything else "Invalid Class.".
    static bool readClassInfo(ZFile& file, Kind expected, int32_t& version);
};
