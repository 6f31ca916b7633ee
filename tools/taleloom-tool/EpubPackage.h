#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

// An EPUB 3 book as it goes into its zip: the items of the package, in
// the folder "OEBPS", each from a file on disk or from text, the reading
// order, and the metadata of a fixed-layout book with media overlays.
class EpubPackage {
public:
    struct Item {
        std::string id;
        std::string href; // under OEBPS/
        std::string mediaType;
        std::string properties;
        std::string overlay; // the id of the item's media overlay
        std::string file; // read from here, or
        std::string text; // this is the content
    };
    struct Metadata {
        std::string title;
        std::string language;
        std::string identifier; // "urn:uuid:..."
        std::string modified; // "2026-11-24T12:00:00Z"
        std::string summary; // for the accessibility summary
        std::string activeClass; // the class of the lit word
        int32_t width = 0;
        int32_t height = 0;
    };

    void add(Item item);
    // The item goes into the reading order too.
    void addPage(Item item);
    // The length of an overlay, counted into the book's.
    void setOverlayDuration(const std::string& overlayId, int32_t milliseconds);

    std::string packageDocument(const Metadata& metadata) const;
    // Writes the zip at `path`: the uncompressed "mimetype" first, the
    // container, the package document and the items. False with a reason
    // when it cannot; the file is then removed.
    bool write(const std::string& path, const Metadata& metadata, std::string& reason) const;

private:
    std::vector<Item> items;
    std::vector<std::string> spine;
    std::vector<std::pair<std::string, int32_t>> durations;
};

// A SMIL clock value, "h:mm:ss.fff".
std::string epubClock(int32_t milliseconds);
// Seconds with three decimals and "s", for clip times.
std::string epubSeconds(int32_t milliseconds);
std::string epubEscape(const std::string& text);
// A random identifier of the form "urn:uuid:…".
std::string epubNewIdentifier();
