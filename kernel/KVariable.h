#pragma once

#include "kernel/KString.h"
#include "kernel/KThingPtr.h"

#include <cstring>

// A dynamically typed value: a tag and either 8 bytes of scalar or a counted
// object. The scalar getters read the bytes whatever the tag; there is no
// conversion between tags, the caller asks with the kind it stored.
class KVariable : public KThing {
    K_DECLARE_CLASS(KVariable)
public:
    enum Type : int32_t {
        CharType = 0,
        BoolType = 1,
        ShortType = 2,
        LongType = 3,
        FloatType = 4,
        DoubleType = 5,
        StringType = 6,
        ObjectType = 7,
        UnsignedCharType = 8,
        UnsignedShortType = 9,
        UnsignedLongType = 10,
    };

    // Tag 3, value 0.
    KVariable();
    KVariable(const KVariable& other);
    KVariable(char value);
    KVariable(signed char value);
    KVariable(bool value);
    KVariable(int16_t value);
    KVariable(int32_t value);
    KVariable(float value);
    KVariable(double value);
    KVariable(const KString& value);
    KVariable(const char* value);
    // Tag 7; the object must be on the heap.
    KVariable(KThing& object);
    KVariable(KThing* object);
    KVariable(unsigned char value);
    KVariable(uint16_t value);
    KVariable(uint32_t value);

    // Copies the tag and the bytes and shares the object.
    KVariable& operator=(const KVariable& other);

    // A new variable of the same tag and value; a string is copied, an
    // object of tag 7 is shared.
    KThing* deepCopy() const override;
    // Section 1: short type, then the value by tag: a KString stream for 6,
    // the object reference convention for 7 (class id 0 for no object).
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    int32_t getType() const { return type; }
    void setType(int32_t newType) { type = newType; }

    void setChar(signed char value);
    void setBool(bool value);
    void setShort(int16_t value);
    void setLong(int32_t value);
    void setFloat(float value);
    void setDouble(double value);
    // A heap string is held as it stands (later changes to it show here);
    // any other is copied to the heap.
    void setString(const KString& value);
    void setUnsignedChar(unsigned char value);
    void setUnsignedShort(uint16_t value);
    void setUnsignedLong(uint32_t value);

    signed char getChar() const { return read<signed char>(); }
    bool getBool() const { return read<unsigned char>() != 0; }
    int16_t getShort() const { return read<int16_t>(); }
    int32_t getLong() const { return read<int32_t>(); }
    float getFloat() const { return read<float>(); }
    double getDouble() const { return read<double>(); }
    unsigned char getUnsignedChar() const { return read<unsigned char>(); }
    uint16_t getUnsignedShort() const { return read<uint16_t>(); }
    uint32_t getUnsignedLong() const { return read<uint32_t>(); }
    // An empty string unless the tag is 6 and a string is held.
    KString getString() const;
    // The held string itself, or null unless the tag is 6.
    KString* getStringObject() const;
    // Null unless the tag is 7 and an object is held.
    KThing* getObject() const;

    // Slot 10: tag 7 with the object; one off the heap raises code 3.
    virtual void setObject(KThing& object);
    // Slot 11.
    virtual void clearObject();

    // The 8 bytes of the value, for the class stream and the preferences.
    const unsigned char* getBytes() const { return bytes; }

private:
    void readValue(KFile& file);
    void readObjectValue(KFile& file);

    template<class T>
    T read() const
    {
        T result;
        std::memcpy(&result, bytes, sizeof(T));
        return result;
    }
    template<class T>
    void store(int32_t tag, T value)
    {
        clearObject();
        std::memset(bytes, 0, sizeof bytes);
        std::memcpy(bytes, &value, sizeof(T));
        type = tag;
    }

    KThingPtr object;
    int32_t type = LongType;
    unsigned char bytes[8] = {};
};
