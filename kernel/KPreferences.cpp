#include "kernel/KPreferences.h"

#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KPreferenceStore.h"

#include <cstdio>
#include <cstring>
#include <string>

K_DEFINE_CLASS(KPreferences, KThing)

namespace {

constexpr const char* kRectangleMark = "KGraphicRectangle";
constexpr const char* kNotImplemented = "Not Yet Implemented!";

std::string gApplicationName = "TaleLoom";

// The first byte of a binary value names the kind of the bytes after it.
enum BinaryTag : unsigned char { CharTag = 0, BoolTag = 1, LongTag = 3, FloatTag = 4, DoubleTag = 5 };

// The caption is the caller's signature and what it could not handle.
void notImplemented(const char* what, const KSourceLocation& where = KSourceLocation::current())
{
    std::string caption = std::string(where.function_name()) + " - " + what;
    KErrorHandler::showMessage(kNotImplemented, caption.c_str(), KErrorHandler::kNoticeBoxFlags);
}

template<class T>
T readBytes(const unsigned char* data)
{
    T result;
    std::memcpy(&result, data, sizeof(T));
    return result;
}

KPreferenceStore::Value binaryValue(const KString& key, unsigned char tag, const unsigned char* bytes, size_t size)
{
    KPreferenceStore::Value value { key, KPreferenceStore::Binary, std::vector<unsigned char>(size + 1) };
    value.data[0] = tag;
    std::memcpy(value.data.data() + 1, bytes, size);
    return value;
}

size_t binarySize(unsigned char tag)
{
    switch (tag) {
    case CharTag:
    case BoolTag:
        return 2;
    case LongTag:
    case FloatTag:
        return 5;
    case DoubleTag:
        return 9;
    default:
        return 0;
    }
}

// Turns one variable into its stored form; false for a kind the store has no
// form for.
bool encode(const KString& key, const KVariable& variable, KPreferenceStore::Value& value)
{
    const unsigned char* bytes = variable.getBytes();
    switch (variable.getType()) {
    case KVariable::StringType: {
        KString text = variable.getString();
        text.convertToHostCharSet();
        value = { key, KPreferenceStore::Text, {} };
        value.data.assign(text.c_str(), text.c_str() + text.getLength());
        return true;
    }
    case KVariable::ShortType: {
        int32_t widened = variable.getShort();
        value = { key, KPreferenceStore::Integer, {} };
        value.data.resize(4);
        std::memcpy(value.data.data(), &widened, 4);
        return true;
    }
    case KVariable::CharType:
        value = binaryValue(key, CharTag, bytes, 1);
        return true;
    case KVariable::BoolType:
        value = binaryValue(key, BoolTag, bytes, 1);
        return true;
    case KVariable::LongType:
        value = binaryValue(key, LongTag, bytes, 4);
        return true;
    case KVariable::FloatType:
        value = binaryValue(key, FloatTag, bytes, 4);
        return true;
    case KVariable::DoubleType:
        value = binaryValue(key, DoubleTag, bytes, 8);
        return true;
    default:
        return false;
    }
}

} // namespace

KPreferences::KPreferences() = default;

KPreferences::KPreferences(const KPreferences& other)
    : KThing(other)
{
    copyValuesFrom(other);
}

KPreferences::~KPreferences() = default;

KPreferences& KPreferences::operator=(const KPreferences& other)
{
    if (this != &other) {
        clear();
        copyValuesFrom(other);
    }
    return *this;
}

KThing* KPreferences::deepCopy() const { return new KPreferences(*this); }

void KPreferences::copyValuesFrom(const KPreferences& other)
{
    for (const Entry& entry : other.values)
        put(entry.first, static_cast<KVariable*>(entry.second->deepCopy()));
}

void KPreferences::clear() { values.clear(); }

KPreferences::Entry* KPreferences::findEntry(const KString& key)
{
    for (Entry& entry : values) {
        if (entry.first.compare(key) == 0)
            return &entry;
    }
    return nullptr;
}

const KPreferences::Entry* KPreferences::findEntry(const KString& key) const
{
    return const_cast<KPreferences*>(this)->findEntry(key);
}

bool KPreferences::has(const KString& key) const { return findEntry(key) != nullptr; }

KString KPreferences::getKey(int32_t index) const
{
    if (index < 0 || index >= getCount())
        return KString();
    return values[size_t(index)].first;
}

KVariable* KPreferences::getVariable(const KString& key) const
{
    const Entry* entry = findEntry(key);
    return entry ? entry->second.get() : nullptr;
}

void KPreferences::put(const KString& key, KVariable* value)
{
    KVariablePtr held(value);
    if (Entry* entry = findEntry(key)) {
        entry->second = held;
        return;
    }
    values.emplace_back(key, held);
}

void KPreferences::setVariable(const KString& key, const KVariable& value) { put(key, new KVariable(value)); }

void KPreferences::setString(const KString& key, const KString& value) { put(key, new KVariable(value)); }
void KPreferences::setChar(const KString& key, char value) { put(key, new KVariable(value)); }
void KPreferences::setBool(const KString& key, bool value) { put(key, new KVariable(value)); }
void KPreferences::setShort(const KString& key, int16_t value) { put(key, new KVariable(value)); }
void KPreferences::setFloat(const KString& key, float value) { put(key, new KVariable(value)); }
void KPreferences::setLong(const KString& key, int32_t value) { put(key, new KVariable(value)); }
void KPreferences::setDouble(const KString& key, double value) { put(key, new KVariable(value)); }

void KPreferences::setRectangle(const KString& key, int16_t x, int16_t y, int16_t width, int16_t height)
{
    setString(key, kRectangleMark);
    setShort(key + "_X", x);
    setShort(key + "_Y", y);
    setShort(key + "_W", width);
    setShort(key + "_H", height);
}

KString KPreferences::getString(const KString& key) const
{
    KVariable* value = getVariable(key);
    return value ? value->getString() : KString();
}

char KPreferences::getChar(const KString& key) const
{
    KVariable* value = getVariable(key);
    return value ? char(value->getChar()) : char(0);
}

bool KPreferences::getBool(const KString& key) const
{
    KVariable* value = getVariable(key);
    return value && value->getBool();
}

int16_t KPreferences::getShort(const KString& key) const
{
    KVariable* value = getVariable(key);
    return value ? value->getShort() : int16_t(0);
}

float KPreferences::getFloat(const KString& key) const
{
    KVariable* value = getVariable(key);
    return value ? value->getFloat() : 0.0f;
}

int32_t KPreferences::getLong(const KString& key) const
{
    KVariable* value = getVariable(key);
    return value ? value->getLong() : 0;
}

double KPreferences::getDouble(const KString& key) const
{
    KVariable* value = getVariable(key);
    return value ? value->getDouble() : 0.0;
}

bool KPreferences::getRectangle(const KString& key, int16_t& x, int16_t& y, int16_t& width, int16_t& height) const
{
    x = y = width = height = 0;
    if (getString(key) != kRectangleMark)
        return false;
    x = getShort(key + "_X");
    y = getShort(key + "_Y");
    width = getShort(key + "_W");
    height = getShort(key + "_H");
    return true;
}

// --- Storage -----------------------------------------------------------------

namespace {

void warnMalformed(const char* group, const KString& key)
{
    std::fprintf(stderr, "TaleLoom: preference \"%s\" of group \"%s\" is malformed and skipped\n", key.c_str(), group);
}

void loadBinary(KPreferences& preferences, const char* group, const KPreferenceStore::Value& value)
{
    const unsigned char* data = value.data.data();
    if (value.data.empty()) {
        warnMalformed(group, value.name);
        return;
    }
    size_t expected = binarySize(data[0]);
    if (expected == 0) {
        notImplemented("unimplemented data format");
        return;
    }
    if (value.data.size() < expected) {
        warnMalformed(group, value.name);
        return;
    }
    switch (data[0]) {
    case CharTag:
        preferences.setChar(value.name, char(data[1]));
        break;
    case BoolTag:
        preferences.setBool(value.name, data[1] != 0);
        break;
    case LongTag:
        preferences.setLong(value.name, readBytes<int32_t>(data + 1));
        break;
    case FloatTag:
        preferences.setFloat(value.name, readBytes<float>(data + 1));
        break;
    default:
        preferences.setDouble(value.name, readBytes<double>(data + 1));
        break;
    }
}

void loadValue(KPreferences& preferences, const char* group, const KPreferenceStore::Value& value)
{
    switch (value.kind) {
    case KPreferenceStore::Text: {
        KString text;
        text.setText(value.data.data(), int32_t(value.data.size()));
        preferences.setString(value.name, text);
        break;
    }
    case KPreferenceStore::Integer:
        // Only the low 16 bits count: the store's integer holds a short.
        if (value.data.size() == 4)
            preferences.setShort(value.name, int16_t(readBytes<uint32_t>(value.data.data()) & 0xFFFF));
        else
            warnMalformed(group, value.name);
        break;
    case KPreferenceStore::Binary:
        loadBinary(preferences, group, value);
        break;
    default:
        notImplemented("unimplemented register format");
        break;
    }
}

} // namespace

bool KPreferences::load(const char* group)
{
    std::vector<KPreferenceStore::Value> stored;
    if (!KPreferenceStore::readGroup(gApplicationName.c_str(), group, stored))
        return false;
    for (const KPreferenceStore::Value& value : stored)
        loadValue(*this, group, value);
    return true;
}

bool KPreferences::save(const char* group) const
{
    std::vector<KPreferenceStore::Value> stored;
    for (const Entry& entry : values) {
        KPreferenceStore::Value value;
        if (encode(entry.first, *entry.second, value))
            stored.push_back(std::move(value));
        else
            notImplemented("unimplemented data format");
    }
    return KPreferenceStore::writeGroup(gApplicationName.c_str(), group, stored);
}

bool KPreferences::exists(const char* group) { return KPreferenceStore::groupExists(gApplicationName.c_str(), group); }

void KPreferences::setApplicationName(const char* name) { gApplicationName = name ? name : ""; }

const char* KPreferences::getApplicationName() { return gApplicationName.c_str(); }
