#pragma once

#include "kernel/KDirectory.h"
#include "kernel/KString.h"
#include "windowing/KDialog.h"

class KCheckBoxNativeControl;
class KEntryNativeControl;
class KStaticTextNativeControl;
class StylusProject;

// "Publish": the name of the publication (the project's name at first, at
// most 26 characters), the folder it goes in ("Select Folder") and whether
// the player goes with it. OK checks the name as a project's name and
// publishes under a progress window; a refusal or a note is told at the
// end, and a refused name keeps the dialog open.
class PublishDialog : public KDialog {
    K_DECLARE_CLASS(PublishDialog)
public:
    static constexpr int32_t kWidth = 420;
    static constexpr int32_t kHeight = 200;

    PublishDialog();
    ~PublishDialog() override;

    void prepare(StylusProject& project, const KDirectory& folder);
    void open(OpenMode mode, int32_t standardButtons) override;
    KEventReturn doDialogAction(int32_t buttonId) override;
    KEventReturn doControlAction(KControlActionEvent& event) override;

    void setName(const KString& name);
    KString getName() const;
    void setFolder(const KDirectory& chosen);
    const KDirectory& getFolder() const { return folder; }
    void setIncludePlayer(bool include);
    bool getIncludePlayer() const;

    // Runs the dialog for the project shown; the publication is made on OK.
    static void ask(StylusProject& project);

private:
    bool accept();
    bool publish(const KString& name);

    KPtr<StylusProject> project;
    KDirectory folder;
    KString proposedName;
    bool includePlayer = true;
    KPtr<KEntryNativeControl> nameField;
    KPtr<KStaticTextNativeControl> folderText;
    KPtr<KCheckBoxNativeControl> playerBox;
};
