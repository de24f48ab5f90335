// Reductions element by element: sums of numbers of several kinds, and any verb by its own
// function.
#include "array/folding.h"

#include "parallel/coprocessor.h"
#include "scalar/frame.h"
#include "values/refderef.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tessor {

namespace {

int components_or_fail(const Folding& f, std::int32_t tag) {
    if (tag == tag::subarray)
        f.refuse(991);
    if (tag < tag::integer || tag > tag::octonion)
        f.refuse(994);
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
    else if (std::fabs(sum[0]) <= largest_integer && std::trunc(sum[0]) == sum[0])
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
        if (i % long_stretch == 0)
            look_at_signals();
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
        : f_(f), quick_(quick_verbs[f.verb].verb), verb_(bodies[f.verb].verb), top_(f.run.top) {}
    Fold(const Fold&) = delete;
    Fold& operator=(const Fold&) = delete;
    ~Fold() {
        while (top_ > f_.run.top)
            dereferencepoint(top_--);
    }

    /// Folds run j; the accumulator goes into the results.
    void run(std::uint32_t j, ArrayBuilder& results) {
        if (top_ + 1 > stacktop)
            f_.refuse(806);
        push(j, f_.forward ? 0 : f_.n - 1);
        for (std::uint32_t i = 1; i < f_.n; ++i) {
            if (i % stretch_length == 0)
                look_at_signals();
            push(j, f_.forward ? i : f_.n - 1 - i);
            if (!f_.forward)
                std::swap(top_[-1], top_[0]);
            combine();
        }
        take(results);
    }

    /// Type bits of all accumulators.
    std::uint32_t gathered() const { return gathered_; }

private:
    void push(std::uint32_t j, std::uint32_t i) {
        const Element element = element_at(f_.data, f_.index(j, i));
        Space& slot = top_[1];
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
        ++top_;
    }

    void combine() {
        const long flops = quick_ ? quick_(top_ - 1, top_, f_.run.quads) : -1;
        if (flops < 0) {
            verb_(&top_, f_.run.now, f_.run.quads, 0);
            wait_for_coprocessors();
            op_flops = 0;
            return;
        }
        --top_;
        operations += 1;
        flopos = static_cast<double>(flops);
        total_flops += flopos;
    }

    // A run of one element brings no type of its own.
    void take(ArrayBuilder& results) {
        Space& accumulator = *top_;
        gathered_ |= type_of(accumulator);
        if (accumulator.rank != 0 || !has_data(accumulator)) {
            gathered_ |= STRUCTURED;
            results.add_enclosed(accumulator);
            --top_;
            return;
        }
        if (f_.n == 1)
            gathered_ |= kind_bit(first_tag(accumulator));
        if (accumulator.type & ISINPLACE)
            results.add_in_place(accumulator);
        else
            results.add_copies(accumulator.data_pointer, 1);
        dereferencepoint(top_--);
    }

    const Folding& f_;
    const VerbInPlace quick_;
    const Verb verb_;
    Space* top_;
    std::uint32_t gathered_ = 0;
};

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
    for (std::uint32_t j = 0; j < f.m; ++j)
        results.add(component_sum(f, j, doubles));
    std::uint32_t kinds = results.kinds() & numeric_kinds;
    if (f.m > 1 && several(kinds))
        kinds |= COMPLEXED;
    return {results.finish(), kinds, element_kinds | COMPLEXED};
}

Folded fold_generally(const Folding& f) {
    ArrayBuilder results(f.m);
    Fold fold(f);
    for (std::uint32_t j = 0; j < f.m; ++j) {
        look_at_signals();
        fold.run(f.forward ? j : f.m - 1 - j, results);
    }
    std::uint32_t set = fold.gathered() & (element_kinds | COMPLEXED | STRUCTURED);
    std::uint32_t clear = element_kinds | COMPLEXED | STRUCTURED;
    if (f.m > 1 && several(set & numeric_kinds))
        set |= COMPLEXED;
    if (f.m == 1 && f.rank > 0) {
        set |= ISVECTOR | ISONEELEMENT;
        clear |= ISARRAY;
    }
    return {f.forward || f.m == 1 ? results.finish() : reversed(results), set, clear};
}

} // namespace tessor
