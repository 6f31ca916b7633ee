#pragma once

#include "project/legacy/ZConversion.h"
#include "tape/TapeForward.h"

#include <cstdint>
#include <string>
#include <vector>

// Documents of the program's older generation (".STT") become new
// projects. The whole old tape is read and converted in memory first; only
// then are the project's folder and its "Media" made, the media copied and
// the document written. A failure on the way leaves nothing behind.
namespace OldDocument {

struct Request {
    // The old document, a native path.
    std::string oldPath;
    // KString::Macintosh or KString::Windows: the character set of its texts
    // and the spelling of its file names.
    int32_t platform = 2;
    // The folder the project goes in, and its name (UTF-8).
    std::string folder;
    std::string name;
};

// An old document by its name (".STT" in any case) or by its content: not a
// document of today, and the old tape's id first.
bool isOldDocument(const std::string& path);
bool looksOld(const std::vector<uint8_t>& bytes);

// Converts into "FOLDER/NAME/NAME.TPD"; false with the report's failure.
bool convert(const Request& request, OldDocumentReport& report);

// Reads and converts the old bytes in memory only, as `convert` does
// before it touches the disk; null with the report's failure.
TapePtr convertInMemory(const std::vector<uint8_t>& bytes, ZConversion& conversion);

} // namespace OldDocument
