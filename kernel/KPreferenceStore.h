#pragma once

#include "kernel/KString.h"

#include <cstdint>
#include <vector>

// The hierarchical store beneath KPreferences. A group of an application is
// one key file: first the user's ($XDG_CONFIG_HOME/<Application>/<Group>.conf),
// else the machine-wide one of the system configuration folders. Values are
// typed as registry values were, so the rules that read them stay the same.
//
// A file that cannot be read or parsed counts as missing and is reported on
// stderr; it is left as it is until a group is saved on purpose.
namespace KPreferenceStore {

enum Kind : int32_t {
    Unknown = 0,
    Text = 1, // host-set bytes
    Binary = 3, // raw bytes
    Integer = 4 // 4 bytes, host order
};

struct Value {
    KString name;
    int32_t kind = Unknown;
    std::vector<unsigned char> data;
};

// The values of the group in the order of the file; false when the group is
// in neither place or its file is unusable.
bool readGroup(const char* application, const char* group, std::vector<Value>& values);
// Adds or replaces the values in the group's file; values already there and
// not among them stay. False when no place could be written.
bool writeGroup(const char* application, const char* group, const std::vector<Value>& values);
// True when the group's file is in either place.
bool groupExists(const char* application, const char* group);
// True when the user's file of the group is there but cannot be read.
bool userGroupUnreadable(const char* application, const char* group);
// Renames the user's file of the group to "<Group>.conf.bad", replacing an
// older one, so that a file the program cannot read is kept for a person to
// look at; the next write starts afresh. False when nothing was renamed.
bool setAsideUserGroup(const char* application, const char* group);

} // namespace KPreferenceStore
