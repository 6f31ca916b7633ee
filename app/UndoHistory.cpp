#include "app/UndoHistory.h"

#include "app/StylusMenuBar.h"
#include "app/StylusWindow.h"
#include "app/UiText.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"

#include <algorithm>

namespace {

UndoHistory* gHistory = nullptr;

TapeObjectPtr copyOf(const TapeObject& element) { return TapeObjectPtr(static_cast<TapeObject*>(element.deepCopy())); }

} // namespace

UndoHistory::UndoHistory() { gHistory = this; }

UndoHistory::~UndoHistory()
{
    if (gHistory == this)
        gHistory = nullptr;
}

UndoHistory* UndoHistory::current() { return gHistory; }

// --- Recording -----------------------------------------------------------------------

// The elements in order, each by its identity: enough to tell an edit made
// outside any step, which would leave the history's places wrong.
uint64_t UndoHistory::fingerprint(const Tape& tape)
{
    uint64_t hash = 1469598103934665603ull;
    auto mix = [&hash](uint64_t value) {
        hash ^= value;
        hash *= 1099511628211ull;
    };
    mix(uint64_t(tape.getCount()));
    for (int32_t i = 0; i < tape.getCount(); ++i)
        mix(reinterpret_cast<uintptr_t>(tape.getAt(i)));
    return hash;
}

std::vector<TapeObjectPtr> UndoHistory::elementsOf(const Tape& tape)
{
    std::vector<TapeObjectPtr> elements;
    elements.reserve(size_t(tape.getCount()));
    for (int32_t i = 0; i < tape.getCount(); ++i)
        elements.emplace_back(tape.getAt(i));
    return elements;
}

bool UndoHistory::owns(const Tape* tape) const { return tape && tape == owner && fingerprint(*tape) == expected; }

void UndoHistory::adopt(Tape& tape)
{
    reset();
    owner = &tape;
    expected = fingerprint(tape);
}

void UndoHistory::reset()
{
    done.clear();
    undone.clear();
    owner = nullptr;
    expected = 0;
}

void UndoHistory::begin(Tape& tape, Name name)
{
    if (depth++ > 0)
        return;
    if (!owns(&tape))
        adopt(tape);
    recording = &tape;
    recordingName = name;
    before = elementsOf(tape);
    positionBefore = tape.getPosition();
    originals.clear();
}

void UndoHistory::willChange(TapeObject& element)
{
    if (depth == 0 || originals.count(&element))
        return;
    originals[&element] = copyOf(element);
}

void UndoHistory::end()
{
    if (depth == 0 || --depth > 0)
        return;
    Tape& tape = *recording;
    Step step = finishStep(tape);
    recording = nullptr;
    before.clear();
    originals.clear();
    if (step.removed.empty() && step.added.empty() && step.changes.empty()) {
        expected = fingerprint(tape);
        return;
    }
    done.push_back(std::move(step));
    if (done.size() > kDepth)
        done.pop_front();
    undone.clear();
    expected = fingerprint(tape);
}

// The elements before and after share a head and a tail; what lies
// between is what the step took out and put in.
UndoHistory::Step UndoHistory::finishStep(Tape& tape)
{
    std::vector<TapeObjectPtr> after = elementsOf(tape);
    size_t head = 0;
    while (head < before.size() && head < after.size() && before[head].get() == after[head].get())
        ++head;
    size_t tail = 0;
    while (tail < before.size() - head && tail < after.size() - head
           && before[before.size() - 1 - tail].get() == after[after.size() - 1 - tail].get())
        ++tail;
    Step step;
    step.name = recordingName;
    step.at = int32_t(head);
    step.removed.assign(before.begin() + std::ptrdiff_t(head), before.end() - std::ptrdiff_t(tail));
    step.added.assign(after.begin() + std::ptrdiff_t(head), after.end() - std::ptrdiff_t(tail));
    step.positionBefore = positionBefore;
    step.positionAfter = tape.getPosition();
    keepChanges(step, after);
    return step;
}

// An element changed where it stands keeps its copies from before and
// after; one the step also took out goes back as it was; one it put in is
// kept whole already.
void UndoHistory::keepChanges(Step& step, const std::vector<TapeObjectPtr>& after)
{
    size_t addedEnd = size_t(step.at) + step.added.size();
    for (auto& [element, original] : originals) {
        auto found = std::find_if(after.begin(), after.end(),
                                  [element = element](const TapeObjectPtr& e) { return e.get() == element; });
        if (found != after.end()) {
            size_t index = size_t(found - after.begin());
            if (index >= size_t(step.at) && index < addedEnd)
                continue;
            step.changes.push_back({ int32_t(index), original, copyOf(**found) });
            continue;
        }
        for (TapeObjectPtr& removed : step.removed) {
            if (removed.get() == element)
                removed = original;
        }
    }
    std::sort(step.changes.begin(), step.changes.end(),
              [](const Change& a, const Change& b) { return a.index < b.index; });
}

// --- Going back and forth -------------------------------------------------------------

bool UndoHistory::canUndo(const Tape* tape) const { return depth == 0 && owns(tape) && !done.empty(); }

bool UndoHistory::canRedo(const Tape* tape) const { return depth == 0 && owns(tape) && !undone.empty(); }

KString UndoHistory::undoTitle(const Tape* tape) const
{
    return canUndo(tape) ? titleOf(done.back().name, false) : uiText("Can't Undo");
}

KString UndoHistory::redoTitle(const Tape* tape) const
{
    return canRedo(tape) ? titleOf(undone.back().name, true) : uiText("Can't Redo");
}

// The changes in place are taken back first, where the step left the
// elements; then what it put in goes out and what it took out comes back.
void UndoHistory::takeBack(Tape& tape, Step& step)
{
    for (auto change = step.changes.rbegin(); change != step.changes.rend(); ++change) {
        if (TapeObjectPtr restored = copyOf(*change->before))
            tape.replaceElement(change->index, *restored);
    }
    step.added = tape.takeElements(step.at, int32_t(step.added.size()));
    tape.insertElements(step.at, step.removed);
    tape.setPositionQuietly(std::clamp(step.positionBefore, 0, tape.getCount()));
}

void UndoHistory::makeAgain(Tape& tape, Step& step)
{
    step.removed = tape.takeElements(step.at, int32_t(step.removed.size()));
    tape.insertElements(step.at, step.added);
    for (const Change& change : step.changes) {
        if (TapeObjectPtr restored = copyOf(*change.after))
            tape.replaceElement(change.index, *restored);
    }
    tape.setPositionQuietly(std::clamp(step.positionAfter, 0, tape.getCount()));
}

void UndoHistory::undo(Tape& tape)
{
    if (!canUndo(&tape))
        return;
    Step step = std::move(done.back());
    done.pop_back();
    takeBack(tape, step);
    undone.push_back(std::move(step));
    settle(tape);
}

void UndoHistory::redo(Tape& tape)
{
    if (!canRedo(&tape))
        return;
    Step step = std::move(undone.back());
    undone.pop_back();
    makeAgain(tape, step);
    done.push_back(std::move(step));
    settle(tape);
}

void UndoHistory::settle(Tape& tape)
{
    expected = fingerprint(tape);
    TapeHost& host = TapeHost::get();
    StylusWindow* window = StylusWindow::current();
    if (window && window->getTape() == &tape) {
        window->stopEditing();
        window->redrawPage(true);
    } else {
        host.redrawPage(tape);
    }
    host.refreshThumbnails();
    if (StylusMenuBar* bar = StylusMenuBar::current())
        bar->update();
}

KString UndoHistory::titleOf(Name name, bool redo)
{
    switch (name) {
    case Name::Stroke:
        return redo ? uiText("Redo Stroke") : uiText("Undo Stroke");
    case Name::Insert:
        return redo ? uiText("Redo Insert") : uiText("Undo Insert");
    case Name::Delete:
        return redo ? uiText("Redo Delete") : uiText("Undo Delete");
    case Name::Cut:
        return redo ? uiText("Redo Cut") : uiText("Undo Cut");
    case Name::Paste:
        return redo ? uiText("Redo Paste") : uiText("Undo Paste");
    case Name::Clear:
        return redo ? uiText("Redo Clear") : uiText("Undo Clear");
    case Name::Move:
        return redo ? uiText("Redo Move") : uiText("Undo Move");
    case Name::Typing:
        return redo ? uiText("Redo Typing") : uiText("Undo Typing");
    case Name::Bookmark:
        return redo ? uiText("Redo Bookmark") : uiText("Undo Bookmark");
    case Name::InsertProject:
        return redo ? uiText("Redo Insert Project") : uiText("Undo Insert Project");
    default:
        return redo ? uiText("Redo Change") : uiText("Undo Change");
    }
}
