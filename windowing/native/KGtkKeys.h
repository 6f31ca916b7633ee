#pragma once

#include <cstdint>

// The virtual-key code of a GDK key value, 0 for keys without one.
int32_t kGtkVirtualKey(uint32_t keyval);
// The Windows-set character a key types, or 0 when it types none: keys
// held with Alt, control characters and characters the set lacks. With
// Control a key still types its character; the modifier goes with it.
int32_t kGtkCharacter(uint32_t keyval, uint32_t modifierState);
