#include "kernel/KVariable.h"

#include "kernel/KClass.h"
#include "kernel/KClassWriter.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KStreamReading.h"

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
        KErrorHandler::raiseError(KError::ObjectNotOnHeap);
        return;
    }
    KThingPtr held(value);
    store(ObjectType, 0);
    object = held;
}

void KVariable::clearObject() { object.clear(); }

// Persistence.

void KVariable::writeToFile(KFile& file, int32_t version)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(1);
    file.writeShort(int16_t(type));
    switch (type) {
    case CharType:
    case UnsignedCharType:
        file.writeByte(getUnsignedChar());
        break;
    case BoolType:
        file.writeBool(getBool());
        break;
    case ShortType:
    case UnsignedShortType:
        file.writeShort(getShort());
        break;
    case LongType:
    case UnsignedLongType:
        file.writeLong(getLong());
        break;
    case FloatType:
        file.writeFloat(getFloat());
        break;
    case DoubleType:
        file.writeDouble(getDouble());
        break;
    case StringType:
        // A reader always expects the stream, so a missing string is
        // written as an empty one.
        if (KString* held = getStringObject())
            held->writeToFile(file, version);
        else
            KString().writeToFile(file, version);
        break;
    case ObjectType:
        // A missing object is written as the null of the reference convention.
        KClassWriter::writeObject(file, getObject());
        break;
    default:
        break;
    }
    writer.end();
}

void KVariable::readFromFile(KFile& file)
{
    store(LongType, int32_t(0));
    KStreamReading::readMainSection(file, classRecord, [&](int32_t) { readValue(file); });
}

void KVariable::readValue(KFile& file)
{
    int16_t tag = file.readShort();
    if (file.getError())
        return;
    switch (tag) {
    case CharType:
        setChar(static_cast<signed char>(file.readByte()));
        break;
    case BoolType:
        setBool(file.readBool());
        break;
    case ShortType:
        setShort(file.readShort());
        break;
    case LongType:
        setLong(file.readLong());
        break;
    case FloatType:
        setFloat(file.readFloat());
        break;
    case DoubleType:
        setDouble(file.readDouble());
        break;
    case StringType: {
        KStringPtr text = kAdopt(new KString());
        text->readFromFile(file);
        setString(*text);
        break;
    }
    case ObjectType:
        readObjectValue(file);
        break;
    case UnsignedCharType:
        setUnsignedChar(file.readByte());
        break;
    case UnsignedShortType:
        setUnsignedShort(uint16_t(file.readShort()));
        break;
    case UnsignedLongType:
        setUnsignedLong(uint32_t(file.readLong()));
        break;
    default:
        file.setError(KError::CouldNotReadFile);
        break;
    }
}

void KVariable::readObjectValue(KFile& file)
{
    // An unknown class follows the unknown-class policy like an array
    // element: the variable keeps tag 7 without an object.
    KThingPtr read;
    KStreamReading::readObject(file, read);
    if (read)
        setObject(read.getObject());
    else
        store(ObjectType, int32_t(0));
}

void KVariable::describe(KJsonWriter& out) const
{
    out.member("type", type);
    switch (type) {
    case CharType:
        out.member("value", int32_t(getChar()));
        break;
    case BoolType:
        out.member("value", getBool());
        break;
    case ShortType:
        out.member("value", int32_t(getShort()));
        break;
    case LongType:
        out.member("value", getLong());
        break;
    case FloatType:
        out.member("value", double(getFloat()));
        break;
    case DoubleType:
        out.member("value", getDouble());
        break;
    case StringType:
    case ObjectType:
        out.objectMember("object", object.get());
        break;
    case UnsignedCharType:
        out.member("value", int32_t(getUnsignedChar()));
        break;
    case UnsignedShortType:
        out.member("value", int32_t(getUnsignedShort()));
        break;
    case UnsignedLongType:
        out.member("value", getUnsignedLong());
        break;
    default:
        break;
    }
}
