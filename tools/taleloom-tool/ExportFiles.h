#pragma once

#include <string>

// A folder of its own under the temporary folder, removed with everything
// in it when the object goes; `path` is empty when none could be made.
class ExportFolder {
public:
    explicit ExportFolder(const char* prefix);
    ~ExportFolder();
    ExportFolder(const ExportFolder&) = delete;
    ExportFolder& operator=(const ExportFolder&) = delete;

    std::string path;
};

// Whether an export can be written at `target`: its folder exists and the
// target is no folder. Otherwise false, with the reason, before the work.
bool exportTargetUsable(const std::string& target, std::string& reason);
