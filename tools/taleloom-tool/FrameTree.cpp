#include "tools/taleloom-tool/FrameTree.h"

#include "kernel/KClass.h"
#include "kernel/KDocument.h"
#include "kernel/KNamedBag.h"
#include "kernel/KTextCodec.h"

#include <algorithm>
#include <unordered_set>

namespace {

constexpr int64_t kHeadSize = 8;
constexpr int64_t kFrameHeadSize = 16;
constexpr int64_t kSectionHeadSize = 8;
// Deeper nesting is not followed: only a crafted file goes that deep.
constexpr int32_t kMaxDepth = 200;

struct FrameHead {
    int64_t offset = 0;
    int32_t classID = 0;
    int32_t version = 0;
    int32_t bodySize = 0;
    int32_t sectionCount = 0;
};

class FrameTreeWriter {
public:
    FrameTreeWriter(const std::vector<uint8_t>& fileBytes, std::string& output)
        : bytes(fileBytes)
        , text(output)
    {
        for (KClass* cls = KClass::first(); cls; cls = cls->getNext())
            registeredIDs.insert(cls->getClassID());
    }

    bool writeDocument(std::string& reason);

private:
    int32_t longAt(int64_t offset) const
    {
        uint32_t value = 0;
        for (int64_t i = 0; i < 4; ++i)
            value = value << 8 | bytes[size_t(offset + i)];
        return int32_t(value);
    }

    FrameHead headAt(int64_t offset) const
    {
        return { offset, longAt(offset), longAt(offset + 4), longAt(offset + 8), longAt(offset + 12) };
    }

    bool holdsTogether(const FrameHead& frame, int64_t limit) const;
    bool canBeginFrame(int64_t offset, int64_t payloadStart) const;
    void writeFrameLine(const FrameHead& frame, int32_t depth);
    // A frame that holds together, with its sections and what they nest.
    void writeFrame(const FrameHead& frame, int32_t depth);
    // The sections of a frame that may be damaged, up to the first one that
    // does not fit within `limit`; false there, with `reason` saying so.
    bool writeSections(const FrameHead& frame, int64_t limit, int32_t depth, std::string& reason);
    void scanPayload(int64_t start, int64_t end, int32_t depth);
    void line(int32_t depth, const std::string& content);
    std::string className(int32_t classID) const;

    const std::vector<uint8_t>& bytes;
    std::string& text;
    std::unordered_set<int32_t> registeredIDs;
};

void FrameTreeWriter::line(int32_t depth, const std::string& content)
{
    text.append(size_t(depth) * 2, ' ');
    text += content;
    text += '\n';
}

std::string FrameTreeWriter::className(int32_t classID) const
{
    KClass* cls = nullptr;
    if (KClass::hasClass(classID, &cls))
        return cls->getName();
    return "unknown class";
}

bool FrameTreeWriter::holdsTogether(const FrameHead& frame, int64_t limit) const
{
    if (frame.bodySize < 0 || frame.sectionCount < 0)
        return false;
    int64_t bodyStart = frame.offset + kFrameHeadSize;
    int64_t bodyEnd = bodyStart + frame.bodySize;
    if (bodyEnd > limit || frame.sectionCount > frame.bodySize / kSectionHeadSize)
        return false;
    int64_t position = bodyStart;
    for (int32_t i = 0; i < frame.sectionCount; ++i) {
        if (position + kSectionHeadSize > bodyEnd)
            return false;
        int32_t length = longAt(position + 4);
        if (length < kSectionHeadSize || position + length > bodyEnd)
            return false;
        position += length;
    }
    return position == bodyEnd;
}

bool FrameTreeWriter::canBeginFrame(int64_t offset, int64_t payloadStart) const
{
    int32_t classID = longAt(offset);
    if (classID == 0)
        return false;
    if (offset == payloadStart || registeredIDs.count(classID))
        return true;
    // The reference convention: a class id tag, then the stream of that class.
    return offset - 4 >= payloadStart && longAt(offset - 4) == classID;
}

void FrameTreeWriter::scanPayload(int64_t start, int64_t end, int32_t depth)
{
    if (depth > kMaxDepth)
        return;
    for (int64_t offset = start; offset + kFrameHeadSize <= end;) {
        if (canBeginFrame(offset, start)) {
            FrameHead frame = headAt(offset);
            if (holdsTogether(frame, end)) {
                writeFrame(frame, depth);
                offset += kFrameHeadSize + frame.bodySize;
                continue;
            }
        }
        ++offset;
    }
}

void FrameTreeWriter::writeFrameLine(const FrameHead& frame, int32_t depth)
{
    line(depth, "frame at " + std::to_string(frame.offset) + ": " + className(frame.classID) + " (class id "
                    + std::to_string(frame.classID) + "), version " + std::to_string(frame.version) + ", body "
                    + std::to_string(frame.bodySize) + " bytes, " + std::to_string(frame.sectionCount)
                    + (frame.sectionCount == 1 ? " section" : " sections"));
}

void FrameTreeWriter::writeFrame(const FrameHead& frame, int32_t depth)
{
    writeFrameLine(frame, depth);
    std::string ignored;
    writeSections(frame, int64_t(bytes.size()), depth + 1, ignored);
}

bool FrameTreeWriter::writeSections(const FrameHead& frame, int64_t limit, int32_t depth, std::string& reason)
{
    int64_t position = frame.offset + kFrameHeadSize;
    int64_t bodyEnd = std::min(limit, position + std::max<int64_t>(frame.bodySize, 0));
    for (int32_t i = 0; i < frame.sectionCount; ++i) {
        if (position + kSectionHeadSize > bodyEnd) {
            reason = "section " + std::to_string(i + 1) + " of " + std::to_string(frame.sectionCount)
                     + " should begin at byte " + std::to_string(position) + ", beyond the frame's data";
            return false;
        }
        int32_t id = longAt(position);
        int32_t length = longAt(position + 4);
        line(depth, "section " + std::to_string(id) + " at " + std::to_string(position) + ": " + std::to_string(length)
                        + " bytes");
        if (length < kSectionHeadSize || position + length > bodyEnd) {
            // What fits is still shown: it is where the damage begins.
            scanPayload(position + kSectionHeadSize, bodyEnd, depth + 1);
            reason = "the section at byte " + std::to_string(position) + " claims " + std::to_string(length)
                     + " bytes, but " + std::to_string(bodyEnd - position) + " are there";
            return false;
        }
        scanPayload(position + kSectionHeadSize, position + length, depth + 1);
        position += length;
    }
    return true;
}

bool FrameTreeWriter::writeDocument(std::string& reason)
{
    int64_t size = int64_t(bytes.size());
    if (size < kHeadSize) {
        reason = "not a document: too short for a document head";
        return false;
    }
    line(0, "head: magic \"" + KTextCodec::toUtf8(KDocument::magicCharacters(longAt(0))) + "\", version "
                + std::to_string(longAt(4)));
    if (size < kHeadSize + kFrameHeadSize) {
        reason = "not a document: no frame after the head";
        return false;
    }
    // The outermost frame is shown as far as it goes, damaged or not.
    FrameHead top = headAt(kHeadSize);
    writeFrameLine(top, 0);
    if (top.bodySize < 0 || top.sectionCount < 0) {
        reason = "damaged document: the outermost frame has a negative body size or section count";
        return false;
    }
    if (!writeSections(top, size, 1, reason)) {
        reason = "damaged document: " + reason;
        return false;
    }
    if (!holdsTogether(top, size)) {
        reason = "damaged document: the outermost frame's sections do not add up to its body of "
                 + std::to_string(top.bodySize) + " bytes";
        return false;
    }
    int64_t end = kHeadSize + kFrameHeadSize + top.bodySize;
    if (end < size)
        line(0, std::to_string(size - end) + " bytes after the document");
    if (top.classID != KNamedBag::classRecord->getClassID()) {
        reason = "not a document: the frame after the head is not a named bag";
        return false;
    }
    return true;
}

} // namespace

bool describeFrameTree(const std::vector<uint8_t>& bytes, std::string& text, std::string& reason)
{
    text.clear();
    reason.clear();
    FrameTreeWriter writer(bytes, text);
    return writer.writeDocument(reason);
}
