#include "scalar/frame.h"

#include "io/writers/exception.h"
#include "parallel/coprocessor.h"
#include "scalar/simd.h"
#include "values/native_stack.h"
#include "values/refderef.h"
#include "values/shared.h"

#include <cstring>

namespace tessor {

#if defined(__x86_64__)
const SimdLevel simd_level = [] {
    __builtin_cpu_init();
    if (__builtin_cpu_supports("x86-64-v4"))
        return SimdLevel::v4;
    return __builtin_cpu_supports("x86-64-v3") ? SimdLevel::v3 : SimdLevel::baseline;
}();
#else
const SimdLevel simd_level = SimdLevel::baseline;
#endif

namespace {

constexpr std::uint32_t single_bits = ISSCALAR | ISONEELEMENT;

// The operand whose block the result is written over, as the language tells it. Where the storage
// of the result differs, other memory is used, and only the choice itself is left to be seen.
enum class Target { fresh, left, right, both };

struct Frame {
    Space** top;
    const Space* cell;
    Space* quads;
    Space* left;
    Space* right; ///< null for a monadic verb
    const Rules* rules;
    const void* op;
    std::uint32_t n;
    std::uint32_t joined; ///< types of the operands
    bool left_single = false;
    bool right_single = false;
    bool keep = false; ///< no operand block may be overwritten
    Target target = Target::fresh;
};

// A result in the making.
struct Outcome {
    BlockHandle fresh;      ///< a block of our own, or
    void* reused = nullptr; ///< that of the operand which is overwritten
    std::uint32_t done = 0;
    std::uint32_t kinds = 0;

    void* block() const { return reused ? reused : fresh.get(); }
};

bool in_place(const Space& space) {
    return (space.type & ISINPLACE) != 0;
}

bool lone(const Space& space) {
    return !in_place(space) && space.data_pointer && unshared(space.data_pointer);
}

// ---- operands

bool same_extents(const Space& left, const Space& right) {
    for (std::int32_t axis = left.rank - 1; axis >= 0; --axis)
        if (extent(left, axis) != extent(right, axis))
            return false;
    return true;
}

void choose_target(Frame& f) {
    if (f.keep)
        return;
    if (f.left_single) {
        if (lone(*f.right))
            f.target = Target::right;
    } else if (f.right_single) {
        if ((f.left->type & single_bits) && lone(*f.right))
            f.target = Target::right;
        else if (lone(*f.left))
            f.target = Target::left;
    } else if (lone(*f.left)) {
        const bool payloads = (f.right->type & (HASOCTONION | STRUCTURED)) != 0;
        f.target = payloads && lone(*f.right) ? Target::right : Target::left;
    } else if (lone(*f.right)) {
        f.target = Target::right;
    } else if (f.left->data_pointer && f.left->data_pointer == f.right->data_pointer
               && header_of(f.left->data_pointer).count == 2) {
        f.target = Target::both;
    }
}

void start(Frame& f, signed char mode, std::uint32_t n) {
    f.keep = (mode < 0 ? mode + 2 : mode) != 0;
    if (mode >= 0 && processors > 1 && n >= processors
        && static_cast<std::int32_t>(n) > MIN_PARALLEL)
        wait_for_coprocessors();
}

void conform(Frame& f) {
    const bool extends = (f.joined & single_bits) != 0;
    if (!extends && f.left->rank != f.right->rank)
        fail(17, f.top, f.cell);
    if (f.joined & f.rules->refused)
        fail(17, f.top, f.cell);
    if (!extends && !same_extents(*f.left, *f.right))
        fail(17, f.top, f.cell);
    if (f.left->rank < 0 || f.right->rank < 0)
        fail(162, f.top, f.cell);
    f.right_single = (f.right->type & single_bits) != 0;
    f.left_single = extends && !f.right_single;
    f.n = f.right_single ? f.left->elements : f.right->elements;
}

// ---- packed operands

struct View {
    const void* data = nullptr;
    std::int32_t tag = tag::none; ///< none: not for packed loops
    Storage storage = Storage::elements;
    Look look;
};

View view_of(const Space& space) {
    if (in_place(space))
        return {&space.real, space.tag, tag_storage(space.tag), {space.form, space.marks}};
    const void* block = space.data_pointer;
    const Layout layout = layout_of(block);
    return {block, storage_tag(layout.storage), layout.storage, {layout.form, layout.marks}};
}

bool of_both_kinds(Storage storage) {
    return storage == Storage::quotient || storage == Storage::promoted;
}

// Room for a stretch of each operand in the type of its loop, and for results that may be void.
struct Scratch {
    alignas(64) double left[stretch_length];
    alignas(64) double right[stretch_length];
    alignas(64) std::int32_t items[stretch_length];
};
constinit thread_local Scratch scratch{};

template <class T>
const void* widened(const void* bytes, std::uint32_t first, std::uint32_t n, void* room) {
    std::copy_n(static_cast<const std::uint8_t*>(bytes) + first, n, static_cast<T*>(room));
    return room;
}

// Values `first` and on of an operand, as the loops read them.
const void* values_from(const View& view, bool single, std::uint32_t first, std::uint32_t n,
                        double* room) {
    const std::uint32_t from = single ? 0 : first;
    const std::uint32_t count = single ? 1 : n;
    if (view.storage == Storage::truth)
        return widened<std::int32_t>(view.data, from, count, room);
    if (view.storage == Storage::degree)
        return widened<double>(view.data, from, count, room);
    return static_cast<const char*>(view.data) + from * item_size(view.storage);
}

struct Packed {
    Frame& f;
    const Kernel& kernel;
    const View& left;
    const View& right;
    Look look;

    Stretch stretch(std::uint32_t first, std::uint32_t length) const {
        Stretch s{};
        s.n = std::min(length, f.n - first);
        s.left_single = f.left_single;
        s.right_single = f.right_single;
        s.left = values_from(left, f.left_single, first, s.n, scratch.left);
        if (f.right)
            s.right = values_from(right, f.right_single, first, s.n, scratch.right);
        return s;
    }
    std::uint32_t word(Storage storage) const { return encode({storage, look.form, look.marks}); }
};

void* target_block(const Frame& f, Storage storage) {
    if (f.target == Target::fresh)
        return nullptr;
    void* block = (f.target == Target::right ? f.right : f.left)->data_pointer;
    return storage_of(block) == storage ? block : nullptr;
}

void between_stretches(std::uint32_t first) {
    if (first && signal_noted())
        take_signals();
}

void count_flops(const Kernel& kernel, const Tally& tally, std::uint32_t n) {
    const std::uint64_t integers = std::uint64_t{tally.fits} * kernel.integer_flops;
    const std::uint64_t reals = std::uint64_t{n - tally.fits} * kernel.real_flops;
    op_flops += static_cast<double>(static_cast<std::int64_t>(tally.flops + integers + reals));
}

constexpr std::size_t scratch_item = sizeof(std::int32_t);
constexpr std::uint32_t probe_length = std::min(stretch_length, 32u);

void take_block(const Packed& p, Outcome& out) {
    const std::size_t item = item_size(p.kernel.storage);
    if (!p.kernel.checked || item <= scratch_item)
        out.reused = target_block(p.f, p.kernel.storage);
    if (!out.reused)
        out.fresh = BlockHandle(allocate_items(p.f.n, item, p.word(p.kernel.storage)));
}

// Items from the narrow loop, stretch by stretch, up to the first that holds a misfit. Results that
// may be void are formed beside an operand's block; where a wide loop may have to follow, the first
// few are formed before a block is taken.
void run_narrow(const Packed& p, Outcome& out) {
    const Frame& f = p.f;
    const std::size_t item = item_size(p.kernel.storage);
    const bool probing = p.kernel.wide != nullptr;
    if (!probing)
        take_block(p, out);
    while (out.done < f.n) {
        between_stretches(out.done);
        const bool probes = probing && out.done == 0;
        const Stretch s = p.stretch(out.done, probes ? probe_length : stretch_length);
        char* to = static_cast<char*>(out.block()) + out.done * item;
        const bool buffered = probes || (p.kernel.checked && out.reused);
        Tally tally;
        p.kernel.narrow(f.op, s, buffered ? static_cast<void*>(scratch.items) : to, tally);
        if (tally.misfit)
            return;
        if (probes) {
            take_block(p, out);
            to = static_cast<char*>(out.block());
        }
        if (buffered)
            std::memcpy(to, scratch.items, s.n * item);
        count_flops(p.kernel, tally, s.n);
        out.done += s.n;
    }
    out.kinds = kind_bit(storage_tag(p.kernel.storage));
}

void widen_items(const void* from, Storage storage, double* to, std::uint32_t n) {
    if (storage == Storage::integer)
        std::copy_n(static_cast<const std::int32_t*>(from), n, to);
    else
        std::copy_n(static_cast<const std::uint8_t*>(from), n, to);
}

// The rest as doubles, behind what is done so far.
void run_wide(const Packed& p, Outcome& out) {
    const Frame& f = p.f;
    const Storage storage = p.kernel.wide_storage;
    BlockHandle wide(allocate_items(f.n, sizeof(double), p.word(storage)));
    auto* items = wide.as<double>();
    if (out.done)
        widen_items(out.block(), p.kernel.storage, items, out.done);
    out.reused = nullptr;
    std::uint64_t integers = out.done;
    while (out.done < f.n) {
        between_stretches(out.done);
        const Stretch s = p.stretch(out.done, stretch_length);
        Tally tally;
        p.kernel.wide(f.op, s, items + out.done, tally);
        count_flops(p.kernel, tally, s.n);
        integers += tally.fits;
        out.done += s.n;
    }
    if (!of_both_kinds(storage))
        integers = 0;
    if (integers == 0)
        header_of(wide.get()).layout = p.word(Storage::real);
    out.kinds = (integers != 0 ? HASINTEGER : 0u) | (integers != f.n ? HASREAL : 0u);
    out.fresh = std::move(wide);
}

// Runs packed loops as far as they go; done is f.n if that is to the end.
void run_packed(Frame& f, const Kernel& kernel, const View& left, const View& right, Outcome& out) {
    Packed p{f, kernel, left, right, {}};
    const bool over_right = f.target == Target::right;
    if (!kernel.look(left.look, right.look, over_right, p.look) || (p.look.marks & ~packed_marks))
        return;
    run_narrow(p, out);
    if (out.done < f.n && kernel.wide)
        run_wide(p, out);
    if (out.done == f.n && out.reused)
        header_of(out.reused).layout = p.word(kernel.storage);
}

const Kernel* packed_kernel(const Frame& f, const DyadicVerb& verb, View& left, View& right) {
    left = view_of(*f.left);
    right = view_of(*f.right);
    if (f.rules->integers_as_reals) {
        if (of_both_kinds(left.storage) && right.tag == tag::real)
            left.tag = tag::real;
        else if (of_both_kinds(right.storage) && left.tag == tag::real)
            right.tag = tag::real;
    }
    return verb.kernels[left.tag][right.tag];
}

// ---- one element at a time

bool subarrays_allowed(const Space& space) {
    return (space.type & (COMPLEXED | STRUCTURED)) != 0;
}

void check_subarray(const Frame& f, const Space& holder, const Element& element) {
    if (element.tag == tag::subarray && !subarrays_allowed(holder))
        fail(991, f.top, f.cell);
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
        make_scalar(slot, element);
        if (element.name && element.tag != tag::quaternion)
            count_up(element.name);
        else if (element.tag < 0 || element.tag > tag::octonion)
            referencedataelems(static_cast<const DataElement*>(slot.data_pointer), 1);
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
    if (!stack_guard() || *f.top + 1 > stacktop)
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

Element combined(const Frame& f, const DyadicVerb& verb, const Element& left,
                 const Element& right) {
    if (left.tag == tag::subarray || right.tag == tag::subarray)
        return recurse(f, verb, left, right);
    const Kernel* kernel =
        in_table(left.tag) && in_table(right.tag) ? verb.kernels[left.tag][right.tag] : nullptr;
    if (!kernel)
        fail(refusal(*f.rules, left, right), f.top, f.cell);
    Element result;
    if (const int number = kernel->element(f.op, left, right, f.target == Target::right, result))
        fail(number, f.top, f.cell);
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

void run_elements(const Frame& f, const DyadicVerb& verb, ArrayBuilder& results) {
    const Element first_left = f.left_single ? element_at(*f.left, 0) : Element{};
    const Element first_right = f.right_single ? element_at(*f.right, 0) : Element{};
    for (std::uint32_t i = results.size(); i < f.n; ++i) {
        if (i % stretch_length == 0)
            between_stretches(i);
        const Element left = f.left_single ? first_left : element_at(*f.left, i);
        const Element right = f.right_single ? first_right : element_at(*f.right, i);
        add(results, combined(f, verb, left, right));
    }
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
        if (!stack_guard())
            fail(806, f.top, f.cell);
        Copy copy(*element.subarray);
        Space* top = copy.get();
        verb.verb(&top, f.cell, f.quads, f.keep ? 1 : 0);
        result.tag = tag::subarray;
        result.subarray = copy.enclosed();
        return result;
    }
    const Kernel* kernel = in_table(element.tag) ? verb.kernels[element.tag] : nullptr;
    if (!kernel)
        fail(994, f.top, f.cell);
    if (const int number = kernel->element(f.op, element, element, false, result))
        fail(number, f.top, f.cell);
    return result;
}

void run_elements(const Frame& f, const MonadicVerb& verb, ArrayBuilder& results) {
    for (std::uint32_t i = results.size(); i < f.n; ++i) {
        if (i % stretch_length == 0)
            between_stretches(i);
        add(results, transformed(f, verb, element_at(*f.left, i)));
    }
}

// A data block of n elements that goes with its owner.
struct OwnedData {
    void* block;
    std::uint32_t n;
    OwnedData(void* owned, std::uint32_t elements) : block(owned), n(elements) {}
    OwnedData(const OwnedData&) = delete;
    OwnedData& operator=(const OwnedData&) = delete;
    ~OwnedData() { release_data(block, n); }
};

// After a failure: the results so far replace the first elements of the operand that they were to
// be written over.
void write_back(const Frame& f, ArrayBuilder& results) {
    const std::uint32_t n = results.size();
    if (f.target == Target::fresh || n == 0)
        return;
    Space& operand = f.target == Target::right ? *f.right : *f.left;
    DataElement* slots = own_elements(operand);
    if (f.target == Target::both) {
        release_data(f.right->data_pointer, f.n);
        f.right->data_pointer = slots;
        count_up(slots);
    }
    const std::uint32_t kinds = results.kinds();
    const OwnedData done(results.finish(), n);
    for (std::uint32_t i = 0; i < n; ++i) {
        const Element element = element_of(done.block, i);
        if (element.tag == tag::subarray)
            count_up(element.subarray);
        dereferencedataelems(slots + i, 1);
        slots[i].tag = tag::filler;
        store(slots[i], element);
    }
    operand.type |= kinds;
    if (several(operand.type & simple_kinds))
        operand.type |= COMPLEXED;
    if (f.target == Target::both)
        f.right->type = operand.type;
}

template <class VerbTable>
void finish_elements(const Frame& f, const VerbTable& verb, Outcome& out) {
    ArrayBuilder results(f.n);
    if (out.done)
        results.add_copies(out.block(), out.done);
    out.fresh = {};
    out.reused = nullptr;
    try {
        run_elements(f, verb, results);
    } catch (const ErrorJump&) {
        try {
            write_back(f, results);
        } catch (const OutOfStorage&) {
            // The operand stays as it was.
        }
        throw;
    }
    out.kinds = results.kinds();
    out.done = f.n;
    out.fresh = BlockHandle(results.finish());
}

// ---- close

void release_operand_data(const Space& operand, const Outcome& out) {
    if (!in_place(operand) && operand.data_pointer && operand.data_pointer != out.reused)
        release_data(operand.data_pointer, operand.elements);
}

// The frame of a dyadic result, in the left operand's cell.
void shape_result(const Frame& f) {
    Space& left = *f.left;
    Space& right = *f.right;
    if (f.left_single) {
        release_block(left.shape_pointer);
        left = right;
    } else if ((left.type & ISSCALAR) && (right.type & ISONEELEMENT)) {
        release_block(left.shape_pointer);
        left.shape_pointer = right.shape_pointer;
        left.rank = 1;
        left.depth = 1;
        left.type = (left.type & ~ISSCALAR) | ISONEELEMENT | ISVECTOR;
    } else {
        release_block(right.shape_pointer);
    }
}

// A plain scalar lives in its Space.
void settle_scalar(Space& space) {
    const std::int32_t first = first_tag(space);
    if (space.rank != 0 || first < tag::ascii || first > tag::real || first == tag::unicode)
        return;
    const Element element = element_of(space.data_pointer, 0);
    if (element.named())
        return;
    release_data(space.data_pointer, 1);
    space.type |= ISINPLACE;
    space.form = element.form;
    space.marks = element.marks;
    space.tag = element.tag;
    if (element.tag == tag::real)
        space.real = element.c[0];
    else if (element.tag == tag::integer)
        space.integer = element.integer;
    else
        space.character = element.character;
}

void close(const Frame& f, Outcome& out) {
    Space& result = *f.left;
    std::uint32_t kinds = out.kinds;
    if (f.n > 1 && several(kinds & f.rules->counted))
        kinds |= COMPLEXED;
    release_operand_data(*f.left, out);
    if (f.right) {
        release_operand_data(*f.right, out);
        if (f.target == Target::both && out.reused)
            count_down(out.reused);
        shape_result(f);
    }
    if (in_place(result)) {
        result.first_index = 0;
        result.last_index = 0;
    }
    result.data_pointer = out.reused ? out.reused : out.fresh.release();
    result.elements = f.n;
    result.type = (result.type & ~(0x407f40u | ISINPLACE)) | (f.joined & ISPROBABLE) | kinds;
    if (result.rank == 0)
        settle_scalar(result);
    if (f.right)
        *f.top = f.left;
    count_operations(f.n);
}

} // namespace

void count_operations(std::uint32_t n) {
    flopos = op_flops;
    total_flops += op_flops;
    operations += n;
}

void run_dyadic(const DyadicVerb& verb, const void* op, Space** top, const Space* cell,
                Space* quads, signed char mode) {
    Frame f{top, cell, quads, *top - 1, *top, &verb.rules, op, 0, 0};
    f.joined = f.left->type | f.right->type;
    op_flops = mode < 0 ? 0.0 : 1.0;
    start(f, mode, std::max(f.left->elements, f.right->elements));
    conform(f);
    Outcome out;
    if (f.n != 0) {
        choose_target(f);
        View left;
        View right;
        if (const Kernel* kernel = packed_kernel(f, verb, left, right))
            run_packed(f, *kernel, left, right, out);
        if (out.done < f.n)
            finish_elements(f, verb, out);
    }
    close(f, out);
}

void run_monadic(const MonadicVerb& verb, const void* op, Space** top, const Space* cell,
                 Space* quads, signed char mode) {
    Space* operand = *top;
    if (operand->rank >= 0 && operand->elements == 0)
        return;
    Frame f{top, cell, quads, operand, nullptr, &verb.rules, op, operand->elements, operand->type};
    start(f, mode, f.n);
    if (operand->rank < 0)
        fail(994, top, cell);
    if (!f.keep && lone(*operand))
        f.target = Target::left;
    Outcome out;
    const View view = view_of(*operand);
    if (const Kernel* kernel = verb.kernels[view.tag])
        run_packed(f, *kernel, view, view, out);
    if (out.done < f.n)
        finish_elements(f, verb, out);
    close(f, out);
}

} // namespace tessor
