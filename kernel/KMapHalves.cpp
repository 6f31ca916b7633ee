#include "kernel/KMapHalves.h"

#include "kernel/KBag.h"
#include "kernel/KError.h"
#include "kernel/KFile.h"

bool kCheckMapHalves(KFile& file, KBag& keys, KBag& objects, bool keysDirect)
{
    if (keys.getIsDirect() == keysDirect && !objects.getIsDirect() && keys.getSize() == objects.getSize())
        return true;
    if (!file.getError())
        file.setError(KError::CouldNotReadFile);
    keys.setSize(0);
    objects.setSize(0);
    keys.setIsDirect(keysDirect);
    objects.setIsDirect(false);
    return false;
}
