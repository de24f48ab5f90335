#include "parallel/coprocessor.h"
#include "scalar/roads.h"
#include "values/native_stack.h"
#include "values/refderef.h"

namespace tessor {

namespace {

bool subarrays_allowed(const Space& space) {
    return (space.type & (COMPLEXED | STRUCTURED)) != 0;
}

bool on_worker(const Frame& f) {
    return f.slice && stream_index != 0;
}

void check_subarray(const Frame& f, const Space& holder, const Element& element) {
    if (element.tag != tag::subarray || subarrays_allowed(holder))
        return;
    if (on_worker(f))
        exception(991, f.top, f.cell);
    fail(on_worker(f) ? 994 : 991, f.top, f.cell);
}

// Puts an operand of a recursion on the stack. A simple element becomes a scalar that goes under
// the kinds of the value below it.
void push(const Frame& f, const Element& element) {
    const Space& below = **f.top;
    Space& slot = (*f.top)[1];
    if (element.tag == tag::subarray) {
        slot = *element.subarray;
        referencepoint(&slot);
    } else {
        copy_scalar(slot, element);
        slot.type = ISSCALAR | (below.type & element_kinds) | (slot.type & ISINPLACE);
    }
    ++*f.top;
}

Element enclosed_top(const Frame& f) {
    Element result;
    result.tag = tag::subarray;
    result.subarray = enclose(**f.top);
    --*f.top;
    return result;
}

Element recurse(const Frame& f, const DyadicVerb& verb, const Element& left, const Element& right) {
    check_subarray(f, *f.left, left);
    check_subarray(f, *f.right, right);
    if (!stack_guard(for_report) || *f.top + 1 > stacktop)
        fail(806, f.top, f.cell);
    push(f, left);
    push(f, right);
    verb.verb(f.top, f.cell, f.quads, static_cast<signed char>(f.keep ? -1 : -2));
    return enclosed_top(f);
}

constexpr bool in_table(std::int32_t tag) {
    return tag >= 0 && tag < tags;
}

int refusal(const Rules& rules, const Element& left, const Element& right) {
    if (left.tag == tag::unicode || right.tag == tag::unicode)
        return 994;
    const bool numbers = components_of(left.tag) + components_of(right.tag) > 0
                         && left.tag != tag::ascii && right.tag != tag::ascii && in_table(left.tag)
                         && in_table(right.tag);
    const std::uint32_t kinds = kind_bit(left.tag) | kind_bit(right.tag);
    return numbers && (kinds & rules.restricted) ? 994 : 162;
}

Element combined(const Frame& f, const DyadicVerb& verb, const Element& left, const Element& right,
                 std::uint32_t& kinds) {
    if (verb.refuses)
        if (const int number = verb.refuses(*f.left, left, right))
            fail(number, f.top, f.cell);
    if (left.tag == tag::subarray || right.tag == tag::subarray) {
        kinds |= kind_bit(tag::subarray);
        return recurse(f, verb, left, right);
    }
    const Kernel* kernel =
        in_table(left.tag) && in_table(right.tag) ? verb.kernels[left.tag][right.tag] : nullptr;
    if (!kernel)
        fail(on_worker(f) ? 994 : refusal(*f.rules, left, right), f.top, f.cell);
    Element result;
    if (const int number = kernel->element(f.op, left, right, f.target == Target::right, result))
        fail(number, f.top, f.cell);
    kinds |= kinds_of(*kernel, result.tag, result.c, 1);
    return result;
}

void add(ArrayBuilder& results, const Element& element) {
    try {
        results.add(element);
    } catch (...) {
        if (element.tag == tag::subarray)
            release_enclosed(element.subarray);
        throw;
    }
}

std::uint32_t run_elements(const Frame& f, const DyadicVerb& verb, ArrayBuilder& results) {
    std::uint32_t kinds = results.kinds();
    const Element first_left = f.left_single ? element_at(*f.left, 0) : Element{};
    const Element first_right = f.right_single ? element_at(*f.right, 0) : Element{};
    for (std::uint32_t i = results.size(); i < f.n; ++i) {
        if (i % stretch_length == 0)
            between_stretches(i);
        const Element left = f.left_single ? first_left : element_at(*f.left, f.offset + i);
        const Element right = f.right_single ? first_right : element_at(*f.right, f.offset + i);
        add(results, combined(f, verb, left, right, kinds));
    }
    return kinds;
}

// The Space of a monadic recursion; on a failure nothing of it stays.
class Copy {
public:
    explicit Copy(const Space& from) : space_(from) { referencepoint(&space_); }
    Copy(const Copy&) = delete;
    Copy& operator=(const Copy&) = delete;
    ~Copy() { dereferencepoint(&space_); }
    Space* get() { return &space_; }
    Space* enclosed() {
        Space* block = enclose(space_);
        space_ = Space{};
        return block;
    }

private:
    Space space_;
};

Element transformed(const Frame& f, const MonadicVerb& verb, const Element& element) {
    Element result;
    if (element.tag == tag::subarray) {
        check_subarray(f, *f.left, element);
        if (!stack_guard(for_report))
            fail(806, f.top, f.cell);
        Copy copy(*element.subarray);
        Space* top = copy.get();
        const int mode = f.keep ? 1 : 0;
        // Inside a slice, however deep, nobody waits for the job that the slice belongs to.
        const bool alone = f.slice || f.alone;
        const double counted = total_flops;
        verb.verb(&top, f.cell, f.quads, static_cast<signed char>(alone ? mode - 2 : mode));
        total_flops = counted; // op_flops goes on, and is added once, at the verb's own end
        if (!alone)
            wait_for_coprocessors();
        result.tag = tag::subarray;
        result.subarray = copy.enclosed();
        return result;
    }
    const Kernel* kernel =
        in_table(element.tag) ? verb.kernels_for(element.tag, element.form)[element.tag] : nullptr;
    if (!kernel)
        fail(994, f.top, f.cell);
    if (const int number = kernel->element(f.op, element, element, false, result))
        fail(number, f.top, f.cell);
    return result;
}

std::uint32_t run_elements(const Frame& f, const MonadicVerb& verb, ArrayBuilder& results) {
    for (std::uint32_t i = results.size(); i < f.n; ++i) {
        if (i % stretch_length == 0)
            between_stretches(i);
        add(results, transformed(f, verb, element_at(*f.left, f.offset + i)));
    }
    return results.kinds();
}

// After a failure: the results so far replace the first elements of the operand that they were to
// be written over.
void write_back(const Frame& f, ArrayBuilder& results) {
    const std::uint32_t n = results.size();
    if (f.target == Target::fresh || n == 0)
        return;
    const std::uint32_t kinds = results.kinds();
    results.add_copies(overwritten(f).data_pointer, f.n - n, n);
    put_over_operand(f, results.finish(), kinds);
}

template <class VerbTable>
void run_road(const Frame& f, const VerbTable& verb, Outcome& out) {
    ArrayBuilder results(f.n);
    if (out.done)
        results.add_copies(out.block(), out.done);
    out.fresh = {};
    out.reused = nullptr;
    try {
        out.kinds = run_elements(f, verb, results);
    } catch (const ErrorJump&) {
        if (f.slice) {
            out.done = results.size();
            out.kinds = results.kinds();
            out.fresh = BlockHandle(results.finish());
            throw;
        }
        try {
            write_back(f, results);
        } catch (const OutOfStorage&) {
            // The operand stays as it was.
        }
        throw;
    }
    out.done = f.n;
    out.fresh = BlockHandle(results.finish());
}

} // namespace

void put_over_operand(const Frame& f, void* block, std::uint32_t kinds) noexcept {
    Space& operand = overwritten(f);
    release_data(operand.data_pointer, f.n);
    operand.data_pointer = block;
    operand.type |= kinds;
    if (several(operand.type & simple_kinds))
        operand.type |= COMPLEXED;
    if (f.target == Target::both) {
        release_data(f.right->data_pointer, f.n);
        f.right->data_pointer = block;
        count_up(block);
        f.right->type = operand.type;
    }
}

void element_road(const Frame& f, const DyadicVerb& verb, Outcome& out) {
    run_road(f, verb, out);
}

void element_road(const Frame& f, const MonadicVerb& verb, Outcome& out) {
    run_road(f, verb, out);
}

} // namespace tessor
