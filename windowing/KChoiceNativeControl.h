#pragma once

#include "windowing/KControl.h"

#include <vector>

// A control that offers a list of texts and holds the index of the chosen
// one, -1 for none: the base of the radio group, the pop-up list and the
// list. The user's choice is a KControlActionEvent of type Changed.
class KChoiceNativeControl : public KControl {
    K_DECLARE_CLASS(KChoiceNativeControl)
public:
    KChoiceNativeControl();
    ~KChoiceNativeControl() override;

    // Replaces the items; the choice stays when its index is still one.
    void setItems(const std::vector<KString>& texts);
    void addItem(const KString& text);
    void clearItems();
    const std::vector<KString>& getItems() const { return items; }
    int32_t countItems() const { return static_cast<int32_t>(items.size()); }
    // An index outside the items chooses none.
    virtual void setSelected(int32_t index);
    int32_t getSelected() const { return selected; }
    // The chosen item's text; empty with none chosen.
    KString getSelectedText() const;

    KEventReturn doNativeEvent(KNativeEvent& event) override;
    void describe(KJsonWriter& out) const override;

protected:
    bool describeNative(KNativeControlSetup& setup) const override;
    // The index the control holds for the one asked for.
    virtual int32_t normalise(int32_t index) const;

private:
    void itemsChanged();

    std::vector<KString> items;
    int32_t selected = -1;
};
