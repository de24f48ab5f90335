// The engine: runs a list of program cells on the value stack.
//
// An activation is one run of one list: a sentence, a function's body, executed text. It is a small
// record on the native stack; an instruction's body gets it and says what happens next. The engine
// knows instructions only through the table of bodies, which the shell fills (shell/dispatch.cpp).
#pragma once

#include "frontend/symtab.h"
#include "values/instructions.h"
#include "values/native_stack.h"
#include "values/refderef.h"
#include "values/shared.h"

#include <cstddef>

namespace tessor {

inline constexpr int stack_cells = 16585;
extern Space stack[stack_cells]; ///< cell 0 stays empty below the bottom
extern Space* sp;                ///< top between sentences

class CellCount;

struct Activation {
    Space* first;        ///< first cell of the list
    Space* cell;         ///< current cell of the list
    Space* now;          ///< what is run: the current cell, or `opened`
    Space opened;        ///< a conditional cell opened up; it owns nothing
    Space* base;         ///< local number 0
    Space* floor;        ///< first operand
    Space* top;          ///< top value; one cell below floor when the frame is empty
    Space* cell_top;     ///< top when the current cell began
    MeaningTable* table; ///< link in force; this activation holds a count on it
    MeaningTable* entry; ///< the link that it began with
    Space* quads;
    Activation* outer;          ///< the activation that this one interrupts
    int depth;                  ///< 0 for a fresh run
    int check = -1;             ///< last CHECK: -1 none yet, 0 no, 1 yes
    CellCount* count = nullptr; ///< of the run under way
    bool own_locals = false;    ///< the cells from base to floor were made for this activation
    bool in_body = false;       ///< a function's body: the cell before `first` is its header
    bool trace = false;         ///< trace lines in this activation
    bool step = false;          ///< inspection prompt at every cell of this activation
    bool left = false;          ///< it has ended: nothing is to be salvaged
    bool stopped = false;       ///< it has ended early

    Activation(Space* first, MeaningTable* table, Space* base, Space* floor, Space* top,
               Space* quads, int depth);
    Activation(const Activation&) = delete;
    Activation& operator=(const Activation&) = delete;
    ~Activation();

    long values() const { return top - floor + 1; }
};

/// The innermost activation; null between sentences.
extern Activation* current;

/// What a jump past an activation does to it: its locals go, and the values above them stand where
/// its operands stood.
void abandon(Activation& run) noexcept;

inline Activation::Activation(Space* first_cell, MeaningTable* link, Space* base_cell,
                              Space* floor_cell, Space* top_cell, Space* quads_block, int run_depth)
    : first(first_cell),
      cell(first_cell),
      now(first_cell),
      base(base_cell),
      floor(floor_cell),
      top(top_cell),
      cell_top(top_cell),
      table(hold(link)),
      entry(link),
      quads(quads_block),
      outer(current),
      depth(run_depth) {
    current = this;
}

inline Activation::~Activation() {
    if (!left)
        abandon(*this);
    current = outer;
    drop(table);
}

/// What the engine does after an instruction's body.
enum class Next {
    advance, ///< go on with the next cell
    jumped,  ///< `cell` was set: go on there
    again,   ///< `now` was set: the current cell was opened up, and is run as that
    end,     ///< this activation has ended normally
    failed,  ///< exception() was called: this activation ends early
};

using Body = Next (*)(Activation& run);
/// A scalar verb: operands on top, the right one above; throws ErrorJump.
using Verb = void (*)(Space** top, const Space* cell, Space* quads, signed char mode);

struct Bodies {
    Body body = nullptr;
    Verb verb = nullptr;
};
/// A scalar verb on operands that are numbers in place: the result is left in the left one's place;
/// a monadic verb has no right one. Returns the flops, or -1 if the operands are others, with
/// nothing done. It can't fail.
using VerbInPlace = long (*)(Space* left, const Space* right, Space* quads);

struct Quick {
    VerbInPlace verb = nullptr;
    std::ptrdiff_t pops = 0; ///< operands less one
};
/// Verbs in place by instruction number.
extern Quick quick_verbs[instruction_count];

/// Bodies by instruction number; an instruction that runs but has neither reports 993.
extern Bodies bodies[instruction_count];

/// Runs an activation that the caller has set up, above depth 0. Returns the new top.
Space* run_nested(Activation& run);

/// Sets an activation that has ended up for another run of the same cells.
void restart(Activation& run, Space* base, Space* floor, Space* top);

/// Runs cells from `first` to the end mark. Depth 0 is a recovery point, and shows the top of the
/// stack at its end. Returns the new top.
Space* machine(Space* first, MeaningTable* table, Space* base, Space* floor, Space* top,
               Space* quads, int depth);

/// Reports 806; false.
bool no_room(Activation& run);

/// Room for one more value; reports 806 and gives false if there is none.
inline bool room(Activation& run) {
    return run.top <= stacktop || no_room(run);
}

/// Native stack for one more activation; reports 806 and gives false if too little is left.
inline bool may_nest(Activation& run) {
    return stack_guard(for_report) || no_room(run);
}

/// Reports a number with the activation's top and cell; what a body returns then.
Next failed(Activation& run, int number);

/// Takes the top value off the stack and releases it.
inline void pop(Activation& run) {
    dereferencepoint(run.top);
    --run.top;
}

/// Pushes a copy of a value, counted up, without what belongs to cells. Room must have been tested.
inline void push_copy(Activation& run, const Space& value) {
    Space& pushed = run.top[1];
    copy_words(pushed, value);
    if (pushed.type & (CONDITIONAL | YES))
        pushed.type &= ~(CONDITIONAL | YES);
    referencepoint(&pushed);
    ++run.top;
}

/// A value held aside while it is off the stack; released with the handle.
class Held {
public:
    explicit Held(const Space& value) : value_(value) {}
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    ~Held();
    const Space& value() const { return value_; }
    /// Hands the counts to whoever has a copy.
    void release() { value_ = Space{}; }

private:
    Space value_;
};

/// Releases the cells of a program and leaves it empty.
void clear_cells(Space* cells);

/// The program buffers that wait to be used again, linked through their targets.
const Space* spare_buffers();

/// A buffer of program cells, from a pool; the cells in it are released with the handle.
class CellBuffer {
public:
    CellBuffer();
    CellBuffer(const CellBuffer&) = delete;
    CellBuffer& operator=(const CellBuffer&) = delete;
    ~CellBuffer();
    Space* cells() { return cells_; }

private:
    Space* cells_;
};

} // namespace tessor
