#pragma once

#include "kernel/KFileReference.h"

#include "kernel/KSourceLocation.h"

enum KFileMode : int32_t {
    KFileModeDirect = 0, // reads and writes go straight to the file
    KFileModeReadBuffered = 1, // the whole file (or a RAM image) is read at open
    KFileModeWriteBuffered = 2, // writes go through a 524,288-byte buffer; no seeks
    KFileModeMemory = 3, // writes collect in a growing buffer, written out at close
};

// A file with typed big-endian reads and writes, over the disk or a memory
// image. Ordinary input and output failures are not raised: the kernel code
// of the last failed operation is stored, and the caller tests getError()
// once after a batch of operations. Only misuse (a wrong mode, no file name,
// assigning an open file) raises.
//
// Besides the plain create-then-write, a file can be written atomically:
// beginAtomicWrite() writes into a temporary file beside the target, and
// commitAtomicWrite() (or close()) puts it in place only when every byte made
// it to the disk, so that a failed save leaves the old file untouched.
class KFile : public KFileReference {
    // Declared by hand rather than by K_DECLARE_CLASS: the class's own
    // create() would clash with the create procedure's name.
public:
    static KClass* classRecord;
    static KThing* createInstance();
    static KClass* registerClass();
    KClass* getClass() const override;
    bool isClassRegistered() const override;

public:
    static constexpr int32_t kBufferUnit = 0x80000;

    KFile();
    explicit KFile(const KFileReference& reference);
    explicit KFile(const KPath& path);
    // Copies the reference and the mode, never the open state.
    KFile(const KFile& other);
    ~KFile() override;
    // Code 43 when either file is open.
    KFile& operator=(const KFile& other);

    KThing* deepCopy() const override;

    // Code 45 while open.
    void setMode(KFileMode mode);
    KFileMode getMode() const { return mode; }

    // Creates or truncates the file and closes it again. An empty path raises 47.
    void create();
    // Opens an existing file, for reading and writing if allowed, else for
    // reading. In read-buffered mode the whole file is read into memory.
    void open();
    // Read-buffered mode only (else 46): reads from a block of `dataSize`
    // bytes that came from KMemory; close() disposes of it.
    void openFromRAM(void* address, int32_t dataSize);
    // Writes out what is buffered, closes, and disposes of the buffer. An
    // atomic write is committed when no error is stored, abandoned otherwise.
    void close();
    bool isOpen() const { return openFlag; }

    // Opens a temporary file beside the target for writing (any mode but
    // read-buffered). False with the error stored when it cannot be made.
    bool beginAtomicWrite();
    // Writes out the buffer, flushes to the device, closes, and renames the
    // temporary file over the target, all only while no error is stored. On
    // any failure the temporary file is removed and the target untouched.
    bool commitAtomicWrite();
    // Closes and removes the temporary file, leaving the target untouched.
    void abandonAtomicWrite();
    bool isAtomicWrite() const { return atomicWrite; }

    // Returns the bytes read. A read beyond the end stores 40 and, in
    // read-buffered mode, reads nothing at all.
    int32_t read(void* buffer, int32_t size);
    // Returns `size`; failures are stored.
    int32_t write(const void* buffer, int32_t size);

    int32_t getPosition() const;
    void setPosition(int32_t position);
    void skip(int32_t count);
    void skipBack(int32_t count);
    // The size of the file; a closed file is opened, asked and closed.
    int32_t getSize();
    // The bytes between the position and the end.
    int32_t bytesLeft();
    // True when `count` bytes can still be read; otherwise stores 40 (38 for
    // a negative count) and allocates nothing. Readers call this before they
    // allocate for a count or length taken from the file.
    bool checkAvailable(int64_t count);

    int32_t getError() const { return error; }
    void clearError() { error = 0; }
    // Stores `code` as the last failure; readers use it for damaged data.
    void setError(int32_t code) { error = code; }

    // Scalars, big-endian on disk. A failed read gives 0.
    void writeByte(uint8_t value);
    uint8_t readByte();
    // Writes 1 or 0; reading gives true only for a byte 1.
    void writeBool(bool value);
    bool readBool();
    void writeShort(int16_t value);
    int16_t readShort();
    void writeLong(int32_t value);
    int32_t readLong();
    void writeFloat(float value);
    float readFloat();
    void writeDouble(double value);
    double readDouble();
    void writeBytes(const void* data, int32_t size) { write(data, size); }
    // True when all `size` bytes were read.
    bool readBytes(void* data, int32_t size);

    // A length-prefixed 8-bit text as KString streams hold it: long length,
    // then, when the length is above 0, the bytes and a 0 terminator.
    void writeCountedText(const char* text, int32_t length);
    // Reads such a text into a block from KMemory of length + 1 bytes, the
    // last forced to 0; null for an empty text or on failure (error stored).
    // The length is checked against the bytes left before allocating.
    char* readCountedText(int32_t* length);
    bool readCountedText(KString& out);

    // Text output: bytes without a terminator; lines end in CR LF.
    void writeSpaces(int32_t count);
    void writeText(const KString& text);
    void writeLine(const KString& text);
    void writeCRLF();
    void writeTab();
    // Reads up to LF, CR or CR LF. An error ends the line with what was
    // read; the result is false when an error is stored.
    bool readLine(KString& out);
    // The number of lines in the file, a last line without an end
    // included; the position is restored and the error cleared.
    int32_t countLines();

    // What memory mode has collected so far (until close).
    const void* getMemoryData() const { return buffer; }
    int32_t getMemorySize() const { return bufferHighWater; }

private:
    void storeError(int32_t code);
    void releaseBuffer();
    // Raises code 47 with the caller as location when the file has no name.
    bool resolveName(KString& out, const KSourceLocation& where = KSourceLocation::current());
    bool readCounted(char** block, int32_t* length);
    void readWholeFile();
    int32_t readFromBuffer(void* buffer, int32_t size);
    void writeBuffered(const char* data, int32_t size);
    void writeToMemory(const char* data, int32_t size);
    void flushBuffer();
    void closeHandle();
    template<typename T>
    T readScalar();
    template<typename T>
    void writeScalar(T value);

    int handle = -1; // a POSIX descriptor; -1 when closed
    bool openFlag = false;
    KFileMode mode = KFileModeDirect;
    int32_t error = 0;
    char* buffer = nullptr;
    int32_t bufferSize = 0;
    int32_t bufferPos = 0;
    int32_t bufferHighWater = 0;
    bool atomicWrite = false;
    KString temporaryPath;
    KString atomicTarget;
};
