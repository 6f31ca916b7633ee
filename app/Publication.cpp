#include "app/Publication.h"
#include "app/UiText.h"
#include "app/actors/Actor.h"
#include "app/actors/ActorLoading.h"
#include "kernel/KDirectory.h"
#include "kernel/KFileReference.h"
#include "kernel/KStringBag.h"
#include "kernel/KTextCodec.h"
#include "project/KMediaPublisher.h"
#include "project/StylusProject.h"
#include "tape/Tape.h"
#include "tape/TapeObject.h"

#include <filesystem>
#include <fstream>
#include <set>
#include <sys/statvfs.h>
#include <system_error>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr const char* kMediaFolder = "Media";
constexpr const char* kActorsFolder = "Actors";
constexpr const char* kDocumentName = "data.TPD";
constexpr const char* kPlayerSettings = "player.ini";
// Room kept beyond the bytes copied: the document, the settings, the notes.
constexpr int64_t kSpareBytes = int64_t(1) << 20;
constexpr const char* kPackages = "libgtk-3-0, libgstreamer1.0-0, gstreamer1.0-plugins-base, "
                                  "gstreamer1.0-plugins-good, gstreamer1.0-libav, libespeak-ng1, espeak-ng-data";

std::string native(const KString& text) { return KTextCodec::toUtf8(text); }

KString inQuotes(const std::string& text) { return KString("\"") + KTextCodec::fromUtf8(text) + "\""; }

int64_t sizeOf(const fs::path& path)
{
    std::error_code error;
    auto size = fs::file_size(path, error);
    return error ? 0 : int64_t(size);
}

class PublicationRun {
public:
    PublicationRun(StylusProject& project, const PublishRequest& asked, PublishReport& into,
                   const PublishProgress& tell)
        : source(project)
        , request(asked)
        , report(into)
        , progress(tell)
    {
    }

    bool run();

private:
    bool refuse(const KString& message)
    {
        report.refusal = message;
        removeWhatWasMade();
        return false;
    }
    bool checkTarget();
    void planCopy();
    bool checkSpace();
    bool makeFolders();
    bool copyMedia();
    bool copyActors();
    bool saveDocument();
    void copyPlayer();
    bool writeSettings();
    bool writeReadMe();
    void checkPrograms();
    void removeWhatWasMade();
    void advance(int64_t bytes);
    bool isActorFile(const KString& name) const
    {
        for (const std::string& actor : actorNames) {
            if (actorFileName(KTextCodec::fromUtf8(actor)) == name)
                return true;
        }
        return false;
    }

    StylusProject& source;
    const PublishRequest& request;
    PublishReport& report;
    const PublishProgress& progress;
    fs::path target;
    bool madeTarget = false;
    TapePtr copy;
    std::vector<std::string> mediaSources;
    std::set<std::string> actorNames;
    int64_t total = 0;
    int64_t done = 0;
};

bool PublicationRun::run()
{
    if (!source.getTape())
        return refuse(uiText("There is no story to publish."));
    if (!checkTarget())
        return false;
    planCopy();
    if (!checkSpace() || !makeFolders() || !copyMedia() || !copyActors() || !saveDocument())
        return false;
    if (request.includePlayer)
        copyPlayer();
    if (!writeSettings() || !writeReadMe())
        return false;
    checkPrograms();
    report.published = true;
    report.bytes = done;
    if (progress)
        progress(total, total);
    return true;
}

// An existing name is refused before anything is written.
bool PublicationRun::checkTarget()
{
    std::string name = native(request.name);
    if (name.empty() || request.folder.empty())
        return refuse(uiText("The project name contains illegal characters."));
    target = fs::path(request.folder) / name;
    report.target = target.string();
    std::error_code error;
    if (fs::exists(target, error) || fs::is_symlink(target, error)) {
        report.nameTaken = true;
        return refuse(uiText("The file or folder %1 already exists; please choose another name.", inQuotes(name)));
    }
    return true;
}

// The story is copied whole, with its actors read afresh from their files,
// so that renaming media on the way never touches what the user edits.
void PublicationRun::planCopy()
{
    copy = TapePtr(static_cast<Tape*>(source.getTape()->deepCopy()));
    KDirectory* media = source.getMediaDirectory();
    if (media)
        copy->setMediaDirectory(*media);
    for (int32_t i = 0; i < copy->getCount(); ++i) {
        TapeObject* element = copy->getAt(i);
        if (element && !element->getActorName().isEmpty())
            actorNames.insert(native(element->getActorName()));
    }
    if (KDirectory* actors = source.getActorsDirectory())
        loadTapeActors(*copy, *actors);
    KStringBagPtr names = copy->getMediaNames();
    for (int32_t i = 0; names && i < names->getSize(); ++i) {
        const KString* name = names->getStringAt(i);
        // Actor elements name their actor's file among their media; the
        // actors go in on their own.
        if (!name || actorNames.count(native(*name)) || isActorFile(*name))
            continue;
        fs::path path = media ? fs::path(native(media->getPath().getNativeText())) / native(*name) : fs::path();
        mediaSources.push_back(path.string());
        total += sizeOf(path);
    }
    if (KDirectory* actors = source.getActorsDirectory()) {
        for (const std::string& actor : actorNames)
            total += sizeOf(native(actorFileIn(*actors, KTextCodec::fromUtf8(actor)).getNativeText()));
    }
    if (request.includePlayer)
        total += sizeOf(request.playerPath.empty() ? playerBesideProgram() : request.playerPath);
}

bool PublicationRun::checkSpace()
{
    struct statvfs space { };
    if (::statvfs(request.folder.c_str(), &space) != 0)
        return refuse(uiText("The folder %1 could not be created.", inQuotes(target.string())));
    int64_t free = int64_t(space.f_bavail) * int64_t(space.f_frsize);
    if (free < total + kSpareBytes)
        return refuse(uiText("There is not enough free space in %1 to publish this story.", inQuotes(request.folder)));
    return true;
}

bool PublicationRun::makeFolders()
{
    std::error_code error;
    if (!fs::create_directory(target, error))
        return refuse(uiText("The folder %1 could not be created.", inQuotes(target.string())));
    madeTarget = true;
    fs::create_directory(target / kMediaFolder, error);
    if (!error && !actorNames.empty())
        fs::create_directory(target / kActorsFolder, error);
    if (error)
        return refuse(uiText("The folder %1 could not be created.", inQuotes(target.string())));
    return true;
}

// Each medium goes in once under its new name, and every element that
// names it takes that name. A missing medium keeps a name of its own.
bool PublicationRun::copyMedia()
{
    KMediaPublisherPtr publisher(new KMediaPublisher());
    fs::path mediaFolder = target / kMediaFolder;
    publisher->setDirectory(mediaFolder.string());
    KDirectory* sourceMedia = source.getMediaDirectory();
    for (const std::string& path : mediaSources) {
        std::error_code error;
        std::string name;
        if (!fs::is_regular_file(path, error)) {
            name = publisher->reserveName(path);
            report.missing.push_back(path);
        } else if (!publisher->publish(path, name)) {
            return refuse(uiText("Error Copying File") + ": " + inQuotes((mediaFolder / name).string()));
        } else {
            report.copies.emplace_back(path, name);
            advance(sizeOf(path));
        }
        KFileReference from(KPath(KTextCodec::fromUtf8(path), KPath::kHostPlatform));
        KFileReference to(KPath(KTextCodec::fromUtf8((mediaFolder / name).string()), KPath::kHostPlatform));
        copy->replaceMedia(from, to);
    }
    (void)sourceMedia;
    copy->setMediaDirectory(KDirectory(KPath(KTextCodec::fromUtf8(mediaFolder.string()), KPath::kHostPlatform)));
    return true;
}

// The actors the story uses, written from the copies that carry the new
// media names; an actor that could not be read is copied as it is.
bool PublicationRun::copyActors()
{
    KDirectory* actors = source.getActorsDirectory();
    if (!actors)
        return true;
    for (const std::string& name : actorNames) {
        KString actorName = KTextCodec::fromUtf8(name);
        fs::path from = native(actorFileIn(*actors, actorName).getNativeText());
        fs::path to = target / kActorsFolder / from.filename();
        std::error_code error;
        if (!fs::is_regular_file(from, error)) {
            report.missing.push_back(from.string());
            continue;
        }
        bool written = false;
        if (auto* loaded = dynamic_cast<Actor*>(copy->getActor(actorName))) {
            KFileReference file(KPath(KTextCodec::fromUtf8(to.string()), KPath::kHostPlatform));
            written = loaded->save(file);
        }
        if (!written && !fs::copy_file(from, to, error))
            return refuse(uiText("Error Copying File") + ": " + inQuotes(to.string()));
        report.actors.push_back(to.filename().string());
        advance(sizeOf(from));
    }
    return true;
}

bool PublicationRun::saveDocument()
{
    StylusProjectPtr published(new StylusProject());
    copy->clearActors();
    published->setTape(*copy);
    KFileReference file(KPath(KTextCodec::fromUtf8((target / kDocumentName).string()), KPath::kHostPlatform));
    if (!published->save(file))
        return refuse(uiText("Error Copying File") + ": " + inQuotes((target / kDocumentName).string()));
    return true;
}

// A missing player is told at the end; the story itself stands.
void PublicationRun::copyPlayer()
{
    std::string player = request.playerPath.empty() ? playerBesideProgram() : request.playerPath;
    fs::path to = target / native(uiText("Start Here!"));
    std::error_code error;
    if (player.empty() || !fs::is_regular_file(player, error)) {
        report.playerMissing = true;
        return;
    }
    if (!fs::copy_file(player, to, error)) {
        report.playerMissing = true;
        return;
    }
    fs::permissions(to, fs::perms(0755), error);
    report.playerCopied = true;
    advance(sizeOf(to));
}

bool PublicationRun::writeSettings()
{
    std::ofstream out(target / kPlayerSettings, std::ios::trunc);
    out << "[Player]\n";
    out << "Language=" << native(request.language) << '\n';
    out << "SpeechSpeed=" << request.speechSpeed << '\n';
    out << "CustomSpeechSpeed=" << (request.customSpeechSpeed ? "true" : "false") << '\n';
    out << "LastUsedVoice=" << native(request.voice) << '\n';
    out.close();
    if (!out)
        return refuse(uiText("Error Copying File") + ": " + inQuotes((target / kPlayerSettings).string()));
    std::error_code error;
    if (!request.exceptionsPath.empty() && fs::is_regular_file(request.exceptionsPath, error))
        fs::copy_file(request.exceptionsPath, target / fs::path(request.exceptionsPath).filename(), error);
    return true;
}

bool PublicationRun::writeReadMe()
{
    fs::path path = target / native(uiText("Read Me.txt"));
    std::ofstream out(path, std::ios::trunc);
    out << native(uiText("To play this story, open this folder and double-click %1. The story plays full screen; "
                         "press Escape to end it.",
                         inQuotes(native(uiText("Start Here!")))))
        << "\n\n"
        << native(uiText("The player runs on Linux. It needs these Debian packages: %1.", KString(kPackages))) << '\n';
    out.close();
    if (!out)
        return refuse(uiText("Error Copying File") + ": " + inQuotes(path.string()));
    return true;
}

void PublicationRun::checkPrograms()
{
    struct statvfs space { };
    if (request.includePlayer && ::statvfs(target.c_str(), &space) == 0 && (space.f_flag & ST_NOEXEC) != 0)
        report.cannotRunPrograms = true;
}

void PublicationRun::removeWhatWasMade()
{
    if (!madeTarget)
        return;
    std::error_code error;
    fs::remove_all(target, error);
    madeTarget = false;
}

void PublicationRun::advance(int64_t bytes)
{
    done += bytes;
    if (progress)
        progress(done, total);
}

} // namespace

bool publishStory(StylusProject& source, const PublishRequest& request, PublishReport& report,
                  const PublishProgress& progress)
{
    report = PublishReport();
    PublicationRun run(source, request, report, progress);
    return run.run();
}

std::string playerBesideProgram()
{
    char buffer[4096];
    ssize_t length = ::readlink("/proc/self/exe", buffer, sizeof buffer - 1);
    if (length <= 0)
        return std::string();
    fs::path program(std::string(buffer, size_t(length)));
    return (program.parent_path() / "taleloom-player").string();
}

KString publishNotes(const PublishReport& report)
{
    KString notes;
    auto addLine = [&](const KString& line) {
        if (!notes.isEmpty())
            notes += "\n";
        notes += line;
    };
    if (report.playerMissing)
        addLine(uiText("Could not copy the %1 application; make sure it is in the same folder as TaleLoom.",
                       KString("\"") + uiText("Player") + "\""));
    if (!report.missing.empty()) {
        KString names;
        for (const std::string& path : report.missing) {
            if (!names.isEmpty())
                names += ", ";
            names += KTextCodec::fromUtf8(fs::path(path).filename().string());
        }
        addLine(uiText("These files were not found and are missing from the publication: %1", names));
    }
    if (report.cannotRunPrograms)
        addLine(uiText("Programs cannot be started from this place: copy the published folder to a computer's "
                       "disk before playing it."));
    return notes;
}
