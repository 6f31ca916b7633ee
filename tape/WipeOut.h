#pragma once

#include "graphics/KAlphaImage.h"
#include "graphics/KColor.h"
#include "kernel/KBag.h"
#include "kernel/KFileReference.h"
#include "kernel/KStringBag.h"
#include "tape/TapeGraphicObject.h"

// A page transition: paints a new background, a colour or an image
// stretched to the page, over all the page showed, at once or through a
// visual effect, and may clear the stage of actors. Since it covers the
// whole page, the tape rebuilds the page from the last one.
//
// The effects other than "Fade" go by ticks of the tape, one step a tick;
// "Fade" goes by time.
class WipeOut : public TapeGraphicObject {
    K_DECLARE_CLASS(WipeOut)
public:
    enum Effect : int32_t {
        Cut = 0,
        Fade = 1,
        ZoomIn = 2,
        ZoomOut = 3,
        WipeLeft = 4,
        WipeRight = 5,
        WipeUp = 6,
        WipeDown = 7,
        CheckerBoard = 8,
        VenetianBlinds = 9,
        kEffectCount = 10,
    };
    enum Background : int32_t { ColourBackground = 0, ImageBackground = 1 };

    WipeOut();
    WipeOut(const WipeOut& other);
    ~WipeOut() override;

    KThing* deepCopy() const override;
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    void startPlaying() override;
    void playStep() override;
    void stopPlaying() override;
    void drawOnPage() override;
    void drawOn(KGraphicDevice& device, const KGraphicRectangle& source, const KGraphicRectangle& target) override;
    void redrawOver() override;
    bool hitTest(const KGraphicPoint& p) const override;
    bool findMissingMedia(KDirectory& directory, KDirectory* second) override;
    void collectMedia(KDirectory& from, KDirectory& to) override;
    bool replaceMedia(const KFileReference& oldFile, const KFileReference& newFile) override;
    void addMediaName(KStringBag& names) override;
    bool usesMediaNamed(const KString& name) override;

    void setEffect(int32_t value);
    int32_t getEffect() const { return effect; }
    void setBackground(int32_t value);
    int32_t getBackground() const { return background; }
    void setColour(const KColor& value);
    const KColor& getColour() const { return colour; }
    void setImageFile(const KFileReference& file);
    const KFileReference& getImageFile() const { return imageFile; }
    void setRemovesActors(bool value);
    bool getRemovesActors() const { return removesActors; }

    // The effects' names in the user's language, in the order of their numbers.
    static KStringBagPtr getEffectNames();

    // While playing.
    int32_t getStep() const { return step; }
    int32_t getStepCount() const { return stepCount; }
    const KBag& getOrder() const { return order; }

private:
    bool usesImage() const;
    bool hasImageName() const;
    KGraphicRectangle pageRectangle() const;
    // The finished new page, for playing.
    void makeNewPage(const KGraphicRectangle& page);
    void prepareEffect(KGraphicDevice& device, const KGraphicRectangle& page);
    void shuffleOrder();
    // Copies the part of the new page over the page and refreshes it.
    void reveal(const KGraphicRectangle& part);
    void drawStep(const KGraphicRectangle& page);
    void drawFadeStep(const KGraphicRectangle& page);
    void finishEffect(const KGraphicRectangle& page);
    void releasePages();

    int32_t effect = Cut;
    int32_t background = ColourBackground;
    KColor colour;
    KFileReference imageFile;
    bool removesActors = true;
    KAlphaImagePtr newPage;
    KImagePtr oldPage;
    int32_t step = 0;
    int32_t stepCount = 0;
    int32_t fadeDuration = 0;
    uint32_t fadeStart = 0;
    KBag order;
};
