#pragma once

#include "app/AppForward.h"
#include "graphics/KGraphicSize.h"
#include "graphics/KImage.h"
#include "kernel/KThingPtr.h"
#include "kmultimedia/StylusSpriteSystem.h"
#include "tape/TapePage.h"

// The page of a tape as the scene shows it: the page image is the sprite
// system's background, refreshing it invalidates the scene there, and the
// tape's actors (its named bag, name to Actor) stand on the scene's layer of
// actors above it.
//
// It works with or without a window. A headless scene draws its frames into
// an image of its own, so that a tool can render a page with its actors.
class SceneTapePage : public TapePage {
    K_DECLARE_CLASS(SceneTapePage)
public:
    static constexpr int16_t kDefaultWidth = 640;
    static constexpr int16_t kDefaultHeight = 480;

    // A headless scene of the default page size.
    SceneTapePage();
    // A headless scene of the size.
    explicit SceneTapePage(const KGraphicSize& size);
    // The scene of a window; its device should be attached already.
    explicit SceneTapePage(StylusSpriteSystem& scene);
    ~SceneTapePage() override;

    KImage& getPageImage() override;
    KGraphicDevice& getPageDevice() override;
    KGraphicSize getPageSize() override;
    void refresh(const KGraphicRectangle& changed) override;
    void refreshSpriteLayer() override;

    void stopActors(Tape& tape) override;
    void resetActors(Tape& tape) override;
    void synchroniseActors(Tape& tape, int32_t first, int32_t limit) override;
    void releaseActors(Tape& tape) override;
    bool putActorOnScene(Tape& tape, const KString& name) override;
    void removeActorFromScene(Tape& tape, const KString& name) override;
    bool isActorOnScene(Tape& tape, const KString& name) override;
    void drawFrame() override;

    StylusSpriteSystem& getScene() const { return scene.getObject(); }
    // Whether the actor stands in this scene's layer of actors and is
    // visible.
    bool isOnScene(const Actor& actor) const;

    // The page with the visible actors over it, composed afresh into the
    // image, which takes the page's size.
    void composeInto(KImage& image);
    // The image a headless scene draws its frames into; null for a window's.
    KImage* getFrameImage() const { return frameImage.get(); }

private:
    // The tape's actor of that name; null when there is none.
    static Actor* findActor(Tape& tape, const KString& name);
    // Calls `visit` with each actor of the tape.
    template<class Visit>
    static void forEachActor(Tape& tape, Visit&& visit);
    void putOnScene(Actor& actor);
    void takeOffScene(Actor& actor);
    // The steps of the scene's rebuild: the actor elements replayed with the
    // movements only noted, then each actor shown in its noted movement or
    // reset.
    void replayActorElements(Tape& tape, int32_t first, int32_t limit, KNamedBag& movements);
    void settleActors(Tape& tape, const KNamedBag& movements);

    StylusSpriteSystemPtr scene;
    KImagePtr frameImage;
    // Stands in for the page while the scene has no device yet.
    KImagePtr sparePage;
};
