#pragma once

#include "graphics/KGraphicDevice.h"
#include "graphics/KImage.h"
#include "kernel/KDirectory.h"
#include "kernel/KFileReference.h"
#include "kernel/KPath.h"
#include "tests/tape/TapeTestSupport.h"

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

namespace mediatest {

// The recording host, plus what image and movie elements ask of it: the
// mouse button, the missing-file question, refused names, the movie flag.
class MediaHost : public tapetest::RecordingHost {
public:
    bool isMouseButtonDown() override { return buttonDown; }
    void showingMovie(bool on) override { movieShown.push_back(on); }
    void refuseMediaName(const KString& name) override { refused.emplace_back(name.c_str()); }
    void checkMovieEngine() override { ++engineChecks; }
    bool findMissingFile(KFileReference& file, KDirectory&, KDirectory*) override
    {
        ++missingQuestions;
        if (answer.isEmpty())
            return true;
        file = KFileReference(answer);
        return false;
    }

    bool buttonDown = false;
    std::vector<bool> movieShown;
    std::vector<std::string> refused;
    int32_t engineChecks = 0;
    int32_t missingQuestions = 0;
    // Where the user says the file is; empty: the user gives up.
    KPath answer;
};

inline KPath pathOf(const std::filesystem::path& path)
{
    return KPath(KString(path.string().c_str()), KPath::LinuxPlatform);
}

inline KFileReference referenceTo(const std::filesystem::path& path) { return KFileReference(pathOf(path)); }

inline KDirectory folderAt(const std::filesystem::path& path) { return KDirectory(pathOf(path)); }

// A fresh folder under the temporary folder, removed with the object.
class ScratchFolder {
public:
    // Unique per run, so that test programs running side by side (the
    // normal and the sanitizer build) never share one.
    explicit ScratchFolder(const char* name)
    {
        std::string pattern = (std::filesystem::temp_directory_path() / name).string() + "-XXXXXX";
        if (!mkdtemp(pattern.data()))
            std::abort();
        root = pattern;
    }
    ~ScratchFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(root, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::filesystem::path operator/(const std::string& name) const { return root / name; }

    std::filesystem::path root;
};

// A picture of the size with rectangles of colour on black, written as PNG.
struct Patch {
    KGraphicRectangle area;
    uint32_t colour;
};

inline bool writePicture(const std::filesystem::path& path, const KGraphicSize& size, const std::vector<Patch>& patches)
{
    std::filesystem::create_directories(path.parent_path());
    KImagePtr image(new KImage(size));
    for (const Patch& patch : patches)
        image->getDevice().fillRectangle(patch.area, tapetest::rgb(patch.colour));
    return image->writeToPath(KString(path.string().c_str()));
}

} // namespace mediatest
