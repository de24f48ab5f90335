#include "scalar/frame.h"

#include "scalar/shared_work.h"
#include "values/refderef.h"

namespace tessor {

namespace {

constexpr std::uint32_t single_bits = ISSCALAR | ISONEELEMENT;

bool lone(const Space& space) {
    return !in_place(space) && space.data_pointer && unshared(space.data_pointer);
}

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
               && count_of(f.left->data_pointer) == 2) {
        f.target = Target::both;
    }
}

// Whether workers are used.
bool start(Frame& f, signed char mode, std::uint32_t n) {
    f.keep = (mode < 0 ? mode + 2 : mode) != 0;
    f.alone = mode < 0;
    if (mode < 0 || !parallel_worthy(n))
        return false;
    wait_for_coprocessors();
    return true;
}

template <class VerbTable>
void run_serial(Frame& f, const VerbTable& verb, Outcome& out) {
    packed_road(f, verb, out);
    if (out.done < f.n)
        element_road(f, verb, out);
}

template <class VerbTable>
void run_roads(Frame& f, const VerbTable& verb, Outcome& out) {
    out.shared = out.shared && share(f, verb, out);
    if (!out.shared)
        run_serial(f, verb, out);
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

// Workers may still be reading it.
void release_operand_data(const Space& operand, const Outcome& out) {
    if (in_place(operand) || !operand.data_pointer || operand.data_pointer == out.reused)
        return;
    if (out.shared)
        keep_operand(operand.data_pointer, operand.elements);
    else
        release_data(operand.data_pointer, operand.elements);
}

// The frame of a dyadic result, in the left operand's cell.
void shape_result(const Frame& f) {
    Space& left = *f.left;
    Space& right = *f.right;
    if (f.left_single) {
        release_shape(left);
        left = right;
    } else if ((left.type & ISSCALAR) && (right.type & ISONEELEMENT)) {
        release_shape(left);
        left.shape_pointer = right.shape_pointer;
        left.rank = 1;
        left.depth = 1;
        left.type = (left.type & ~ISSCALAR) | ISONEELEMENT | ISVECTOR;
    } else {
        release_shape(right);
    }
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
    if (out.shared)
        complete_later(result);
    else if (result.rank == 0)
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
    op_flops = mode < 0 && !verb.rules.nested_flop ? 0.0 : 1.0;
    Outcome out;
    out.shared = start(f, mode, std::max(f.left->elements, f.right->elements));
    conform(f);
    out.shared = out.shared && f.n >= processors;
    if (f.n != 0) {
        choose_target(f);
        run_roads(f, verb, out);
    }
    close(f, out);
}

void run_monadic(const MonadicVerb& verb, const void* op, Space** top, const Space* cell,
                 Space* quads, signed char mode) {
    Space* operand = *top;
    if (operand->rank >= 0 && operand->elements == 0)
        return;
    Frame f{top, cell, quads, operand, nullptr, &verb.rules, op, operand->elements, operand->type};
    Outcome out;
    out.shared = start(f, mode, f.n);
    if (operand->rank < 0)
        fail(994, top, cell);
    if (!f.keep && lone(*operand))
        f.target = Target::left;
    run_roads(f, verb, out);
    close(f, out);
}

} // namespace tessor
