#pragma once

#include "kernel/KFileReference.h"
#include "kernel/KString.h"
#include "project/KMediaPublisher.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

// What a conversion did, for the summary of the command-line tool and the
// messages of the program.
struct OldDocumentReport {
    // Elements made, by kind ("Stroke", "Text"...).
    std::map<std::string, int32_t> elements;
    int32_t mediaCopied = 0;
    // Media names the old document held that were not found; their elements
    // keep the bare name and draw as missing until found.
    std::vector<std::string> missing;
    // Media found but not readable as pictures today.
    std::vector<std::string> unreadable;
    // Old records that make no element.
    int32_t recordsSkipped = 0;
    // Why the conversion stopped, and where, when it did.
    std::string failure;
    std::string location;
    // The file was no old document at all.
    bool notOldDocument = false;
    // The document written, as a native path.
    std::string document;
};

// The state of one conversion: the platform the old document was made on,
// where its media are looked for, and the names they get in the new
// project's "Media" folder. Nothing is copied until `copyMedia`: the whole
// document is converted in memory first.
class ZConversion {
public:
    ZConversion(const std::string& oldFolder, const std::string& mediaFolder, int32_t platform,
                OldDocumentReport& report);

    int32_t getPlatform() const { return platform; }
    OldDocumentReport& getReport() { return report; }

    // The file an element refers to for an old file name: its copy in the
    // new "Media" folder when it is found beside the old document, or the
    // bare name there when it is missing. `picture` asks that it can be
    // read as a picture.
    KFileReference mediaFile(const KString& oldName, bool picture = false);
    // Copies the media found; false with the reason when a copy fails.
    bool copyMedia(std::string& reason);

    // The last part of an old path in the platform's spelling.
    static std::string bareName(const std::string& oldName, int32_t platform);

private:
    std::string findSource(const std::string& bare) const;

    std::string oldFolder;
    std::string mediaFolder;
    int32_t platform;
    OldDocumentReport& report;
    KMediaPublisherPtr publisher;
    std::vector<std::string> sources;
};
