#include "windowing/KMailslot.h"

#include "windowing/KApplicationEvent.h"
#include "windowing/KNativeLayer.h"

#include <vector>

namespace {

struct Mailslot {
    KString name;
    bool open = false;
    std::string pending;
};

Mailslot& slot()
{
    static Mailslot s;
    return s;
}

constexpr char kChunkMark = '+';

} // namespace

bool setMailslotName(const KString& name)
{
    Mailslot& s = slot();
    if (s.open && s.name == name)
        return true;
    closeMailslot();
    KNativeLayer* layer = KNativeLayer::current();
    if (!layer || name.isEmpty() || !layer->openMessageSlot(name.c_str()))
        return false;
    s.name = name;
    s.open = true;
    return true;
}

const KString& getMailslotName() { return slot().name; }

void closeMailslot()
{
    Mailslot& s = slot();
    if (s.open) {
        if (KNativeLayer* layer = KNativeLayer::current())
            layer->closeMessageSlot();
    }
    s = Mailslot();
}

bool hasMailslotMessage()
{
    KNativeLayer* layer = KNativeLayer::current();
    return slot().open && layer && layer->nextSlotMessageSize() >= 0;
}

bool readMailslot(KString& text)
{
    KNativeLayer* layer = KNativeLayer::current();
    if (!slot().open || !layer)
        return false;
    int32_t size = layer->nextSlotMessageSize();
    if (size < 0)
        return false;
    std::vector<char> buffer(size_t(size) + 80, 0);
    int32_t got = layer->readSlotMessage(buffer.data(), int32_t(buffer.size()));
    if (got < 0)
        return false;
    Mailslot& s = slot();
    if (got == kMailslotMessageSize && buffer[kMailslotChunkText] == kChunkMark) {
        s.pending.append(buffer.data(), kMailslotChunkText);
        return false;
    }
    s.pending.append(buffer.data());
    text.setText(s.pending.data(), int32_t(s.pending.size()));
    s.pending.clear();
    return true;
}

// A rest of 128 characters or more gives a marked chunk. A rest of 127
// would fill a message exactly, and a '+' in its 127th place would read as
// a mark: it is split as well.
std::vector<std::string> kMailslotMessages(const KString& text)
{
    std::vector<std::string> messages;
    std::string rest(text.c_str(), size_t(text.getLength()));
    size_t count = rest.size() / kMailslotChunkText + 1;
    for (size_t index = 0; index < count; ++index) {
        if (index > 0 && rest.empty())
            break;
        bool split = rest.size() >= size_t(kMailslotMessageSize)
                     || (rest.size() == size_t(kMailslotMessageSize - 1) && rest[kMailslotChunkText] == kChunkMark);
        std::string message;
        if (split) {
            message = rest.substr(0, kMailslotChunkText);
            message += kChunkMark;
            rest.erase(0, kMailslotChunkText);
        } else {
            message = rest;
            rest.clear();
        }
        message += '\0';
        messages.push_back(message);
    }
    if (!rest.empty()) {
        std::string last = rest;
        last += '\0';
        messages.push_back(last);
    }
    return messages;
}

bool sendToMailslot(const KString& name, const KString& text)
{
    KNativeLayer* layer = KNativeLayer::current();
    return layer && layer->sendSlotMessages(name.c_str(), kMailslotMessages(text));
}

void kPollMailslot()
{
    KString text;
    while (hasMailslotMessage()) {
        if (!readMailslot(text) || text.isEmpty())
            continue;
        auto* event = new KApplicationEvent(KApplicationEvent::DataReceived);
        event->setParameter("Received Data", new KString(text));
        post(event);
    }
}
