#pragma once

#include "kernel/KThing.h"
#include "kmultimedia/KMultimediaForward.h"

// The platform support of one kind of medium (movies, sound or speech):
// told which kinds of its engines to use, then opened once and closed once
// by the media manager.
class KMediaSupport : public KThing {
    K_DECLARE_CLASS(KMediaSupport)
public:
    KMediaSupport() = default;
    ~KMediaSupport() override;

    // The engine kinds to try, as a bit set; only before opening.
    virtual void setKinds(int32_t kinds);
    int32_t getKinds() const { return kinds; }

    // Starts what of the chosen kinds this platform has. False when none
    // could be started; the support stays usable and its media fail to load.
    virtual bool open();
    virtual void close();
    bool isOpen() const { return opened; }

protected:
    void setOpen(bool value) { opened = value; }

private:
    int32_t kinds = 0;
    bool opened = false;
};
