#pragma once

#include "windowing/KMenu.h"

// "File": the project's life, colours, sound, speech exceptions, printing
// and "Quit".
class FileMenu : public KMenu {
    K_DECLARE_CLASS(FileMenu)
public:
    enum Item : int32_t {
        NewProject = 0,
        OpenProject = 1,
        InsertProject = 2,
        Save = 3,
        SaveAs = 4,
        SaveAsImage = 5,
        Publish = 7,
        LoadColors = 8,
        SaveColors = 9,
        RecordSound = 10,
        SpeechExceptions = 11,
        PageSetup = 12,
        Print = 13,
        PrintBook = 14,
        Quit = 15,
        ResetColors = 16,
        ExportEpub = 17,
        ExportVideo = 18,
    };

    FileMenu();
    KEventReturn doOpen(KMenuEvent& event) override;
    KEventReturn doMenuItem(KMenuEvent& event) override;
};
