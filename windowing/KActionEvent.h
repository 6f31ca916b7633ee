#pragma once

#include "windowing/KEvent.h"

// An interactive element or a control did its thing; the route runs from
// the source up through its layer and window to the application.
class KActionEvent : public KEvent {
    K_DECLARE_CLASS(KActionEvent)
public:
    KActionEvent();
    KActionEvent(int32_t type, KThing* source);

    KThing* getSource() const { return source.get(); }
    void setSource(KThing* value) { source = value; }

    KEventReturn process() override;

private:
    KThingPtr source;
};
