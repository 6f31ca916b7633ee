#include "kernel/KFile.h"

#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KMemory.h"
#include "kernel/native/KNativeFiles.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <string>

namespace {

int32_t clampToLong(int64_t value)
{
    if (value > INT32_MAX)
        return INT32_MAX;
    return value < 0 ? 0 : int32_t(value);
}

template<typename U>
U fromBigEndian(const unsigned char* bytes)
{
    U value = 0;
    for (size_t i = 0; i < sizeof(U); ++i)
        value = U(value << 8) | U(bytes[i]);
    return value;
}

template<typename U>
void toBigEndian(U value, unsigned char* bytes)
{
    for (size_t i = sizeof(U); i-- > 0;) {
        bytes[i] = static_cast<unsigned char>(value & 0xFF);
        value = U(value >> 8);
    }
}

template<typename T>
struct UnsignedOf;
template<>
struct UnsignedOf<int16_t> {
    using Type = uint16_t;
};
template<>
struct UnsignedOf<int32_t> {
    using Type = uint32_t;
};
template<>
struct UnsignedOf<float> {
    using Type = uint32_t;
};
template<>
struct UnsignedOf<double> {
    using Type = uint64_t;
};

} // namespace

KThing* KFile::createInstance() { return new KFile(); }
K_DEFINE_CLASS_COMMON(KFile, KFileReference, &KFile::createInstance)

KFile::KFile() = default;

KFile::KFile(const KFileReference& reference)
    : KFileReference(reference)
{
}

KFile::KFile(const KPath& path)
    : KFileReference(path)
{
}

KFile::KFile(const KFile& other)
    : KFileReference(other)
    , mode(other.mode)
{
}

KFile::~KFile()
{
    if (atomicWrite)
        abandonAtomicWrite();
    else if (openFlag)
        close();
    releaseBuffer();
}

KFile& KFile::operator=(const KFile& other)
{
    if (openFlag || other.openFlag) {
        KErrorHandler::raiseError(KError::FileIsOpen);
        return *this;
    }
    if (this != &other) {
        KFileReference::operator=(other);
        mode = other.mode;
    }
    return *this;
}

KThing* KFile::deepCopy() const { return new KFile(*this); }

void KFile::storeError(int32_t code)
{
    if (code)
        error = code;
}

void KFile::releaseBuffer()
{
    if (buffer)
        KMemory::dispose(buffer);
    buffer = nullptr;
    bufferSize = 0;
    bufferPos = 0;
    bufferHighWater = 0;
}

bool KFile::resolveName(KString& out, const KSourceLocation& where)
{
    out = getPath().getNativeText();
    if (out.isEmpty()) {
        KErrorHandler::raiseError(KError::NoFilename, where);
        return false;
    }
    return true;
}

void KFile::setMode(KFileMode newMode)
{
    if (openFlag) {
        KErrorHandler::raiseError(KError::FileCannotChangeMode);
        return;
    }
    mode = newMode;
}

// ---- Opening and closing ------------------------------------------------

void KFile::create()
{
    if (openFlag)
        close();
    KString name;
    if (!resolveName(name))
        return;
    storeError(knsFileCreate(name));
}

void KFile::open()
{
    KString name;
    if (!resolveName(name))
        return;
    if (openFlag)
        close();
    int fd = kNoFileHandle;
    if (int32_t code = knsFileOpen(name, &fd)) {
        error = code;
        return;
    }
    handle = fd;
    openFlag = true;
    error = 0;
    releaseBuffer();
    if (mode == KFileModeReadBuffered)
        readWholeFile();
}

void KFile::readWholeFile()
{
    int64_t size = 0;
    if (int32_t code = knsFileSize(handle, &size)) {
        error = code;
        return;
    }
    if (size >= INT32_MAX) {
        error = KError::CouldNotReadFile;
        return;
    }
    if (size == 0)
        return;
    buffer = static_cast<char*>(KMemory::allocate(size_t(size), true));
    bufferSize = int32_t(size);
    int32_t done = 0;
    storeError(knsFileRead(handle, buffer, bufferSize, &done));
}

void KFile::openFromRAM(void* address, int32_t dataSize)
{
    if (mode != KFileModeReadBuffered) {
        KErrorHandler::raiseError(KError::FileWrongMode);
        return;
    }
    if (openFlag)
        close();
    releaseBuffer();
    buffer = static_cast<char*>(address);
    bufferSize = dataSize > 0 ? dataSize : 0;
    handle = kNoFileHandle;
    openFlag = true;
    error = 0;
}

void KFile::flushBuffer()
{
    if (handle < 0 || !buffer)
        return;
    if (mode == KFileModeWriteBuffered && bufferPos > 0) {
        storeError(knsFileWrite(handle, buffer, bufferPos));
        bufferPos = 0;
    } else if (mode == KFileModeMemory && bufferHighWater > 0) {
        storeError(knsFileWrite(handle, buffer, bufferHighWater));
    }
}

void KFile::closeHandle()
{
    if (handle >= 0)
        storeError(knsFileClose(handle));
    // Linux releases the descriptor even when close reports an error, so
    // the file counts as closed either way.
    handle = kNoFileHandle;
    openFlag = false;
}

void KFile::close()
{
    if (atomicWrite) {
        commitAtomicWrite();
        return;
    }
    if (openFlag) {
        flushBuffer();
        closeHandle();
    }
    releaseBuffer();
}

// ---- Atomic replacement -------------------------------------------------

bool KFile::beginAtomicWrite()
{
    if (mode == KFileModeReadBuffered) {
        KErrorHandler::raiseError(KError::FileWrongMode);
        return false;
    }
    if (atomicWrite)
        abandonAtomicWrite();
    else if (openFlag)
        close();
    KString target;
    if (!resolveName(target))
        return false;
    int fd = kNoFileHandle;
    KString temporary;
    if (int32_t code = knsFileCreateTemporary(target, &fd, temporary)) {
        error = code;
        return false;
    }
    releaseBuffer();
    handle = fd;
    openFlag = true;
    error = 0;
    atomicWrite = true;
    temporaryPath = temporary;
    atomicTarget = target;
    return true;
}

bool KFile::commitAtomicWrite()
{
    if (!atomicWrite) {
        close();
        return error == 0;
    }
    flushBuffer();
    if (!error)
        storeError(knsFileSync(handle));
    closeHandle();
    releaseBuffer();
    atomicWrite = false;
    if (!error)
        storeError(knsFileReplace(temporaryPath, atomicTarget));
    if (error)
        knsFileRemove(temporaryPath);
    temporaryPath.clear();
    atomicTarget.clear();
    return error == 0;
}

void KFile::abandonAtomicWrite()
{
    if (!atomicWrite)
        return;
    closeHandle();
    releaseBuffer();
    knsFileRemove(temporaryPath);
    atomicWrite = false;
    temporaryPath.clear();
    atomicTarget.clear();
}

// ---- Reading and writing ------------------------------------------------

int32_t KFile::readFromBuffer(void* out, int32_t size)
{
    if (!openFlag) {
        error = KError::FileNotOpen;
        return 0;
    }
    // All or nothing: a read beyond the end takes no byte.
    if (size > bufferSize - bufferPos) {
        error = KError::EndOfFile;
        return 0;
    }
    KMemory::copy(buffer + bufferPos, out, size_t(size));
    bufferPos += size;
    return size;
}

int32_t KFile::read(void* out, int32_t size)
{
    if (size <= 0)
        return 0;
    switch (mode) {
    case KFileModeReadBuffered:
        return readFromBuffer(out, size);
    case KFileModeWriteBuffered:
        KErrorHandler::raiseError(KError::FileWrongMode);
        return 0;
    case KFileModeMemory:
        return 0;
    default:
        break;
    }
    if (handle < 0) {
        error = KError::FileNotOpen;
        return 0;
    }
    int32_t done = 0;
    storeError(knsFileRead(handle, out, size, &done));
    return done;
}

void KFile::writeBuffered(const char* data, int32_t size)
{
    if (!buffer) {
        buffer = static_cast<char*>(KMemory::allocate(kBufferUnit, true));
        bufferSize = kBufferUnit;
        bufferPos = 0;
    }
    if (size < bufferSize - bufferPos) {
        KMemory::copy(data, buffer + bufferPos, size_t(size));
        bufferPos += size;
        return;
    }
    if (handle < 0) {
        error = KError::FileNotOpen;
        return;
    }
    int32_t room = bufferSize - bufferPos;
    KMemory::copy(data, buffer + bufferPos, size_t(room));
    storeError(knsFileWrite(handle, buffer, bufferSize));
    bufferPos = 0;
    data += room;
    size -= room;
    // Whole buffers go out straight from the source, which writes the same bytes.
    while (size > bufferSize) {
        storeError(knsFileWrite(handle, data, bufferSize));
        data += bufferSize;
        size -= bufferSize;
    }
    KMemory::copy(data, buffer, size_t(size));
    bufferPos = size;
}

void KFile::writeToMemory(const char* data, int32_t size)
{
    if (!buffer) {
        buffer = static_cast<char*>(KMemory::allocate(kBufferUnit, true));
        bufferSize = kBufferUnit;
    }
    int64_t needed = int64_t(bufferPos) + size;
    if (needed >= bufferSize) {
        // Whole units, at least doubling, so that a large document is not
        // copied over and over while it grows.
        int64_t grown = std::max<int64_t>(int64_t(bufferSize) * 2, needed + 1);
        grown = (grown + kBufferUnit - 1) / kBufferUnit * kBufferUnit;
        if (grown > INT32_MAX) {
            error = KError::CouldNotWriteFile;
            return;
        }
        auto* larger = static_cast<char*>(KMemory::allocate(size_t(grown), true));
        KMemory::copy(buffer, larger, size_t(bufferHighWater));
        KMemory::dispose(buffer);
        buffer = larger;
        bufferSize = int32_t(grown);
    }
    KMemory::copy(data, buffer + bufferPos, size_t(size));
    bufferPos += size;
    if (bufferPos > bufferHighWater)
        bufferHighWater = bufferPos;
}

int32_t KFile::write(const void* data, int32_t size)
{
    if (size <= 0)
        return size;
    auto* bytes = static_cast<const char*>(data);
    switch (mode) {
    case KFileModeReadBuffered:
        KErrorHandler::raiseError(KError::FileWrongMode);
        break;
    case KFileModeWriteBuffered:
        writeBuffered(bytes, size);
        break;
    case KFileModeMemory:
        writeToMemory(bytes, size);
        break;
    default:
        if (handle < 0)
            error = KError::FileNotOpen;
        else
            storeError(knsFileWrite(handle, bytes, size));
        break;
    }
    return size;
}

// ---- Positions ----------------------------------------------------------

int32_t KFile::getPosition() const
{
    switch (mode) {
    case KFileModeReadBuffered:
    case KFileModeMemory:
        return bufferPos;
    case KFileModeWriteBuffered:
        return clampToLong((handle >= 0 ? knsFilePosition(handle) : 0) + bufferPos);
    default:
        return handle >= 0 ? clampToLong(knsFilePosition(handle)) : 0;
    }
}

void KFile::setPosition(int32_t position)
{
    if (mode == KFileModeWriteBuffered) {
        KErrorHandler::raiseError(KError::FileWrongMode);
        return;
    }
    if (position < 0) {
        error = KError::UnknownFileError;
        return;
    }
    switch (mode) {
    case KFileModeReadBuffered:
        if (position > bufferSize)
            error = KError::EndOfFile;
        else
            bufferPos = position;
        return;
    case KFileModeMemory:
        // A seek forward beyond the buffer is taken as it stands; the next
        // write grows the buffer to it.
        bufferPos = position;
        return;
    default:
        if (handle < 0)
            error = KError::FileNotOpen;
        else
            storeError(knsFileSeek(handle, position));
        return;
    }
}

void KFile::skip(int32_t count) { setPosition(clampToLong(int64_t(getPosition()) + count)); }

void KFile::skipBack(int32_t count) { setPosition(clampToLong(int64_t(getPosition()) - count)); }

int32_t KFile::getSize()
{
    switch (mode) {
    case KFileModeReadBuffered:
        return bufferSize;
    case KFileModeMemory:
        return bufferHighWater;
    default:
        break;
    }
    int64_t size = 0;
    if (handle >= 0) {
        storeError(knsFileSize(handle, &size));
    } else {
        KString name = getPath().getNativeText();
        int fd = kNoFileHandle;
        int32_t code = knsFileOpen(name, &fd);
        if (!code) {
            code = knsFileSize(fd, &size);
            knsFileClose(fd);
        }
        storeError(code);
    }
    if (mode == KFileModeWriteBuffered)
        size += bufferPos;
    return clampToLong(size);
}

int32_t KFile::bytesLeft()
{
    switch (mode) {
    case KFileModeReadBuffered:
        return bufferSize > bufferPos ? bufferSize - bufferPos : 0;
    case KFileModeMemory:
        return bufferHighWater > bufferPos ? bufferHighWater - bufferPos : 0;
    case KFileModeWriteBuffered:
        return 0;
    default: {
        if (handle < 0)
            return 0;
        int64_t size = 0;
        if (knsFileSize(handle, &size))
            return 0;
        return clampToLong(size - knsFilePosition(handle));
    }
    }
}

bool KFile::checkAvailable(int64_t count)
{
    if (count < 0) {
        error = KError::CouldNotReadFile;
        return false;
    }
    if (count > bytesLeft()) {
        error = KError::EndOfFile;
        return false;
    }
    return true;
}

// ---- Scalars ------------------------------------------------------------

template<typename T>
T KFile::readScalar()
{
    using U = typename UnsignedOf<T>::Type;
    unsigned char bytes[sizeof(T)] = {};
    if (read(bytes, int32_t(sizeof(T))) != int32_t(sizeof(T)))
        return T {};
    return std::bit_cast<T>(fromBigEndian<U>(bytes));
}

template<typename T>
void KFile::writeScalar(T value)
{
    using U = typename UnsignedOf<T>::Type;
    unsigned char bytes[sizeof(T)];
    toBigEndian(std::bit_cast<U>(value), bytes);
    write(bytes, int32_t(sizeof(T)));
}

void KFile::writeByte(uint8_t value) { write(&value, 1); }

uint8_t KFile::readByte()
{
    uint8_t value = 0;
    if (read(&value, 1) != 1)
        return 0;
    return value;
}

void KFile::writeBool(bool value) { writeByte(value ? 1 : 0); }
bool KFile::readBool() { return readByte() == 1; }
void KFile::writeShort(int16_t value) { writeScalar(value); }
int16_t KFile::readShort() { return readScalar<int16_t>(); }
void KFile::writeLong(int32_t value) { writeScalar(value); }
int32_t KFile::readLong() { return readScalar<int32_t>(); }
void KFile::writeFloat(float value) { writeScalar(value); }
float KFile::readFloat() { return readScalar<float>(); }
void KFile::writeDouble(double value) { writeScalar(value); }
double KFile::readDouble() { return readScalar<double>(); }

bool KFile::readBytes(void* data, int32_t size)
{
    if (size <= 0)
        return size == 0;
    return read(data, size) == size;
}

// ---- Counted text -------------------------------------------------------

void KFile::writeCountedText(const char* text, int32_t length)
{
    if (length < 0 || !text)
        length = 0;
    writeLong(length);
    if (length > 0) {
        write(text, length);
        writeByte(0);
    }
}

bool KFile::readCounted(char** block, int32_t* length)
{
    *block = nullptr;
    *length = 0;
    unsigned char head[4];
    if (read(head, 4) != 4)
        return false;
    int32_t count = int32_t(fromBigEndian<uint32_t>(head));
    if (count == 0)
        return true;
    // Text plus terminator must be in the file before anything is allocated.
    if (!checkAvailable(count < 0 ? count : int64_t(count) + 1))
        return false;
    auto* text = static_cast<char*>(KMemory::allocate(size_t(count) + 1, false));
    if (read(text, count + 1) != count + 1) {
        KMemory::dispose(text);
        return false;
    }
    text[count] = 0;
    *block = text;
    *length = count;
    return true;
}

char* KFile::readCountedText(int32_t* length)
{
    char* block = nullptr;
    readCounted(&block, length);
    return block;
}

bool KFile::readCountedText(KString& out)
{
    char* block = nullptr;
    int32_t length = 0;
    bool ok = readCounted(&block, &length);
    out.clear();
    if (block) {
        out.setText(block, length);
        KMemory::dispose(block);
    }
    return ok;
}

// ---- Text ---------------------------------------------------------------

void KFile::writeSpaces(int32_t count)
{
    static const char spaces[] = "                                ";
    constexpr int32_t chunk = int32_t(sizeof spaces - 1);
    while (count > 0) {
        int32_t now = count < chunk ? count : chunk;
        write(spaces, now);
        count -= now;
    }
}

void KFile::writeText(const KString& text)
{
    if (!text.isEmpty())
        write(text.getText(), text.getLength());
}

void KFile::writeLine(const KString& text)
{
    writeText(text);
    writeCRLF();
}

void KFile::writeCRLF() { write("\r\n", 2); }

void KFile::writeTab() { write("\t", 1); }

bool KFile::readLine(KString& out)
{
    std::string line;
    bool failed = false;
    for (;;) {
        char c = 0;
        if (read(&c, 1) != 1) {
            failed = true;
            break;
        }
        if (c == '\n')
            break;
        if (c == '\r') {
            // A CR alone ends the line too; the byte after it is given back.
            int32_t before = error;
            char next = 0;
            if (read(&next, 1) != 1)
                error = before;
            else if (next != '\n')
                skipBack(1);
            break;
        }
        line += c;
    }
    out.clear();
    if (!line.empty())
        out.setText(line.data(), int32_t(line.size()));
    return !failed;
}

int32_t KFile::countLines()
{
    int32_t saved = getPosition();
    setPosition(0);
    int32_t count = 0;
    KString line;
    for (;;) {
        if (!readLine(line)) {
            if (!line.isEmpty())
                ++count;
            break;
        }
        ++count;
    }
    setPosition(saved);
    clearError();
    return count;
}
