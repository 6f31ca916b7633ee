#pragma once

#include "kernel/KString.h"
#include "kernel/KThingPtr.h"
#include "kernel/KVariable.h"

#include <utility>
#include <vector>

// A named set of typed values, kept in memory and loaded from and saved to
// the preference store under a group name. Keys are case-sensitive. Setting
// a key replaces its value in place; the set keeps the order of first
// insertion, which is the order a save writes.
//
// A getter reads the value's bytes without testing its kind, so a caller asks
// with the kind it stored. A missing key gives false, 0 or empty.
class KPreferences : public KThing {
    K_DECLARE_CLASS(KPreferences)
public:
    KPreferences();
    KPreferences(const KPreferences& other);
    ~KPreferences() override;
    KPreferences& operator=(const KPreferences& other);

    KThing* deepCopy() const override;

    void clear();
    bool has(const KString& key) const;
    int32_t getCount() const { return int32_t(values.size()); }
    // The key at `index` in order, or an empty string.
    KString getKey(int32_t index) const;
    // The value under `key`, or null. It stays owned by the set.
    KVariable* getVariable(const KString& key) const;
    // Stores a copy of `value` under `key`.
    void setVariable(const KString& key, const KVariable& value);

    void setString(const KString& key, const KString& value);
    void setChar(const KString& key, char value);
    void setBool(const KString& key, bool value);
    void setShort(const KString& key, int16_t value);
    void setFloat(const KString& key, float value);
    void setLong(const KString& key, int32_t value);
    void setDouble(const KString& key, double value);
    // A rectangle is the string "KGraphicRectangle" under `key` and four
    // shorts under key + "_X", "_Y", "_W", "_H".
    void setRectangle(const KString& key, int16_t x, int16_t y, int16_t width, int16_t height);

    KString getString(const KString& key) const;
    char getChar(const KString& key) const;
    bool getBool(const KString& key) const;
    int16_t getShort(const KString& key) const;
    float getFloat(const KString& key) const;
    int32_t getLong(const KString& key) const;
    double getDouble(const KString& key) const;
    // False, and all four 0 (the empty rectangle), unless `key` holds the
    // string "KGraphicRectangle".
    bool getRectangle(const KString& key, int16_t& x, int16_t& y, int16_t& width, int16_t& height) const;

    // Adds the group's stored values to the set, replacing equal keys. A
    // missing or unusable group changes nothing and answers false.
    bool load(const char* group);
    // Writes every value of the set into the group; stored values that are
    // not in the set stay. False when nothing could be written.
    bool save(const char* group) const;
    // True when the group is stored for the user or machine-wide.
    static bool exists(const char* group);

    // The folder name of the application in the store, "TaleLoom" unless set.
    static void setApplicationName(const char* name);
    static const char* getApplicationName();

private:
    using Entry = std::pair<KString, KVariablePtr>;

    Entry* findEntry(const KString& key);
    const Entry* findEntry(const KString& key) const;
    // Takes a fresh heap variable and stores it under `key`.
    void put(const KString& key, KVariable* value);
    void copyValuesFrom(const KPreferences& other);

    std::vector<Entry> values;
};
