#include "kernel/KVariable.h"

#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"

K_DEFINE_CLASS(KVariable, KThing)

KVariable::KVariable() = default;

KVariable::KVariable(const KVariable& other)
    : KThing(other)
    , object(other.object)
    , type(other.type)
{
    std::memcpy(bytes, other.bytes, sizeof bytes);
}

KVariable::KVariable(char value) { setChar(static_cast<signed char>(value)); }
KVariable::KVariable(signed char value) { setChar(value); }
KVariable::KVariable(bool value) { setBool(value); }
KVariable::KVariable(int16_t value) { setShort(value); }
KVariable::KVariable(int32_t value) { setLong(value); }
KVariable::KVariable(float value) { setFloat(value); }
KVariable::KVariable(double value) { setDouble(value); }
KVariable::KVariable(const KString& value) { setString(value); }
KVariable::KVariable(const char* value) { setString(KString(value)); }
KVariable::KVariable(KThing& value) { setObject(value); }
KVariable::KVariable(unsigned char value) { setUnsignedChar(value); }
KVariable::KVariable(uint16_t value) { setUnsignedShort(value); }
KVariable::KVariable(uint32_t value) { setUnsignedLong(value); }

KVariable::KVariable(KThing* value)
{
    type = ObjectType;
    if (value)
        setObject(*value);
}

KVariable& KVariable::operator=(const KVariable& other)
{
    if (this == &other)
        return *this;
    type = other.type;
    std::memcpy(bytes, other.bytes, sizeof bytes);
    object = other.object;
    return *this;
}

KThing* KVariable::deepCopy() const
{
    auto* copy = new KVariable(*this);
    if (KString* text = getStringObject())
        copy->setString(KString(*text));
    return copy;
}

void KVariable::setChar(signed char value) { store(CharType, value); }
void KVariable::setBool(bool value) { store(BoolType, static_cast<unsigned char>(value ? 1 : 0)); }
void KVariable::setShort(int16_t value) { store(ShortType, value); }
void KVariable::setLong(int32_t value) { store(LongType, value); }
void KVariable::setFloat(float value) { store(FloatType, value); }
void KVariable::setDouble(double value) { store(DoubleType, value); }
void KVariable::setUnsignedChar(unsigned char value) { store(UnsignedCharType, value); }
void KVariable::setUnsignedShort(uint16_t value) { store(UnsignedShortType, value); }
void KVariable::setUnsignedLong(uint32_t value) { store(UnsignedLongType, value); }

void KVariable::setString(const KString& value)
{
    // Held before the old object goes: `value` may be the string held now.
    KThingPtr held;
    if (value.isOnHeap())
        held = const_cast<KString&>(value);
    else
        held = new KString(value);
    store(StringType, 0);
    object = held;
}

KString KVariable::getString() const
{
    KString* held = getStringObject();
    return held ? *held : KString();
}

KString* KVariable::getStringObject() const
{
    if (type != StringType || !object)
        return nullptr;
    return dynamic_cast<KString*>(object.get());
}

KThing* KVariable::getObject() const { return type == ObjectType ? object.get() : nullptr; }

void KVariable::setObject(KThing& value)
{
    if (!value.isOnHeap()) {
        KErrorHandler::raiseError(KError::ObjectNotOnHeap, "Object not on heap!");
        return;
    }
    KThingPtr held(value);
    store(ObjectType, 0);
    object = held;
}

void KVariable::clearObject() { object.clear(); }
