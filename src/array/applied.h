// A function of one argument, run for one element after the other of an array in the making.
//
// Every run is an activation of the function in a fresh frame at the top of the stack. What it
// leaves on top becomes the next element: a scalar's element, any other value enclosed, an enclosed
// empty vector for nothing at all.
#pragma once

#include "engine/machine.h"
#include "values/array.h"

namespace tessor {

class Applied {
public:
    /// `run` is the activation that applies, `n` the number of elements to come. The function must
    /// stay held meanwhile.
    Applied(Activation& run, const Space& function, std::uint32_t n);
    Applied(const Applied&) = delete;
    Applied& operator=(const Applied&) = delete;
    ~Applied() = default;

    /// The top of the stack until finish; that of `run` stands still meanwhile.
    Space*& top() { return callee_.top; }
    /// Moves the top one up, for the next argument, and gives its place. 806 if there is none.
    Space& argument() {
        if (callee_.top > stacktop)
            leave(806);
        return *++callee_.top;
    }
    /// Runs the function on the argument on top and takes its topmost value. Others that it leaves
    /// stay there.
    void next();
    /// The array, in the frame that is given, of which it takes the shape over.
    Space finish(Space frame);
    /// Reports a number and throws ErrorJump.
    [[noreturn]] void leave(int number);

private:
    void take(Space& value);
    void take_other(Space& value);
    void take_enclosed(const Space& value);

    Activation& run_;
    Activation callee_; ///< marked as ended only by finish: a jump finds the top through it
    int locals_;
    ArrayBuilder results_;
    std::uint32_t kinds_ = 0;
    int depth_ = 0;
};

} // namespace tessor
