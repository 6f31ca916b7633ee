#pragma once

#include "windowing/KChoiceNativeControl.h"

// A scrolling list of items, one chosen at most. A double click or Return
// on an item is a KControlActionEvent of type Activated after the choice.
// A list given column headings shows a heading row and one column for
// each, and each item holds its cells separated by tabs.
class KListNativeControl : public KChoiceNativeControl {
    K_DECLARE_CLASS(KListNativeControl)
public:
    KListNativeControl();
    KListNativeControl(int32_t id, const KWideRectangle& bounds, const std::vector<KString>& items = {});
    ~KListNativeControl() override;

    const char* getKindName() const override { return "list"; }

    // Only before the list is shown.
    void setColumns(const std::vector<KString>& headings) { columns = headings; }
    const std::vector<KString>& getColumns() const { return columns; }
    // An item of several cells.
    static KString joinCells(const std::vector<KString>& cells);

protected:
    bool describeNative(KNativeControlSetup& setup) const override;

private:
    std::vector<KString> columns;
};
