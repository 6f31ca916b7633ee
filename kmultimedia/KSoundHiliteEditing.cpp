#include "kmultimedia/KSoundHiliteEditing.h"

#include "kernel/KStringBuilder.h"
#include "kmultimedia/KSound.h"
#include "kmultimedia/KSoundHiliteMarker.h"
#include "kmultimedia/KSoundHiliteMedia.h"
#include "kmultimedia/KSpeechRewriter.h"
#include "windowing/KServices.h"

std::vector<KSoundHiliteMarkerPtr> KSoundHiliteEditing::layOut(const KString& text, int32_t duration)
{
    std::vector<KSoundHiliteMarkerPtr> laid;
    int32_t length = text.getLength();
    if (length == 0)
        return laid;
    double perCharacter = double(duration) / double(length);
    int32_t wordStart = 0;
    for (int32_t i = 0; i <= length; ++i) {
        if (i < length && !KSpeechRewriter::isSeparator(text[i]))
            continue;
        if (i > wordStart) {
            auto time = int32_t(double(wordStart) * perCharacter);
            laid.push_back(kAdopt(new KSoundHiliteMarker(time, wordStart, text.mid(wordStart, i - wordStart))));
        }
        wordStart = i + 1;
    }
    return laid;
}

KSoundHiliteEditing::UpdateResult KSoundHiliteEditing::update(KSoundHiliteMedia& media, int32_t duration)
{
    if (media.getText().isEmpty()) {
        media.clearMarkers();
        return UpdateResult::Updated;
    }
    if (duration <= 0)
        duration = media.measureSound();
    if (duration <= 0)
        return UpdateResult::NoDuration;
    media.clearMarkers();
    for (const KSoundHiliteMarkerPtr& marker : layOut(media.getText(), duration))
        media.addMarker(*marker);
    return UpdateResult::Updated;
}

KString KSoundHiliteEditing::noDurationText()
{
    return kTranslate("The sound has no length, so the markers cannot be placed. Please select or record a sound "
                      "first.");
}

KString KSoundHiliteEditing::noDurationCaption() { return kTranslate("Warning!"); }

KSoundHiliteEditing::MergeCheck KSoundHiliteEditing::checkMerge(const KSoundHiliteMedia& media, int32_t& first,
                                                                int32_t& last)
{
    first = -1;
    last = -1;
    for (int32_t i = 0; i < media.getMarkerCount(); ++i) {
        if (!media.getMarkerAt(i)->isSelected())
            continue;
        if (first < 0)
            first = i;
        last = i;
    }
    for (int32_t i = first + 1; first >= 0 && i < last; ++i) {
        if (!media.getMarkerAt(i)->isSelected())
            return MergeCheck::NotContiguous;
    }
    return first >= 0 && first < last ? MergeCheck::Ready : MergeCheck::NothingToMerge;
}

bool KSoundHiliteEditing::merge(KSoundHiliteMedia& media, int32_t first, int32_t last)
{
    int32_t checkedFirst = -1;
    int32_t checkedLast = -1;
    if (checkMerge(media, checkedFirst, checkedLast) != MergeCheck::Ready || first != checkedFirst
        || last != checkedLast)
        return false;
    KStringBuilder words;
    for (int32_t i = first; i <= last; ++i)
        words.append(media.getMarkerAt(i)->getText()).append(' ');
    media.getMarkerAt(first)->setText(words.toString());
    for (int32_t i = last; i > first; --i)
        media.removeMarkerAt(i);
    return true;
}

KString KSoundHiliteEditing::notContiguousText()
{
    return kTranslate("Merge can be performed only on contiguous markers");
}

KString KSoundHiliteEditing::notContiguousCaption() { return kTranslate("Merge not possible!"); }
