#include "tools/taleloom-tool/PublishCommand.h"
#include "app/Publication.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KTextCodec.h"
#include "project/StylusProject.h"
#include "tools/taleloom-tool/ToolProject.h"
#include <cstdlib>
#include <filesystem>
#include <ostream>

namespace {

struct PublishArguments {
    std::string project;
    std::string folder;
    std::string name;
    std::string player;
    bool includePlayer = true;
};

bool parseArguments(const std::vector<std::string>& arguments, PublishArguments& out)
{
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        bool hasValue = i + 1 < arguments.size();
        if (argument == "--to" && hasValue && out.folder.empty())
            out.folder = arguments[++i];
        else if (argument == "--name" && hasValue && out.name.empty())
            out.name = arguments[++i];
        else if (argument == "--player" && hasValue && out.player.empty())
            out.player = arguments[++i];
        else if (argument == "--no-player")
            out.includePlayer = false;
        else if (out.project.empty() && !argument.empty() && argument[0] != '-')
            out.project = argument;
        else
            return false;
    }
    return !out.project.empty() && !out.folder.empty() && !out.name.empty();
}

// The player built with this tool: beside the program when installed, in
// the build tree's app folder otherwise.
std::string defaultPlayer()
{
    if (const char* given = std::getenv("TALELOOM_PLAYER"))
        return given;
    std::string beside = playerBesideProgram();
    std::error_code error;
    if (std::filesystem::exists(beside, error))
        return beside;
    std::filesystem::path built
        = std::filesystem::path(beside).parent_path().parent_path().parent_path() / "app" / "taleloom-player";
    return built.string();
}

void printReport(std::ostream& out, const PublishReport& report)
{
    KJsonWriter writer;
    writer.beginObject();
    writer.member("folder", report.target);
    writer.key("media");
    writer.beginArray();
    for (const auto& copy : report.copies) {
        writer.beginObject();
        writer.member("source", copy.first);
        writer.member("name", copy.second);
        writer.member("renamed", std::filesystem::path(copy.first).filename().string() != copy.second);
        writer.endObject();
    }
    writer.endArray();
    writer.key("actors");
    writer.beginArray();
    for (const std::string& actor : report.actors)
        writer.value(actor);
    writer.endArray();
    writer.key("missing");
    writer.beginArray();
    for (const std::string& missing : report.missing)
        writer.value(missing);
    writer.endArray();
    writer.member("player", report.playerCopied);
    writer.member("playerMissing", report.playerMissing);
    writer.member("cannotRunPrograms", report.cannotRunPrograms);
    writer.member("bytes", report.bytes);
    writer.endObject();
    out << writer.getText() << '\n';
}

int runPublish(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err)
{
    PublishArguments asked;
    if (!parseArguments(arguments, asked))
        return toolUsageError(publishCommand(), err);
    StylusProjectPtr project(new StylusProject());
    std::string reason;
    std::vector<std::string> warnings;
    bool loaded = loadToolProject(asked.project, *project, reason, warnings);
    for (const std::string& warning : warnings)
        err << "taleloom-tool: warning: " << warning << '\n';
    if (!loaded)
        return toolInputError(reason, err);
    PublishRequest request;
    request.folder = asked.folder;
    request.name = KTextCodec::fromUtf8(asked.name);
    request.includePlayer = asked.includePlayer;
    request.playerPath = asked.player.empty() ? defaultPlayer() : asked.player;
    PublishReport report;
    if (!publishStory(*project, request, report))
        return toolInputError(KTextCodec::toUtf8(report.refusal), err);
    printReport(out, report);
    return kToolSucceeded;
}

} // namespace

ToolCommand publishCommand()
{
    return { "publish", "PROJECT.TPD --to DIR --name N [--no-player] [--player PATH]", &runPublish };
}
