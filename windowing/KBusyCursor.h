#pragma once

#include "windowing/KCursorManager.h"

// Shows the wait cursor for the scope of a block.
class KBusyCursor {
public:
    KBusyCursor()
    {
        if (KCursorManager* cursor = KCursorManager::current())
            cursor->beginWait();
    }
    ~KBusyCursor()
    {
        if (KCursorManager* cursor = KCursorManager::current())
            cursor->endWait();
    }
    KBusyCursor(const KBusyCursor&) = delete;
    KBusyCursor& operator=(const KBusyCursor&) = delete;
};
