#pragma once

#include "windowing/KEvent.h"

// Something that concerns the whole program.
class KApplicationEvent : public KEvent {
    K_DECLARE_CLASS(KApplicationEvent)
public:
    enum Type : int32_t {
        Deactivated = 0,
        Activated = 1,
        QuitRequest = 2,
        OpenDocument = 3,
        PrintDocument = 4,
        ClipboardChanged = 5,
        DataReceived = 6,
    };

    KApplicationEvent();
    explicit KApplicationEvent(int32_t type);

    // The file an open or print request names, as a path.
    const KString& getFilePath() const { return filePath; }
    void setFilePath(const KString& path) { filePath = path; }

    KEventReturn process() override;

private:
    KEventReturn deactivate();
    KEventReturn activate();
    KEventReturn quit();
    KEventReturn clipboardChanged();

    KString filePath;
};
