#include "tools/taleloom-tool/EpubPackage.h"

#include <zip.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <random>

namespace {

constexpr const char* kContainer = R"(<?xml version="1.0" encoding="UTF-8"?>
<container version="1.0" xmlns="urn:oasis:names:tc:opendocument:xmlns:container">
  <rootfiles>
    <rootfile full-path="OEBPS/package.opf" media-type="application/oebps-package+xml"/>
  </rootfiles>
</container>
)";

std::string meta(const std::string& property, const std::string& value, const std::string& refines = {})
{
    std::string line = "    <meta property=\"" + property + "\"";
    if (!refines.empty())
        line += " refines=\"#" + refines + "\"";
    return line + ">" + epubEscape(value) + "</meta>\n";
}

// Closes the archive, or throws it away, whichever happens first.
class ArchiveGuard {
public:
    explicit ArchiveGuard(zip_t* archive)
        : archive(archive)
    {
    }
    ~ArchiveGuard()
    {
        if (archive)
            zip_discard(archive);
    }
    ArchiveGuard(const ArchiveGuard&) = delete;
    ArchiveGuard& operator=(const ArchiveGuard&) = delete;

    zip_t* get() const { return archive; }
    bool close(std::string& reason)
    {
        bool closed = zip_close(archive) == 0;
        if (!closed) {
            reason = zip_strerror(archive);
            return false;
        }
        archive = nullptr;
        return true;
    }

private:
    zip_t* archive;
};

// Adds the source under the name; pictures and sounds are compressed
// already, anything else (fonts, mostly) takes the fastest deflate, which
// gains nearly as much.
bool addSource(zip_t* archive, const std::string& name, zip_source_t* source, bool stored, std::string& reason)
{
    zip_int64_t index = zip_file_add(archive, name.c_str(), source, ZIP_FL_ENC_UTF_8 | ZIP_FL_OVERWRITE);
    if (index < 0) {
        zip_source_free(source);
        reason = zip_strerror(archive);
        return false;
    }
    zip_set_file_compression(archive, zip_uint64_t(index), stored ? ZIP_CM_STORE : ZIP_CM_DEFLATE, stored ? 0 : 1);
    return true;
}

bool addText(zip_t* archive, const std::string& name, const std::string& text, bool stored, std::string& reason)
{
    // libzip reads the buffer when the archive closes: it keeps a copy.
    void* copy = std::malloc(text.size() ? text.size() : 1);
    if (!copy) {
        reason = "out of memory";
        return false;
    }
    std::copy(text.begin(), text.end(), static_cast<char*>(copy));
    zip_source_t* source = zip_source_buffer(archive, copy, text.size(), 1);
    if (!source) {
        std::free(copy);
        reason = zip_strerror(archive);
        return false;
    }
    return addSource(archive, name, source, stored, reason);
}

bool addFile(zip_t* archive, const std::string& name, const std::string& path, bool stored, std::string& reason)
{
    zip_source_t* source = zip_source_file(archive, path.c_str(), 0, -1);
    if (!source) {
        reason = path + ": " + zip_strerror(archive);
        return false;
    }
    return addSource(archive, name, source, stored, reason);
}

bool isCompressedAlready(const std::string& mediaType)
{
    return mediaType == "image/png" || mediaType == "audio/mpeg" || mediaType == "audio/mp4";
}

} // namespace

std::string epubEscape(const std::string& text)
{
    std::string escaped;
    for (char c : text) {
        switch (c) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            escaped += c;
        }
    }
    return escaped;
}

std::string epubClock(int32_t milliseconds)
{
    int32_t ms = std::max(0, milliseconds);
    char text[32];
    std::snprintf(text, sizeof text, "%d:%02d:%02d.%03d", ms / 3600000, ms / 60000 % 60, ms / 1000 % 60, ms % 1000);
    return text;
}

std::string epubSeconds(int32_t milliseconds)
{
    int32_t ms = std::max(0, milliseconds);
    char text[32];
    std::snprintf(text, sizeof text, "%d.%03ds", ms / 1000, ms % 1000);
    return text;
}

std::string epubNewIdentifier()
{
    std::random_device device;
    std::mt19937_64 random((uint64_t(device()) << 32) ^ device());
    uint64_t high = random();
    uint64_t low = random();
    // Version 4, variant 1.
    high = (high & 0xffffffffffff0fffULL) | 0x0000000000004000ULL;
    low = (low & 0x3fffffffffffffffULL) | 0x8000000000000000ULL;
    char text[64];
    std::snprintf(text, sizeof text, "urn:uuid:%08x-%04x-%04x-%04x-%012llx", unsigned(high >> 32),
                  unsigned(high >> 16 & 0xffff), unsigned(high & 0xffff), unsigned(low >> 48),
                  static_cast<unsigned long long>(low & 0xffffffffffffULL));
    return text;
}

void EpubPackage::add(Item item) { items.push_back(std::move(item)); }

void EpubPackage::addPage(Item item)
{
    spine.push_back(item.id);
    items.push_back(std::move(item));
}

void EpubPackage::setOverlayDuration(const std::string& overlayId, int32_t milliseconds)
{
    durations.emplace_back(overlayId, milliseconds);
}

std::string EpubPackage::packageDocument(const Metadata& metadata) const
{
    std::string opf = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                      "<package xmlns=\"http://www.idpf.org/2007/opf\" version=\"3.0\" unique-identifier=\"book-id\" "
                      "xml:lang=\""
                      + epubEscape(metadata.language)
                      + "\">\n  <metadata xmlns:dc=\"http://purl.org/dc/elements/1.1/\">\n";
    opf += "    <dc:identifier id=\"book-id\">" + epubEscape(metadata.identifier) + "</dc:identifier>\n";
    opf += "    <dc:title>" + epubEscape(metadata.title) + "</dc:title>\n";
    opf += "    <dc:language>" + epubEscape(metadata.language) + "</dc:language>\n";
    opf += meta("dcterms:modified", metadata.modified);
    opf += meta("rendition:layout", "pre-paginated");
    opf += meta("rendition:spread", "none");
    for (const char* mode : { "textual", "visual", "auditory" })
        opf += meta("schema:accessMode", mode);
    opf += meta("schema:accessModeSufficient", "textual,visual");
    opf += meta("schema:accessibilityFeature", "synchronizedAudioText");
    opf += meta("schema:accessibilityHazard", "none");
    opf += meta("schema:accessibilitySummary", metadata.summary);
    if (!durations.empty()) {
        int64_t total = 0;
        for (const auto& [id, ms] : durations) {
            opf += meta("media:duration", epubClock(ms), id);
            total += ms;
        }
        opf += meta("media:duration", epubClock(int32_t(std::min<int64_t>(total, INT32_MAX))));
        opf += meta("media:active-class", metadata.activeClass);
    }
    opf += "  </metadata>\n  <manifest>\n";
    for (const Item& item : items) {
        opf += "    <item id=\"" + item.id + "\" href=\"" + epubEscape(item.href) + "\" media-type=\"" + item.mediaType
               + "\"";
        if (!item.properties.empty())
            opf += " properties=\"" + item.properties + "\"";
        if (!item.overlay.empty())
            opf += " media-overlay=\"" + item.overlay + "\"";
        opf += "/>\n";
    }
    opf += "  </manifest>\n  <spine>\n";
    for (const std::string& id : spine)
        opf += "    <itemref idref=\"" + id + "\"/>\n";
    opf += "  </spine>\n</package>\n";
    return opf;
}

bool EpubPackage::write(const std::string& path, const Metadata& metadata, std::string& reason) const
{
    int error = 0;
    zip_t* opened = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    if (!opened) {
        zip_error_t failure;
        zip_error_init_with_code(&failure, error);
        reason = path + ": " + zip_error_strerror(&failure);
        zip_error_fini(&failure);
        return false;
    }
    ArchiveGuard archive(opened);
    bool written = addText(archive.get(), "mimetype", "application/epub+zip", true, reason)
                   && addText(archive.get(), "META-INF/container.xml", kContainer, false, reason)
                   && addText(archive.get(), "OEBPS/package.opf", packageDocument(metadata), false, reason);
    for (size_t i = 0; written && i < items.size(); ++i) {
        const Item& item = items[i];
        std::string name = "OEBPS/" + item.href;
        written = item.file.empty()
                      ? addText(archive.get(), name, item.text, false, reason)
                      : addFile(archive.get(), name, item.file, isCompressedAlready(item.mediaType), reason);
    }
    if (!written || !archive.close(reason)) {
        std::remove(path.c_str());
        return false;
    }
    return true;
}
