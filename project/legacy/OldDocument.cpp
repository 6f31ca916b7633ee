#include "project/legacy/OldDocument.h"

#include "kernel/KFileReference.h"
#include "kernel/KPath.h"
#include "kernel/KTextCodec.h"
#include "project/StylusProject.h"
#include "project/legacy/ZClass.h"
#include "project/legacy/ZFile.h"
#include "project/legacy/ZTape.h"
#include "tape/Tape.h"

#include <cctype>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace OldDocument {

namespace {

constexpr uint8_t kDocumentMagic[4] = { 'S', 'T', 'D', 'F' };

bool hasOldExtension(const std::string& path)
{
    std::string extension = fs::path(path).extension().string();
    for (char& c : extension)
        c = char(std::toupper(static_cast<unsigned char>(c)));
    return extension == ".STT";
}

// Removes what this run made, when it made it.
class CreatedFolder {
public:
    explicit CreatedFolder(fs::path where)
        : path(std::move(where))
    {
    }
    ~CreatedFolder()
    {
        std::error_code ignored;
        if (!kept && made)
            fs::remove_all(path, ignored);
    }
    CreatedFolder(const CreatedFolder&) = delete;
    CreatedFolder& operator=(const CreatedFolder&) = delete;

    bool make(std::string& reason)
    {
        std::error_code error;
        made = fs::create_directory(path, error);
        if (made)
            fs::create_directory(path / "Media", error);
        if (!made || error)
            reason = path.string() + ": " + (error ? error.message() : "the folder already exists");
        return made && !error;
    }
    void keep() { kept = true; }

private:
    fs::path path;
    bool made = false;
    bool kept = false;
};

bool failWith(OldDocumentReport& report, const std::string& text, const std::string& location)
{
    report.failure = text;
    report.location = location;
    return false;
}

} // namespace

bool looksOld(const std::vector<uint8_t>& bytes)
{
    if (bytes.size() < 8)
        return false;
    if (std::equal(kDocumentMagic, kDocumentMagic + 4, bytes.begin()))
        return false;
    int32_t first = int32_t(uint32_t(bytes[0]) << 24 | uint32_t(bytes[1]) << 16 | uint32_t(bytes[2]) << 8 | bytes[3]);
    return first == ZClass::idOf(ZClass::Tape);
}

bool isOldDocument(const std::string& path)
{
    if (hasOldExtension(path))
        return true;
    // The first bytes tell; a whole story need not be read for that.
    std::ifstream in(path, std::ios::binary);
    std::vector<uint8_t> start(8);
    if (!in.read(reinterpret_cast<char*>(start.data()), std::streamsize(start.size())))
        return false;
    return looksOld(start);
}

TapePtr convertInMemory(const std::vector<uint8_t>& bytes, ZConversion& conversion)
{
    OldDocumentReport& report = conversion.getReport();
    if (!looksOld(bytes)) {
        report.notOldDocument = true;
        failWith(report, "This file is not a TaleLoom Document File!", "OldDocument::convert");
        return nullptr;
    }
    ZFile file(bytes, conversion.getPlatform());
    ZTape old;
    if (!old.readFromFile(file)) {
        failWith(report, file.getFailureText(), file.getFailureLocation());
        return nullptr;
    }
    return old.convert(conversion);
}

bool convert(const Request& request, OldDocumentReport& report)
{
    std::vector<uint8_t> bytes;
    if (!ZFile::readFile(request.oldPath, bytes))
        return failWith(report, "Could not open file!", request.oldPath);
    fs::path project = fs::path(request.folder) / request.name;
    std::error_code error;
    if (fs::exists(project, error))
        return failWith(report, "The folder already exists.", project.string());
    ZConversion conversion(fs::path(request.oldPath).parent_path().string(), (project / "Media").string(),
                           request.platform, report);
    TapePtr tape = convertInMemory(bytes, conversion);
    if (!tape)
        return false;

    CreatedFolder folder(project);
    std::string reason;
    if (!folder.make(reason) || !conversion.copyMedia(reason))
        return failWith(report, reason, "OldDocument::convert");
    fs::path document = project / (request.name + ".TPD");
    StylusProjectPtr converted(new StylusProject());
    converted->setTape(*tape);
    if (!converted->save(KFileReference(KPath(KTextCodec::fromUtf8(document.string()), KPath::kHostPlatform))))
        return failWith(report, "Could not write file!", document.string());
    folder.keep();
    report.document = document.string();
    return true;
}

} // namespace OldDocument
