#include "tape/TapePage.h"

#include "kernel/KClass.h"

K_DEFINE_ABSTRACT_CLASS(TapePage, KThing)

TapePage::TapePage() = default;

TapePage::~TapePage() = default;

void TapePage::refreshAll() { refresh(getPageBounds()); }

void TapePage::refreshSpriteLayer() { refreshAll(); }

void TapePage::stopActors(Tape&) { }

void TapePage::resetActors(Tape&) { }

void TapePage::synchroniseActors(Tape&, int32_t, int32_t) { }

void TapePage::releaseActors(Tape&) { }

bool TapePage::putActorOnScene(Tape&, const KString&) { return false; }

void TapePage::removeActorFromScene(Tape&, const KString&) { }

bool TapePage::isActorOnScene(Tape&, const KString&) { return false; }

void TapePage::drawFrame() { }

KGraphicRectangle TapePage::getPageBounds()
{
    KGraphicSize size = getPageSize();
    return KGraphicRectangle(0, 0, size.width, size.height);
}
