#pragma once

#include "graphics/KGraphicSize.h"
#include "kernel/KDirectory.h"
#include "kernel/KString.h"
#include "windowing/KDialog.h"

#include <vector>

class KEntryNativeControl;
class KStaticTextNativeControl;
class KPopUpListNativeControl;

// Asks where a new project goes and what it is called: a folder (shown,
// and changed with "Select Folder"), a name that keeps the project-name
// rules, and for a new project its page size. A refused name is told and
// the dialog stays open; nothing is created here.
class NewProjectDialog : public KDialog {
    K_DECLARE_CLASS(NewProjectDialog)
public:
    static constexpr int32_t kWidth = 400;
    static constexpr int32_t kHeight = 230;

    struct Answer {
        KDirectory folder;
        KString name;
        KGraphicSize pageSize;
    };

    NewProjectDialog();
    ~NewProjectDialog() override;

    // `defaultName` is proposed, made free in the folder; empty proposes
    // "Untitled". Without `newProject` (a save as) there is no page size.
    void prepare(const KDirectory& folder, const KString& defaultName, bool newProject);
    void open(OpenMode mode, int32_t standardButtons) override;
    KEventReturn doDialogAction(int32_t buttonId) override;
    KEventReturn doControlAction(KControlActionEvent& event) override;

    void setName(const KString& name);
    KString getName() const;
    const KDirectory& getFolder() const { return folder; }
    void setFolder(const KDirectory& chosen);
    KGraphicSize getPageSize() const;
    const Answer& getAnswer() const { return answer; }

    // The page sizes offered, the preferred one first when it is not
    // among the usual ones.
    static std::vector<KGraphicSize> pageSizes(const KGraphicSize& preferred, const KGraphicSize& screen);

    // Runs the dialog modally; false when the user cancelled.
    static bool ask(Answer& answer, const KString& defaultName, bool newProject = true);

private:
    // Checks the name; false, after telling why, when it is refused.
    bool accept();

    KDirectory folder;
    KString proposedName;
    bool forNewProject = true;
    std::vector<KGraphicSize> sizes;
    int32_t preferredSize = 0;
    Answer answer;
    KPtr<KEntryNativeControl> nameField;
    KPtr<KStaticTextNativeControl> folderText;
    KPtr<KPopUpListNativeControl> sizeList;
};
