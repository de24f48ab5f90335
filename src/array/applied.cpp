#include "array/applied.h"

#include "engine/calls.h"
#include "io/writers/exception.h"
#include "parallel/coprocessor.h"

#include <algorithm>
#include <limits>

namespace tessor {

namespace {

constexpr std::uint32_t gathered_kinds = element_kinds | STRUCTURED | ISSTRUCTURE;

MeaningTable* table_with(Activation& run, const Space& function) {
    enter_table(run, function);
    return run.table;
}

// A function is the one cell that can stand in an array.
Element function_element(const Space& function) {
    Element element;
    element.tag = tag::function;
    element.other = reinterpret_cast<const DataElement*>(&function);
    return element;
}

} // namespace

Applied::Applied(Activation& run, const Space& function, std::uint32_t n)
    : run_(run),
      callee_(function.body + 1, table_with(run, function), run.base, run.floor, run.top, run.quads,
              run.depth + 1),
      locals_(function.locals),
      results_(n) {
    callee_.in_body = true;
}

void Applied::leave(int number) {
    fail(number, &callee_.top, run_.now);
}

inline void Applied::take(Space& value) {
    kinds_ |= value.type & gathered_kinds;
    if (value.type & ISINPLACE)
        results_.add_in_place(value);
    else
        take_other(value);
}

void Applied::next() {
    Space* const began = callee_.top;
    if (locals_ > stacktop + 1 - began)
        leave(806);
    if (locals_ > 0)
        open_locals(began, 1, locals_);
    Space* const floor = began + locals_;
    restart(callee_, began, floor, floor);
    callee_.own_locals = locals_ > 0;
    run_nested(callee_);
    callee_.own_locals = false;
    callee_.left = false;
    wait_for_coprocessors();
    if (callee_.top >= began) {
        take(*callee_.top);
        --callee_.top;
    } else {
        Space nothing;
        make_empty(nothing);
        take_enclosed(nothing);
    }
}

void Applied::take_other(Space& value) {
    if (value.rank > 0) {
        take_enclosed(value);
    } else if (value.rank == 0 && value.data_pointer) {
        results_.add_copies(value.data_pointer, 1);
        dereferencepoint(&value);
    } else if (value.rank == kind::FUNCTION) {
        results_.add(function_element(value));
    } else {
        leave(994);
    }
}

void Applied::take_enclosed(const Space& value) {
    results_.add_enclosed(value);
    kinds_ |= (value.type & gathered_kinds) | STRUCTURED | ISSTRUCTURE;
    depth_ = std::max(depth_, value.depth + 1);
}

Space Applied::finish(Space frame) {
    const std::uint32_t n = results_.size();
    if (n > 1 && several(kinds_ & simple_kinds))
        kinds_ |= COMPLEXED;
    constexpr int deepest = std::numeric_limits<std::int16_t>::max();
    if (frame.type & ISINPLACE)
        frame.first_index = 0, frame.last_index = 0;
    frame.type = (frame.type & ~(element_kinds | COMPLEXED | ISINPLACE)) | kinds_;
    frame.depth = static_cast<std::int16_t>(std::clamp<int>(depth_, frame.depth, deepest));
    frame.elements = n;
    frame.data_pointer = results_.finish();
    if (n != 0)
        settle_scalar(frame);
    run_.top = callee_.top;
    callee_.left = true;
    return frame;
}

} // namespace tessor
