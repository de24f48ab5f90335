#include "scalar/drawing.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Probably {
    static constexpr Rules rules{.counted = monadic_counted, .draws = true};

    static constexpr bool open(double x) { return 0 < x && x < 1; }
    bool decide(double x) const { return open(x) ? draw(x, &prngs_seed) : !(x <= 0); }

    static Truth apply(Character x) { return {is_true(x)}; }
    static Truth apply(std::int32_t x) { return {is_true(x)}; }
    Truth apply(double x) const { return {decide(x)}; }
    template <Hypercomplex T>
    T apply(const T& x) const {
        return decided(*this, x);
    }

    // One for a decision, two for a draw.
    static int flops(Character, Truth) { return 0; }
    static int flops(std::int32_t, Truth) { return 0; }
    template <Number T, class Out>
    static int flops(const T& x, const Out&) {
        int flops = 0;
        for (int i = 0; i < width<T>; ++i)
            flops += open(component(x, i)) ? 3 : 1;
        return flops;
    }

    static Look look(Character, Look operand) { return truth_look(operand); }
    static Look look(std::int32_t, Look operand) { return truth_look(operand); }
    template <Number T>
    static Look look(const T&, Look) {
        return {form::boolean, mark::probable};
    }
};

template <class T>
constexpr Kernel deciding = with_loop<Probably, T>(in_order<Probably, T>);

constexpr MonadicVerb table = [] {
    MonadicVerb made = monadic_verb<Probably>(probably);
    made.kernels[tag::real] = &deciding<double>;
    made.kernels[tag::complex] = &deciding<Complex>;
    made.kernels[tag::quaternion] = &deciding<Quaternion>;
    made.kernels[tag::octonion] = &deciding<Octonion>;
    return made;
}();

} // namespace

void probably(Space** top, const Space* cell, Space* quads, signed char mode) {
    run_monadic_with(table, Probably{}, top, cell, quads, mode);
}

} // namespace tessor
