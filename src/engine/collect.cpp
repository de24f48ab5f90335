#include "engine/collect.h"

#include "engine/stack.h"
#include "values/array.h"
#include "values/refderef.h"

#include <algorithm>

namespace tessor {

namespace {

// A block of one Space that a failure gives back.
struct Enclosed {
    Space* block;

    explicit Enclosed(const Space& value) : block(enclose(value)) { referencepoint(block); }
    Enclosed(const Enclosed&) = delete;
    Enclosed& operator=(const Enclosed&) = delete;
    ~Enclosed() { release_enclosed(block); }
};

void add_whole(ArrayBuilder& builder, const Space& value) {
    Enclosed enclosed(value);
    Element element;
    element.tag = tag::subarray;
    element.subarray = enclosed.block;
    builder.add(element);
    enclosed.block = nullptr;
}

void add_scalar(ArrayBuilder& builder, const Space& value) {
    if (value.type & ISINPLACE)
        builder.add(element_at(value, 0));
    else if (value.data_pointer)
        builder.add_copies(value.data_pointer, 1);
}

// The values from first to last as one vector; they stay the stack's.
Space gathered(const Space* first, const Space* last) {
    ArrayBuilder builder(static_cast<std::uint64_t>(last - first + 1));
    int depth = 0;
    for (const Space* value = first; value <= last; ++value) {
        if (value->rank == 0) {
            add_scalar(builder, *value);
        } else {
            depth = std::max(depth, value->depth + 1);
            add_whole(builder, *value);
        }
    }
    std::uint32_t kinds = builder.kinds();
    if (several(kinds))
        kinds |= COMPLEXED;
    if (kinds & STRUCTURED)
        kinds |= ISSTRUCTURE;
    const std::uint32_t n = builder.size();
    Space vector;
    make_vector(vector, n, builder.finish(), kinds);
    vector.depth = static_cast<std::int16_t>(depth);
    return vector;
}

bool gatherable(const Space* first, const Space* last) {
    return std::all_of(first, last + 1, [](const Space& value) {
        return value.rank > 0 || (value.rank == 0 && has_data(value));
    });
}

// Puts the vector of the values above `place` and on it into `place`; the values from `first` on
// are what is gathered.
Next gather(Activation& run, Space* place, Space* first) {
    if (!gatherable(first, run.top))
        return failed(run, 994);
    const Space vector = gathered(first, run.top);
    while (run.top >= place)
        pop(run);
    *++run.top = vector;
    return Next::advance;
}

Next collect_from(Activation& run, Space* mark) {
    const long n = run.top - mark;
    if (n > 1)
        return gather(run, mark, mark + 1);
    Space value;
    if (n == 1)
        value = *run.top--;
    else
        make_empty(value);
    dereferencepoint(mark);
    *mark = value;
    return Next::advance;
}

} // namespace

Next collect(Activation& run) {
    Space* at = run.top;
    while (at >= run.floor && !is_mark(*at))
        --at;
    if (at >= run.floor)
        return collect_from(run, at);
    if (run.now->suboperation == op::MARK)
        return failed(run, 201);
    return run.values() > 1 ? gather(run, run.floor, run.floor) : Next::advance;
}

} // namespace tessor
