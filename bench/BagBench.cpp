// KBag::add with the default grow size of one slot against
// std::vector::push_back doing the same reference counting. The bag keeps
// its logical capacity exact, so it must grow its storage geometrically
// beneath it to stay within a small factor of the vector.
#include "kernel/KBag.h"
#include "kernel/KThing.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace {

constexpr int64_t kElements = 1000000;

// The objects outlive every run: the pool holds one reference to each, so
// the containers' releases never destroy them and only container work is
// measured.
class Pool {
public:
    explicit Pool(int64_t count)
    {
        objects.reserve(size_t(count));
        for (int64_t i = 0; i < count; ++i) {
            auto* object = new KThing();
            object->incReferenceCount();
            objects.push_back(object);
        }
    }
    ~Pool()
    {
        for (KThing* object : objects)
            object->decReferenceCount();
    }
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;

    std::vector<KThing*> objects;
};

Pool& pool()
{
    static Pool shared(kElements);
    return shared;
}

void BM_KBagAdd(benchmark::State& state)
{
    Pool& objects = pool();
    for (auto _ : state) {
        KBag bag;
        for (KThing* object : objects.objects)
            bag.add(*object);
        benchmark::DoNotOptimize(bag.getSize());
        // The bag's destruction releases every element.
    }
    state.SetItemsProcessed(state.iterations() * kElements);
}
BENCHMARK(BM_KBagAdd)->Unit(benchmark::kMillisecond);

void BM_VectorPushBack(benchmark::State& state)
{
    Pool& objects = pool();
    for (auto _ : state) {
        std::vector<KThing*> vector;
        for (KThing* object : objects.objects) {
            object->incReferenceCount();
            vector.push_back(object);
        }
        benchmark::DoNotOptimize(vector.data());
        for (KThing* object : vector)
            object->decReferenceCount();
    }
    state.SetItemsProcessed(state.iterations() * kElements);
}
BENCHMARK(BM_VectorPushBack)->Unit(benchmark::kMillisecond);

} // namespace
