// Reductions element by element: sums of numbers of several kinds, and any verb by its own
// function.
#include "array/folding.h"

#include "io/writers/exception.h"
#include "parallel/coprocessor.h"
#include "values/refderef.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tessor {

namespace {

constexpr double largest = 2147483647.0;

int components_or_fail(const Folding& f, std::int32_t tag) {
    if (tag == tag::subarray)
        fail(991, &f.run.top, f.run.now);
    if (tag < tag::integer || tag > tag::octonion)
        fail(994, &f.run.top, f.run.now);
    return tag == tag::integer ? 1 : components_of(tag);
}

Element narrowed(const double (&sum)[8]) {
    Element result;
    std::copy_n(sum, 8, result.c);
    const auto zero = [&](int first, int end) {
        for (int k = first; k < end; ++k)
            if (sum[k] != 0)
                return false;
        return true;
    };
    if (!zero(4, 8))
        result.tag = tag::octonion;
    else if (!zero(2, 4))
        result.tag = tag::quaternion;
    else if (!zero(1, 2))
        result.tag = tag::complex;
    else if (std::fabs(sum[0]) <= largest && std::trunc(sum[0]) == sum[0])
        return integer_element(static_cast<std::int32_t>(sum[0]));
    else
        return real_element(sum[0]);
    return result;
}

// Numbers that are stored as doubles, of two kinds.
const double* doubles_of(const Space& data) {
    const Storage storage = storage_of(data.data_pointer);
    return storage == Storage::quotient || storage == Storage::promoted
               ? static_cast<const double*>(data.data_pointer)
               : nullptr;
}

Element component_sum(const Folding& f, std::uint32_t j, const double* doubles) {
    double sum[8] = {};
    for (std::uint32_t i = 0; i < f.n; ++i) {
        const std::uint32_t at = f.index(j, i);
        if (doubles) {
            sum[0] += doubles[at];
            continue;
        }
        const Element element = element_at(f.data, at);
        const int parts = components_or_fail(f, element.tag);
        if (element.tag == tag::integer)
            sum[0] += element.integer;
        else
            for (int k = 0; k < parts; ++k)
                sum[k] += element.c[k];
    }
    return narrowed(sum);
}

// One fold by a verb's own function, on two cells above the argument.
class Fold {
public:
    explicit Fold(const Folding& f)
        : f_(f), quick_(quick_verbs[f.verb]), verb_(bodies[f.verb].verb), base_(f.run.top) {}
    Fold(const Fold&) = delete;
    Fold& operator=(const Fold&) = delete;

    /// Folds run j. The accumulator is left above the argument; its place.
    Space* run(std::uint32_t j) {
        if (base_ + 1 > stacktop)
            fail(806, &f_.run.top, f_.run.now);
        push(j, f_.forward ? 0 : f_.n - 1);
        for (std::uint32_t i = 1; i < f_.n; ++i) {
            push(j, f_.forward ? i : f_.n - 1 - i);
            if (!f_.forward)
                std::swap(base_[1], base_[2]);
            combine();
        }
        return base_ + 1;
    }

private:
    void push(std::uint32_t j, std::uint32_t i) {
        const Element element = element_at(f_.data, f_.index(j, i));
        Space& slot = f_.run.top[1];
        if (element.tag == tag::subarray) {
            slot = *element.subarray;
            referencepoint(&slot);
        } else if (element.tag == tag::integer && !element.name) {
            make_integer(slot, element.integer, element.form, element.marks);
        } else if (element.tag == tag::real && !element.name) {
            make_real(slot, element.c[0], element.form, element.marks);
        } else {
            copy_scalar(slot, element);
            slot.type = ISSCALAR | (slot.type & ISINPLACE);
        }
        ++f_.run.top;
    }

    void combine() {
        if (quick_.verb) {
            const long flops = quick_.verb(base_ + 1, base_ + 2, f_.run.quads);
            if (flops >= 0) {
                --f_.run.top;
                operations += 1;
                flopos = static_cast<double>(flops);
                total_flops += flopos;
                return;
            }
        }
        verb_(&f_.run.top, f_.run.now, f_.run.quads, 0);
        wait_for_coprocessors();
        op_flops = 0;
    }

    const Folding& f_;
    const Quick quick_;
    const Verb verb_;
    Space* const base_;
};

// Takes the accumulator off the stack into the results.
void take(const Folding& f, ArrayBuilder& results, std::uint32_t& gathered) {
    Space& accumulator = *f.run.top;
    gathered |= type_of(accumulator);
    if (accumulator.rank != 0) {
        results.add_enclosed(accumulator);
        --f.run.top;
        gathered |= STRUCTURED;
        return;
    }
    gathered |= kind_bit(first_tag(accumulator));
    if (accumulator.type & ISINPLACE)
        results.add_in_place(accumulator);
    else
        results.add_copies(accumulator.data_pointer, 1);
    pop(f.run);
}

void* reversed(ArrayBuilder& results) {
    const std::uint32_t n = results.size();
    void* block = results.finish();
    ArrayBuilder turned(n);
    try {
        for (std::uint32_t i = n; i-- > 0;)
            turned.add_copies(block, 1, i);
    } catch (...) {
        release_data(block, n);
        throw;
    }
    release_data(block, n);
    return turned.finish();
}

} // namespace

Folded fold_components(const Folding& f) {
    const double* doubles = doubles_of(f.data);
    ArrayBuilder results(f.m);
    for (std::uint32_t j = 0; j < f.m; ++j) {
        results.add(component_sum(f, j, doubles));
        if (signal_noted())
            take_signals();
    }
    std::uint32_t kinds = results.kinds() & numeric_kinds;
    if (f.m > 1 && several(kinds))
        kinds |= COMPLEXED;
    return {results.finish(), kinds, element_kinds | COMPLEXED};
}

Folded fold_generally(const Folding& f) {
    ArrayBuilder results(f.m);
    std::uint32_t gathered = 0;
    Fold fold(f);
    for (std::uint32_t j = 0; j < f.m; ++j) {
        fold.run(f.forward ? j : f.m - 1 - j);
        take(f, results, gathered);
        if (signal_noted())
            take_signals();
    }
    std::uint32_t set = gathered & (element_kinds | COMPLEXED | STRUCTURED);
    if (f.m > 1 && several(gathered & numeric_kinds))
        set |= COMPLEXED;
    if (f.m == 1 && f.result.rank > 0)
        set |= ISVECTOR | ISONEELEMENT;
    const std::uint32_t shape = f.m == 1 && f.result.rank > 0 ? ISARRAY : 0u;
    void* block = f.forward || f.m == 1 ? results.finish() : reversed(results);
    return {block, set, element_kinds | COMPLEXED | STRUCTURED | shape};
}

} // namespace tessor
