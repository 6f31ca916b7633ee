#pragma once

#include "kernel/KVariable.h"
#include "kmultimedia/KMultimediaForward.h"
#include "windowing/KEvent.h"

#include <vector>

// The one progress event of timed media: named values as the medium tells
// them ("MediaType", "WordStart", "WordLength", "ElapsedTime"), delivered to
// the medium's receivers in order until one of them consumes it.
class KMediaFeedbackEvent : public KEvent {
    K_DECLARE_CLASS(KMediaFeedbackEvent)
public:
    static constexpr const char* kMediaType = "MediaType";
    static constexpr const char* kWordStart = "WordStart";
    static constexpr const char* kWordLength = "WordLength";
    static constexpr const char* kElapsedTime = "ElapsedTime";

    KMediaFeedbackEvent();
    ~KMediaFeedbackEvent() override;

    // Stores a copy of the value under the name, replacing an earlier one.
    void setValue(const char* name, const KVariable& value);
    // Null when the event carries no such value.
    KVariable* getValue(const char* name) const;

    // The medium that sent the event; not held, and only meaningful while
    // the event is delivered.
    void setSource(KThing* medium) { source = medium; }
    KThing* getSource() const { return source; }

    // Each target once, in the order added; the event holds them.
    bool addTarget(KThing& target);
    int32_t targetCount() const { return int32_t(targets.size()); }
    KThing* getTargetAt(int32_t index) const;

    // Offers the event to its targets in order until one handles it.
    KEventReturn process() override;

private:
    std::vector<KThingPtr> targets;
    KThing* source = nullptr;
};
