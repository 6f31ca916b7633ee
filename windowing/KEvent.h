#pragma once

#include "kernel/KString.h"
#include "kernel/KThingPtr.h"
#include "windowing/KNativeRecord.h"

#include <memory>
#include <vector>

// Something that happened, on its way to the object that handles it. Each
// class of the family has its own route in process(); the root route offers
// the event to its handlers and then to the application.
class KEvent : public KThing {
    K_DECLARE_CLASS(KEvent)
public:
    KEvent();
    explicit KEvent(int32_t type);
    ~KEvent() override;

    int32_t getType() const { return type; }
    void setType(int32_t value) { type = value; }
    uint32_t getTime() const { return time; }
    void setTime(uint32_t value) { time = value; }

    // The native message the event came from, copied, with its time.
    void setNativeRecord(const KNativeRecord& record);
    const KNativeRecord* getNativeRecord() const { return native.get(); }

    // Named values, for example "Received Data". The event holds a
    // reference to each value; setting a name again replaces its value.
    void setParameter(const char* name, KThing* value);
    bool hasParameter(const char* name) const;
    KThing* getParameter(const char* name) const;
    void removeParameter(const char* name);

    // Objects that get the event before its own route; each one once.
    bool addHandler(KThing& handler);
    bool removeHandler(KThing& handler);
    int32_t handlerCount() const { return static_cast<int32_t>(handlers.size()); }

    virtual void setTarget(KThing* object);
    virtual void resetTarget();
    KThing* getTarget() const { return target.get(); }

    virtual KEventReturn process();

    // Events alive now; for diagnostics.
    static int32_t liveEvents();
    // While a native modal dialog is up, every event is refused as handled.
    static void setNativeModalWindow(void* window);
    static bool isNativeModalUp();

protected:
    // The root route: handlers, then the application's handleEvent.
    KEventReturn processRoot();
    KEventReturn offerToHandlers();

private:
    struct Parameter {
        KString name;
        KThingPtr value;
    };
    Parameter* findParameter(const char* name);
    const Parameter* findParameter(const char* name) const;

    int32_t type = 0;
    uint32_t time = 0;
    std::unique_ptr<KNativeRecord> native;
    std::vector<Parameter> parameters;
    std::vector<KThingPtr> handlers;
    KThingPtr target;
};

// The event queue. Events posted while processQueue runs are handled in the
// same pass, in the order of posting.
void post(KEvent* event);
void processQueue();
// Retains the event, processes it, releases it: a fresh event dies here.
KEventReturn processNow(KEvent* event);
bool hasPending(const KClass* eventClass);
bool hasPending(const KClass* eventClass, int32_t type);
void clearQueue();
int32_t queueLength();
