#include "array/mask.h"

#include "array/neighbours.h"
#include "array/products.h"
#include "values/shared.h"

namespace tessor {

namespace {

// What keeps a mask from being laid over data: 0, or the number to report.
int misfit(const Space& data, const Space& mask) {
    if (mask.rank != data.rank)
        return 985;
    if (mask.rank < 0)
        return 994;
    for (std::int32_t axis = 0; axis < mask.rank; ++axis)
        if (extent(mask, axis) % 2 == 0)
            return 984;
    for (std::int32_t axis = 0; axis < mask.rank; ++axis)
        if (extent(mask, axis) - 1 > extent(data, axis))
            return 983;
    return 0;
}

// The function at every position; data and mask stay on the stack meanwhile. Values that it leaves
// beside its result go.
Space mask_data(Activation& run, const Space& function) {
    Space* const height = run.top;
    const Space& data = run.top[-1];
    const Space& weights = run.top[0];
    Applied applied(run, function, data.elements);
    Products products(run, applied, data, weights);
    Neighbours neighbours(data, weights, run.now->suboperation);
    for (std::uint32_t i = 0; i < data.elements; ++i) {
        Space& place = applied.argument();
        make_empty(place);
        products.put(place, neighbours);
        operations += weights.elements;
        applied.next();
        while (applied.top() > height)
            dereferencepoint(applied.top()--);
        neighbours.advance();
    }
    Space frame = data;
    if (frame.rank > 0)
        count_up(frame.shape_pointer);
    total_flops += products.flops();
    flopos = op_flops = products.flops();
    return applied.finish(frame);
}

} // namespace

Next mask(Activation& run) {
    if (run.top->rank != kind::FUNCTION)
        return failed(run, 986);
    if (run.top->arguments != 1)
        return failed(run, 987);
    if (const int number = misfit(run.top[-2], run.top[-1]))
        return failed(run, number);
    if (!may_nest(run))
        return Next::failed;
    const Held function(*run.top--);
    const Space result = mask_data(run, function.value());
    pop(run);
    dereferencepoint(run.top);
    *run.top = result;
    operations += result.elements;
    return Next::advance;
}

} // namespace tessor
