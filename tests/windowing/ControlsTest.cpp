#include "FrameworkTestSupport.h"

#include "graphics/KImage.h"
#include "kernel/KJsonWriter.h"
#include "windowing/KButtonNativeControl.h"
#include "windowing/KCheckBoxNativeControl.h"
#include "windowing/KColourSwatchNativeControl.h"
#include "windowing/KDialog.h"
#include "windowing/KEntryNativeControl.h"
#include "windowing/KListNativeControl.h"
#include "windowing/KMultiLineTextNativeControl.h"
#include "windowing/KPictureNativeControl.h"
#include "windowing/KPopUpListNativeControl.h"
#include "windowing/KRadioGroupNativeControl.h"
#include "windowing/KScrollBarNativeControl.h"
#include "windowing/KSliderNativeControl.h"
#include "windowing/KSpinFieldNativeControl.h"

namespace {

using Seen = std::vector<std::string>;
using Action = KControlActionEvent;

std::string actionName(int32_t type)
{
    switch (type) {
    case Action::Clicked:
        return "clicked";
    case Action::Changed:
        return "changed";
    case Action::Activated:
        return "activated";
    default:
        return "type " + std::to_string(type);
    }
}

// Notes the control actions that reach it: the control's id and the type.
class ControlsDialog : public KDialog {
public:
    KEventReturn doControlAction(KControlActionEvent& event) override
    {
        auto* control = static_cast<KControl*>(event.getSource());
        see(std::to_string(control->getId()) + " " + actionName(event.getType()));
        return KDialog::doControlAction(event);
    }
};

// The action target sees what the dialog passes on.
class Target : public KThing {
public:
    KEventReturn handleEvent(KEvent& event) override
    {
        see("target " + actionName(event.getType()));
        return 1;
    }
};

std::string json(const KThing& thing)
{
    KJsonWriter out(0);
    out.object(&thing);
    return out.getText();
}

class ControlsTest : public FrameworkTest {
protected:
    void SetUp() override
    {
        FrameworkTest::SetUp();
        dialog = new ControlsDialog();
        dialog->setBounds(KGraphicRectangle(100, 100, 400, 300));
        target = new Target();
        dialog->setActionTarget(target.get());
    }
    void TearDown() override
    {
        dialog->close();
        dialog.clear();
        FrameworkTest::TearDown();
    }

    // Adds the control to the open dialog; its model in the fake layer.
    const KFakeNativeLayer::Control& add(KControl& control)
    {
        if (!dialog->isOpen())
            dialog->open(KWindow::Normal, KDialog::OkButton);
        dialog->addControl(control);
        return model(control);
    }
    const KFakeNativeLayer::Control& model(KControl& control)
    {
        const KFakeNativeLayer::Control* found = layer.controlOf(control.getNativeControl());
        EXPECT_NE(found, nullptr);
        static KFakeNativeLayer::Control none;
        return found ? *found : none;
    }
    bool change(KControl& control, double value) { return layer.changeControlValue(control.getNativeControl(), value); }
    bool type(KControl& control, const std::string& text)
    {
        return layer.typeControlText(control.getNativeControl(), text);
    }

    KPtr<ControlsDialog> dialog;
    KPtr<Target> target;
};

TEST_F(ControlsTest, CheckBoxesAndRadioGroupsReportOnlyTheUsersChanges)
{
    KCheckBoxNativeControlPtr box(new KCheckBoxNativeControl(7, "Loop", KWideRectangle(10, 10, 120, 20)));
    const auto& boxModel = add(*box);
    EXPECT_EQ(boxModel.setup.kind, KNativeControlKind::CheckBox);
    EXPECT_EQ(boxModel.text, "Loop");
    EXPECT_EQ(boxModel.value, 0);

    // What the program sets reaches the widget and makes no action.
    box->setChecked(true);
    EXPECT_EQ(boxModel.value, 1);
    EXPECT_TRUE(seen().empty());

    // The user's toggle does, through the dialog to its action target.
    EXPECT_TRUE(change(*box, 0));
    EXPECT_FALSE(box->isChecked());
    EXPECT_EQ(seen(), (Seen { "7 changed", "target changed" }));
    // A notification that changes nothing is no change.
    seen().clear();
    EXPECT_TRUE(change(*box, 0));
    EXPECT_TRUE(seen().empty());
    // A disabled or hidden control is out of the user's reach.
    box->setEnabled(false);
    EXPECT_FALSE(boxModel.enabled);
    EXPECT_FALSE(change(*box, 1));
    box->setEnabled(true);
    box->hide();
    EXPECT_FALSE(change(*box, 1));
    EXPECT_FALSE(box->isChecked());

    // A radio group with items always has one chosen.
    KRadioGroupNativeControlPtr group(
        new KRadioGroupNativeControl(8, KWideRectangle(10, 40, 120, 60), { "Slow", "Normal", "Fast" }));
    EXPECT_EQ(group->getSelected(), 0);
    group->setSelected(5);
    EXPECT_EQ(group->getSelected(), 0);
    group->setSelected(1);
    const auto& groupModel = add(*group);
    EXPECT_EQ(groupModel.items, (std::vector<std::string> { "Slow", "Normal", "Fast" }));
    EXPECT_EQ(groupModel.value, 1);
    seen().clear();
    EXPECT_TRUE(change(*group, 2));
    EXPECT_EQ(group->getSelected(), 2);
    EXPECT_STREQ(group->getSelectedText().c_str(), "Fast");
    EXPECT_EQ(seen(), (Seen { "8 changed", "target changed" }));
    EXPECT_FALSE(change(*group, 3));
    // New items keep the choice only while its index is still one.
    group->setItems({ "One", "Two" });
    EXPECT_EQ(group->getSelected(), 0);
    EXPECT_EQ(groupModel.items, (std::vector<std::string> { "One", "Two" }));
    EXPECT_EQ(groupModel.value, 0);
    group->clearItems();
    EXPECT_EQ(group->getSelected(), -1);
}

TEST_F(ControlsTest, PopUpListsAndListsChooseAndAListConfirms)
{
    KPopUpListNativeControlPtr popUp(new KPopUpListNativeControl(3, KWideRectangle(10, 10, 150, 24)));
    popUp->addItem("English");
    popUp->addItem("Fran\xE7"
                   "ais");
    EXPECT_EQ(popUp->getSelected(), -1);
    const auto& popUpModel = add(*popUp);
    EXPECT_EQ(popUpModel.setup.kind, KNativeControlKind::PopUpList);
    EXPECT_EQ(popUpModel.items.at(1), "Fran\xE7"
                                      "ais");
    EXPECT_EQ(popUpModel.value, -1);
    EXPECT_TRUE(change(*popUp, 1));
    EXPECT_EQ(popUp->getSelected(), 1);
    EXPECT_FALSE(change(*popUp, 0.5));
    EXPECT_EQ(seen(), (Seen { "3 changed", "target changed" }));

    KListNativeControlPtr list(new KListNativeControl(4, KWideRectangle(10, 40, 150, 100), { "Cat", "Dog", "Owl" }));
    const auto& listModel = add(*list);
    EXPECT_EQ(listModel.setup.kind, KNativeControlKind::List);
    EXPECT_EQ(list->getSelected(), -1);
    // A double click chooses the item, then confirms it.
    seen().clear();
    EXPECT_TRUE(layer.activateControlItem(list->getNativeControl(), 2));
    EXPECT_EQ(list->getSelected(), 2);
    EXPECT_EQ(seen(), (Seen { "4 changed", "target changed", "4 activated", "target activated" }));
    // On the chosen item it only confirms.
    seen().clear();
    EXPECT_TRUE(layer.activateControlItem(list->getNativeControl(), 2));
    EXPECT_EQ(seen(), (Seen { "4 activated", "target activated" }));
    EXPECT_FALSE(layer.activateControlItem(list->getNativeControl(), 3));
    EXPECT_FALSE(layer.activateControlItem(popUp->getNativeControl(), 0));
    list->setSelected(-1);
    EXPECT_EQ(listModel.value, -1);
}

TEST_F(ControlsTest, EntriesAndTextsKeepToTheirLimit)
{
    KEntryNativeControlPtr entry(new KEntryNativeControl(5, "Sample story", KWideRectangle(10, 10, 200, 24), 6));
    EXPECT_STREQ(entry->getText().c_str(), "Sample");
    const auto& entryModel = add(*entry);
    EXPECT_EQ(entryModel.setup.kind, KNativeControlKind::Entry);
    EXPECT_EQ(entryModel.textLimit, 6);
    EXPECT_EQ(entryModel.text, "Sample");

    // The widget cuts what the user types; each change is an action.
    EXPECT_TRUE(type(*entry, "Cat and dog"));
    EXPECT_STREQ(entry->getText().c_str(), "Cat an");
    EXPECT_TRUE(type(*entry, "Cat an"));
    EXPECT_EQ(seen(), (Seen { "5 changed", "target changed" }));
    // A tighter limit cuts the text there and in the widget.
    entry->setLimit(3);
    EXPECT_STREQ(entry->getText().c_str(), "Cat");
    EXPECT_EQ(entryModel.text, "Cat");
    EXPECT_EQ(entryModel.textLimit, 3);
    entry->setLimit(-4);
    EXPECT_EQ(entry->getLimit(), 0);
    entry->setText("A much longer name");
    EXPECT_STREQ(entry->getText().c_str(), "A much longer name");
    EXPECT_FALSE(change(*entry, 1));

    // A multi-line text counts its line feeds in the limit.
    KMultiLineTextNativeControlPtr text(new KMultiLineTextNativeControl(6, "", KWideRectangle(10, 40, 200, 100), 8));
    const auto& textModel = add(*text);
    EXPECT_EQ(textModel.setup.kind, KNativeControlKind::MultiLineText);
    seen().clear();
    EXPECT_TRUE(type(*text, "One\nTwo\nThree"));
    EXPECT_STREQ(text->getText().c_str(), "One\nTwo\n");
    EXPECT_EQ(seen(), (Seen { "6 changed", "target changed" }));
}

TEST_F(ControlsTest, RangedControlsStayInRangeWithTheirDecimals)
{
    KSpinFieldNativeControlPtr spin(new KSpinFieldNativeControl(9, KWideRectangle(10, 10, 80, 24), 0, 10, 2.6));
    // Without decimals the value is whole.
    EXPECT_EQ(spin->getValue(), 3);
    spin->setDecimals(2);
    spin->setValue(2.346);
    EXPECT_DOUBLE_EQ(spin->getValue(), 2.35);
    spin->setValue(99);
    EXPECT_EQ(spin->getValue(), 10);
    spin->setValue(-0.001);
    EXPECT_EQ(spin->getValue(), 0);
    // Bounds the wrong way round are swapped, and the value follows them.
    spin->setRange(20, 5);
    EXPECT_EQ(spin->getMinimum(), 5);
    EXPECT_EQ(spin->getMaximum(), 20);
    EXPECT_EQ(spin->getValue(), 5);
    spin->setStep(0.25);
    spin->setStep(-1);
    EXPECT_EQ(spin->getStep(), 0.25);
    const auto& spinModel = add(*spin);
    EXPECT_EQ(spinModel.setup.kind, KNativeControlKind::SpinField);
    EXPECT_EQ(spinModel.range, (KNativeControlRange { 5, 20, 0.25, 10, 2 }));
    EXPECT_EQ(spinModel.value, 5);
    // Too many decimals are limited; fewer round the value again.
    spin->setDecimals(9);
    EXPECT_EQ(spin->getDecimals(), 6);
    spin->setDecimals(2);

    // The user's number comes with the widget's decimals and range.
    EXPECT_TRUE(change(*spin, 7.777));
    EXPECT_DOUBLE_EQ(spin->getValue(), 7.78);
    EXPECT_EQ(spin->getIntegerValue(), 8);
    EXPECT_TRUE(change(*spin, 50));
    EXPECT_EQ(spin->getValue(), 20);
    EXPECT_EQ(seen(), (Seen { "9 changed", "target changed", "9 changed", "target changed" }));
    spin->setDecimals(0);
    EXPECT_EQ(spinModel.range.decimals, 0);
    EXPECT_EQ(spinModel.value, 20);

    KSliderNativeControlPtr slider(new KSliderNativeControl(10, KWideRectangle(10, 40, 200, 24), 0, 255, 128));
    const auto& sliderModel = add(*slider);
    EXPECT_EQ(sliderModel.setup.kind, KNativeControlKind::Slider);
    seen().clear();
    EXPECT_TRUE(change(*slider, 300.4));
    EXPECT_EQ(slider->getIntegerValue(), 255);
    EXPECT_EQ(seen(), (Seen { "10 changed", "target changed" }));

    KScrollBarNativeControlPtr bar(new KScrollBarNativeControl(11, KWideRectangle(380, 0, 16, 200), 0, 90, 0));
    bar->setPage(10);
    const auto& barModel = add(*bar);
    EXPECT_EQ(barModel.range.page, 10);
    bar->setPage(25);
    EXPECT_EQ(barModel.range.page, 25);
    seen().clear();
    EXPECT_TRUE(change(*bar, 40));
    EXPECT_EQ(bar->getValue(), 40);
    EXPECT_EQ(seen(), (Seen { "11 changed", "target changed" }));
}

TEST_F(ControlsTest, SwatchesPickColoursAndPicturesAreClicked)
{
    KColourSwatchNativeControlPtr swatch(
        new KColourSwatchNativeControl(12, KWideRectangle(10, 10, 40, 20), KColor(KColor::Red)));
    const auto& swatchModel = add(*swatch);
    EXPECT_EQ(swatchModel.setup.kind, KNativeControlKind::ColourSwatch);
    EXPECT_EQ(swatchModel.colour.red, 65535);
    EXPECT_EQ(swatchModel.colour.green, 0);

    // A pick of another colour changes it; a cancel or the same colour
    // does nothing.
    layer.answerColour({ 0, 0x8000, 0xFFFF });
    layer.clickControl(swatch->getNativeControl());
    EXPECT_EQ(swatch->getColour().getGreen(), 0x8000);
    EXPECT_EQ(swatchModel.colour.blue, 0xFFFF);
    EXPECT_EQ(seen(), (Seen { "12 changed", "target changed" }));
    seen().clear();
    layer.clickControl(swatch->getNativeControl());
    layer.answerColour({ 0, 0x8000, 0xFFFF });
    layer.clickControl(swatch->getNativeControl());
    EXPECT_EQ(layer.colourRequests(), 3);
    EXPECT_TRUE(seen().empty());
    // A swatch that only shows a colour is clicked like a button.
    swatch->setPickable(false);
    layer.clickControl(swatch->getNativeControl());
    EXPECT_EQ(layer.colourRequests(), 3);
    EXPECT_EQ(seen(), (Seen { "12 clicked", "target clicked" }));

    KPictureNativeControlPtr picture(new KPictureNativeControl(13, KWideRectangle(60, 10, 64, 64)));
    KNativeImageData pixels;
    pixels.width = 2;
    pixels.height = 1;
    pixels.pixels = { 0xFF0000, 0x00FF00 };
    picture->setPicture(pixels);
    const auto& pictureModel = add(*picture);
    EXPECT_EQ(pictureModel.picture.pixels, pixels.pixels);
    // Pixels that do not fill their size are no picture.
    pixels.width = 3;
    picture->setPicture(pixels);
    EXPECT_FALSE(picture->hasPicture());
    EXPECT_EQ(pictureModel.picture.width, 0);
    // An image's pixels, without the unused byte.
    KImagePtr image(new KImage(KGraphicSize(3, 2)));
    image->getDevice().fillRectangle(KGraphicRectangle(0, 0, 3, 2), KColor(KColor::Blue));
    picture->setPicture(*image);
    EXPECT_EQ(pictureModel.picture.width, 3);
    EXPECT_EQ(pictureModel.picture.pixels, std::vector<uint32_t>(6, 0x0000FF));
    seen().clear();
    layer.clickControl(picture->getNativeControl());
    EXPECT_EQ(seen(), (Seen { "13 clicked", "target clicked" }));
}

TEST_F(ControlsTest, ControlsDescribeTheirKindAndValueForTheStateFile)
{
    KSpinFieldNativeControlPtr spin(new KSpinFieldNativeControl(9, KWideRectangle(10, 10, 80, 24), 0, 10, 0));
    spin->setDecimals(1);
    spin->setValue(2.5);
    EXPECT_EQ(json(*spin), "{\"class\":\"KSpinFieldNativeControl\",\"kind\":\"spinField\",\"id\":9,\"text\":\"\","
                           "\"bounds\":{\"x\":10,\"y\":10,\"width\":80,\"height\":24},\"enabled\":true,"
                           "\"visible\":false,\"value\":2.5,\"minimum\":0,\"maximum\":10,\"step\":1,\"page\":10,"
                           "\"decimals\":1}");

    KRadioGroupNativeControlPtr group(new KRadioGroupNativeControl(8, KWideRectangle(0, 0, 10, 10), { "A", "B" }));
    group->setSelected(1);
    EXPECT_NE(json(*group).find("\"kind\":\"radioGroup\""), std::string::npos);
    EXPECT_NE(json(*group).find("\"items\":[\"A\",\"B\"],\"value\":1"), std::string::npos);

    // Text comes out as UTF-8.
    KEntryNativeControlPtr entry(new KEntryNativeControl(5, "caf\xE9", KWideRectangle(0, 0, 10, 10), 10));
    EXPECT_NE(json(*entry).find("\"value\":\"caf\xC3\xA9\",\"limit\":10"), std::string::npos);

    KCheckBoxNativeControlPtr box(new KCheckBoxNativeControl(7, "Loop", KWideRectangle(0, 0, 10, 10), true));
    box->setEnabled(false);
    std::string boxJson = json(*box);
    EXPECT_NE(boxJson.find("\"kind\":\"checkBox\""), std::string::npos);
    EXPECT_NE(boxJson.find("\"enabled\":false"), std::string::npos);
    EXPECT_NE(boxJson.find("\"value\":true"), std::string::npos);

    KColourSwatchNativeControlPtr swatch(
        new KColourSwatchNativeControl(12, KWideRectangle(0, 0, 10, 10), KColor(KColor::Green)));
    EXPECT_NE(json(*swatch).find("\"value\":\"#0000ffff0000\""), std::string::npos);
    KButtonNativeControlPtr button(new KButtonNativeControl(1, "OK", KWideRectangle(0, 0, 90, 20)));
    EXPECT_NE(json(*button).find("\"kind\":\"button\""), std::string::npos);
}

} // namespace
