#pragma once

#include <cstdint>

class KBag;
class KFile;

// The two maps keep their keys and objects in parallel bags. After reading
// them, both halves must be of the expected kinds and the same length; a
// file that breaks this is damaged, and the map is emptied rather than left
// with keys and objects out of step.
bool kCheckMapHalves(KFile& file, KBag& keys, KBag& objects, bool keysDirect);
