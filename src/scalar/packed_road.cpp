#include "scalar/random.h"
#include "scalar/roads.h"

#include <cmath>
#include <cstring>

namespace tessor {

namespace {

struct View {
    const void* data = nullptr;
    std::int32_t tag = tag::none; ///< none: not for packed loops
    Storage storage = Storage::elements;
    Look look;
};

// One element that has a block of its own: a named constant.
View view_of(const DataElement& element) {
    const void* data = &element.real;
    if (element.tag == tag::quaternion)
        data = element.quaternion;
    else if (element.tag == tag::octonion)
        data = element.octonion;
    const Storage storage = tag_storage(element.tag);
    return {data, storage_tag(storage), storage, {element.form, element.marks}};
}

View view_of(const Space& space) {
    if (in_place(space))
        return {&space.real, space.tag, tag_storage(space.tag), {space.form, space.marks}};
    const void* block = space.data_pointer;
    const Layout layout = layout_of(block);
    if (layout.storage == Storage::elements && space.elements == 1)
        return view_of(*static_cast<const DataElement*>(block));
    return {block, storage_tag(layout.storage), layout.storage, {layout.form, layout.marks}};
}

bool of_both_kinds(Storage storage) {
    return storage == Storage::quotient || storage == Storage::promoted;
}

bool of_bytes(Storage storage) {
    return storage == Storage::truth || storage == Storage::degree;
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

// The kernel for operands, and the operands as its loops read them.
struct Chosen {
    const Kernel* kernel = nullptr;
    View left;
    View right;
    std::uint8_t bytes[2]; ///< single operands that stand for a byte
};

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
        const std::uint32_t from = f.offset + first;
        s.left = values_from(left, f.left_single, from, s.n, scratch.left);
        if (f.right)
            s.right = values_from(right, f.right_single, from, s.n, scratch.right);
        return s;
    }
    // Bytes are widened into a buffer first.
    bool through_buffer() const { return of_bytes(left.storage) || of_bytes(right.storage); }
    std::uint32_t word(Storage storage) const { return encode({storage, look.form, look.marks}); }
};

void count_flops(const Kernel& kernel, const Tally& tally, std::uint32_t n) {
    const std::uint64_t integers = std::uint64_t{tally.fits} * kernel.integer_flops;
    const std::uint64_t reals = std::uint64_t{n - tally.fits} * kernel.real_flops;
    op_flops += static_cast<double>(static_cast<std::int64_t>(tally.flops + integers + reals));
}

constexpr std::size_t scratch_item = sizeof(std::int32_t);
constexpr std::uint32_t probe_length = std::min(stretch_length, 32u);

// Whether results can be formed in a buffer as long as they may be void.
bool goes_over_operands(const Kernel& kernel) {
    return !kernel.checked || item_size(kernel.storage) <= scratch_item;
}

void take_block(const Packed& p, Outcome& out) {
    const std::size_t item = item_size(p.kernel.storage);
    if (goes_over_operands(p.kernel))
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
    const bool probing = p.kernel.wide && f.n > probe_length && !out.place;
    if (!probing && !out.place)
        take_block(p, out);
    while (out.done < f.n) {
        between_stretches(out.done);
        const bool probes = probing && out.done == 0;
        const bool buffered = probes || (p.kernel.checked && (out.reused || out.over_operand));
        const bool straight = !buffered && !p.through_buffer();
        const Stretch s = p.stretch(out.done, probes     ? probe_length
                                              : straight ? long_stretch
                                                         : stretch_length);
        char* to = static_cast<char*>(out.block()) + out.done * item;
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
    out.kinds = kinds_of(p.kernel, storage_tag(p.kernel.storage), out.block(), f.n);
}

// The rest as doubles, behind what is done so far.
void run_wide(const Packed& p, Outcome& out) {
    const Frame& f = p.f;
    const Storage storage = p.kernel.wide_storage;
    BlockHandle wide;
    if (!out.wide_place)
        wide = BlockHandle(allocate_items(f.n, sizeof(double), p.word(storage)));
    auto* items = out.wide_place ? static_cast<double*>(out.place) : wide.as<double>();
    if (out.done)
        widen_items(out.block(), p.kernel.storage, items, out.done);
    out.reused = nullptr;
    std::uint64_t integers = out.done;
    const std::uint32_t length = p.through_buffer() ? stretch_length : long_stretch;
    while (out.done < f.n) {
        between_stretches(out.done);
        const Stretch s = p.stretch(out.done, length);
        Tally tally;
        p.kernel.wide(f.op, s, items + out.done, tally);
        count_flops(p.kernel, tally, s.n);
        integers += tally.fits;
        out.done += s.n;
    }
    if (!of_both_kinds(storage))
        integers = 0;
    if (integers == 0 && wide)
        header_of(wide.get()).layout = p.word(Storage::real);
    out.integers = static_cast<std::uint32_t>(integers);
    out.kinds = (integers != 0 ? HASINTEGER : 0u) | (integers != f.n ? HASREAL : 0u);
    out.fresh = std::move(wide);
}

// A few values into a fresh block: one loop, none of the seams. False: nothing is done yet.
bool run_few(const Frame& f, const Chosen& chosen, Outcome& out) {
    const Kernel& kernel = *chosen.kernel;
    const View& left = chosen.left;
    const View& right = chosen.right;
    constexpr std::uint32_t few = std::min(stretch_length, 256u);
    if (f.n > few || f.slice || f.target != Target::fresh || of_bytes(left.storage)
        || of_bytes(right.storage))
        return false;
    Look look;
    if (!kernel.look(left.look, right.look, false, look) || (look.marks & ~packed_marks))
        return false;
    BlockHandle block(allocate_items(f.n, item_size(kernel.storage),
                                     encode({kernel.storage, look.form, look.marks})));
    Tally tally;
    kernel.narrow(f.op, {left.data, right.data, f.n, f.left_single, f.right_single}, block.get(),
                  tally);
    if (tally.misfit)
        return false;
    count_flops(kernel, tally, f.n);
    out.kinds = kinds_of(kernel, storage_tag(kernel.storage), block.get(), f.n);
    out.fresh = std::move(block);
    out.done = f.n;
    return true;
}

// The look of the results, if loops can make them.
bool look_of(const Frame& f, const Chosen& chosen, Look& look) {
    return chosen.kernel
           && chosen.kernel->look(chosen.left.look, chosen.right.look, f.target == Target::right,
                                  look)
           && !(look.marks & ~packed_marks);
}

// Runs packed loops as far as they go; done is f.n if that is to the end.
void run_packed(Frame& f, const Chosen& chosen, Outcome& out) {
    const Kernel& kernel = *chosen.kernel;
    Packed p{f, kernel, chosen.left, chosen.right, {}};
    if (!look_of(f, chosen, p.look))
        return;
    if (!out.wide_place)
        run_narrow(p, out);
    if (out.done < f.n && kernel.wide)
        run_wide(p, out);
    if (out.done == f.n && out.reused)
        header_of(out.reused).layout = p.word(kernel.storage);
}

// Makes the view of a byte each: what is stored so, or a single number that such a byte can stand
// for. The row of its kernels; 0: it can't be.
int byte_row(View& view, bool single, const Rules& rules, std::uint8_t& byte) {
    int row = 0;
    if (of_bytes(view.storage)) {
        row = view.storage == Storage::truth ? truth_row : degree_row;
    } else if (single && view.storage == Storage::integer) {
        const std::int32_t value = *static_cast<const std::int32_t*>(view.data);
        byte = value > 0;
        row = rules.truths || value == byte ? truth_row : 0;
        view.data = &byte;
    } else if (single && view.storage == Storage::real) {
        const double value = *static_cast<const double*>(view.data);
        const bool certain = rules.truths && !(value >= 0 && value <= 1);
        byte = !(value < 1);
        row = certain || value == 1 || (value == 0 && !std::signbit(value)) ? degree_row : 0;
        view.data = &byte;
    }
    view.storage = Storage::character;
    return row;
}

// The kernel that works on bytes, if one operand at least is stored so and the other can be.
const Kernel* byte_kernel(const Frame& f, const DyadicVerb& verb, View& left, View& right,
                          std::uint8_t (&bytes)[2]) {
    if (!of_bytes(left.storage) && !of_bytes(right.storage))
        return nullptr;
    View l = left;
    View r = right;
    const int left_row = byte_row(l, f.left_single, *f.rules, bytes[0]);
    const int right_row = byte_row(r, f.right_single, *f.rules, bytes[1]);
    const Kernel* kernel = verb.kernels[left_row][right_row];
    if (kernel) {
        left = l;
        right = r;
    }
    return kernel;
}

const Kernel* packed_kernel(const Frame& f, const DyadicVerb& verb, View& left, View& right) {
    if (f.rules->left_as_reals && of_both_kinds(left.storage))
        left.tag = tag::real;
    if (f.rules->integers_as_reals && left.look.marks == 0) {
        if (of_both_kinds(left.storage) && right.tag == tag::real)
            left.tag = tag::real;
        else if (of_both_kinds(right.storage) && left.tag == tag::real)
            right.tag = tag::real;
    }
    return verb.kernels[left.tag][right.tag];
}

void choose(const Frame& f, const DyadicVerb& verb, Chosen& chosen) {
    chosen.left = view_of(*f.left);
    chosen.right = view_of(*f.right);
    chosen.kernel = byte_kernel(f, verb, chosen.left, chosen.right, chosen.bytes);
    if (!chosen.kernel)
        chosen.kernel = packed_kernel(f, verb, chosen.left, chosen.right);
}

void choose(const Frame& f, const MonadicVerb& verb, Chosen& chosen) {
    View view = view_of(*f.left);
    if (f.rules->left_as_reals && of_both_kinds(view.storage))
        view.tag = tag::real;
    const Kernel* const* kernels = verb.kernels_for(view.tag, view.look.form);
    chosen.kernel = kernels[view.tag];
    if (of_bytes(view.storage)) {
        const int row = view.storage == Storage::truth ? truth_row : degree_row;
        if (kernels[row]) {
            chosen.kernel = kernels[row];
            view.storage = Storage::character;
        }
    }
    chosen.left = chosen.right = view;
}

// Tries the first few results. Draws made for that are taken back.
Forecast forecast(Frame& f, const Chosen& chosen) {
    Forecast found;
    if (!look_of(f, chosen, found.look))
        return found;
    const Kernel& kernel = *chosen.kernel;
    Tally tally;
    if (kernel.wide) {
        const Packed p{f, kernel, chosen.left, chosen.right, found.look};
        const std::int32_t seed = prngs_seed;
        kernel.narrow(f.op, p.stretch(0, probe_length), scratch.items, tally);
        prngs_seed = seed;
    }
    found.wide = tally.misfit;
    found.storage = found.wide ? kernel.wide_storage : kernel.storage;
    found.wide_storage = kernel.wide_storage;
    found.over_operand =
        !found.wide && goes_over_operands(kernel) && target_block(f, kernel.storage) != nullptr;
    return found;
}

} // namespace

void* target_block(const Frame& f, Storage storage) {
    if (f.target == Target::fresh)
        return nullptr;
    void* block = overwritten(f).data_pointer;
    return storage_of(block) == storage ? block : nullptr;
}

void widen_items(const void* from, Storage storage, double* to, std::uint32_t n) {
    if (storage == Storage::integer)
        std::copy_n(static_cast<const std::int32_t*>(from), n, to);
    else
        std::copy_n(static_cast<const std::uint8_t*>(from), n, to);
}

Forecast forecast(Frame& f, const DyadicVerb& verb) {
    Chosen chosen;
    choose(f, verb, chosen);
    return forecast(f, chosen);
}

Forecast forecast(Frame& f, const MonadicVerb& verb) {
    Chosen chosen;
    choose(f, verb, chosen);
    return forecast(f, chosen);
}

void packed_road(Frame& f, const DyadicVerb& verb, Outcome& out) {
    Chosen chosen;
    choose(f, verb, chosen);
    if (chosen.kernel && !run_few(f, chosen, out))
        run_packed(f, chosen, out);
}

void packed_road(Frame& f, const MonadicVerb& verb, Outcome& out) {
    Chosen chosen;
    choose(f, verb, chosen);
    if (chosen.kernel)
        run_packed(f, chosen, out);
}

} // namespace tessor
