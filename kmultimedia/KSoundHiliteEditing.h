#pragma once

#include "kernel/KString.h"
#include "kmultimedia/KMultimediaForward.h"

#include <cstdint>
#include <vector>

// The steps of the sound highlight editor that change the markers, apart
// from the dialog that asks the user first.
class KSoundHiliteEditing {
public:
    // Markers for the words of the text (the characters between blanks,
    // tabs and line ends), placed by a rule of three over the duration as if
    // the text were read at an even pace of characters.
    static std::vector<KSoundHiliteMarkerPtr> layOut(const KString& text, int32_t duration);

    enum class UpdateResult : int32_t {
        Updated = 0,
        // No duration was given and the sound has no length either: the
        // markers stay as they were.
        NoDuration = 1,
    };
    // "Update": the media's markers laid out anew over `duration`
    // milliseconds, or over the sound's own length when that is 0 or less.
    // An empty text leaves no markers.
    static UpdateResult update(KSoundHiliteMedia& media, int32_t duration);
    // What the user is told when the update is refused, and its caption.
    static KString noDurationText();
    static KString noDurationCaption();

    enum class MergeCheck : int32_t {
        Ready = 0,
        // Fewer than two markers are selected.
        NothingToMerge = 1,
        // A marker that is not selected stands between selected ones.
        NotContiguous = 2,
    };
    // "Merge", its first half: the first and last selected markers.
    static MergeCheck checkMerge(const KSoundHiliteMedia& media, int32_t& first, int32_t& last);
    // Its second half, once the user agreed: the words of `first` to `last`,
    // each followed by one space, become the first marker's word, and the
    // markers after it up to `last` go. Time and start stay. False when the
    // range is not one checkMerge gave as ready.
    static bool merge(KSoundHiliteMedia& media, int32_t first, int32_t last);
    static KString notContiguousText();
    static KString notContiguousCaption();
};
