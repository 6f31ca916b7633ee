#pragma once

#include "kernel/KString.h"
#include "tape/TapeForward.h"
#include "tape/TapeObject.h"

#include <string>
#include <vector>

// What other programs put on the system clipboard, made into elements: a
// picture (a browser's "Copy Image") becomes an image element whose file is
// saved as PNG into the project's "Media" folder; copied files (a file
// manager's "Copy") become image, sound and movie elements, their files
// taken into "Media" as an import does. Pictures and films are placed in
// the middle of the page at their own size, shrunk to fit.
//
// An untitled project has no "Media" folder yet: a pasted picture is kept
// in the program's data folder and the files are referred to where they
// are, until a save collects them.
class ForeignPaste {
public:
    static constexpr const char* kUriListFormat = "text/uri-list";

    // Whether the system clipboard holds a picture or files.
    static bool isOffered();
    // The elements for the tape, in the clipboard's order; none when the
    // clipboard holds nothing of the kind. Files of other kinds, or that
    // cannot be read, are left out and named in `leftOut`.
    static std::vector<TapeObjectPtr> makeElements(Tape& tape, std::vector<KString>& leftOut);

    // The local paths of a text/uri-list: file URIs only, their escapes
    // undone; comments and other schemes are passed over.
    static std::vector<std::string> pathsOfUriList(const std::vector<uint8_t>& data);

private:
    static TapeObjectPtr elementForFile(Tape& tape, const std::string& path);
    static TapeObjectPtr elementForPicture(Tape& tape, KImage& picture);
    static bool takeIntoMedia(Tape& tape, const KFileReference& source, KFileReference& taken);
    static KGraphicRectangle middleOfPage(Tape& tape, const KGraphicSize& natural);
};
