#include "kernel/KDiskObjectStreams.h"

#include "kernel/KBag.h"
#include "kernel/KDate.h"
#include "kernel/KFile.h"
#include "kernel/KString.h"
#include "kernel/KTime.h"

// The value classes write themselves; writing does not change them, whatever
// the signature of writeToFile says.

namespace KDiskObjectStreams {

void writeString(KFile& file, const KString& text) { const_cast<KString&>(text).writeToFile(file, 1); }

bool readString(KFile& file, KString& text)
{
    text.readFromFile(file);
    return file.getError() == 0;
}

void writeStringBag(KFile& file, const std::vector<KStringPtr>& strings)
{
    // A bag as a default one holds them: no spare capacity, grow size 1.
    KBag bag;
    for (const KStringPtr& text : strings)
        bag.add(text);
    bag.writeToFile(file, 1);
}

bool readStringBag(KFile& file, std::vector<KStringPtr>& strings)
{
    strings.clear();
    KBag bag;
    bag.readFromFile(file);
    // Folder names are non-empty strings; anything else in the bag is left out.
    for (int32_t i = 0; i < bag.getSize(); ++i) {
        auto* text = dynamic_cast<KString*>(bag.getAt(i));
        if (text && !text->isEmpty())
            strings.push_back(KStringPtr(text));
    }
    return file.getError() == 0;
}

void writeDate(KFile& file, const KDate& date) { const_cast<KDate&>(date).writeToFile(file, 1); }

bool readDate(KFile& file, KDate& date)
{
    date.readFromFile(file);
    return file.getError() == 0;
}

void writeTime(KFile& file, const KTime& time) { const_cast<KTime&>(time).writeToFile(file, 1); }

bool readTime(KFile& file, KTime& time)
{
    time.readFromFile(file);
    return file.getError() == 0;
}

} // namespace KDiskObjectStreams
