#pragma once

#include "graphics/KImage.h"
#include "kernel/KThingPtr.h"
#include "tape/TapePage.h"

// A page that is one image and a scene without actors. It keeps count of the
// refresh requests and scene calls, which is what a test or a headless
// renderer wants to know.
class ImageTapePage : public TapePage {
    K_DECLARE_CLASS(ImageTapePage)
public:
    ImageTapePage();
    explicit ImageTapePage(const KGraphicSize& size);
    ~ImageTapePage() override;

    KImage& getPageImage() override;
    KGraphicDevice& getPageDevice() override;
    KGraphicSize getPageSize() override;
    void refresh(const KGraphicRectangle& changed) override;
    void refreshSpriteLayer() override;
    void stopActors(Tape& tape) override;
    void resetActors(Tape& tape) override;
    void synchroniseActors(Tape& tape, int32_t first, int32_t limit) override;

    // Replaces the image by a black one of the size.
    void setPageSize(const KGraphicSize& size);

    // The union of the rectangles refreshed since the last clear.
    const KGraphicRectangle& getRefreshed() const { return refreshed; }
    int32_t getRefreshCount() const { return refreshCount; }
    void clearRefreshed();

    int32_t getStopActorsCount() const { return stopActorsCount; }
    int32_t getResetActorsCount() const { return resetActorsCount; }
    int32_t getSynchroniseCount() const { return synchroniseCount; }
    // The range of the last synchronisation.
    int32_t getSynchronisedFirst() const { return synchronisedFirst; }
    int32_t getSynchronisedLimit() const { return synchronisedLimit; }

private:
    KImagePtr image;
    KGraphicRectangle refreshed;
    int32_t refreshCount = 0;
    int32_t stopActorsCount = 0;
    int32_t resetActorsCount = 0;
    int32_t synchroniseCount = 0;
    int32_t synchronisedFirst = -1;
    int32_t synchronisedLimit = -1;
};
