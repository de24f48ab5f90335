#include "scalar/drawing.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

// 0.5 belongs to neither side: it is drawn for, and the value then is a probable one.
struct Boolean {
    static constexpr Rules rules{.counted = monadic_counted, .draws = true};
    bool probable; ///< the operand is

    using Other = AsMeant;
    static bool other(std::int32_t tag, std::uint16_t form) {
        return form == (tag == tag::ascii ? form::binary : form::boolean);
    }

    bool decide(double x) const {
        if (x != 0.5)
            return !(x < 0.5);
        drawn = true;
        return draw(x, &prngs_seed);
    }

    static Truth apply(Character x) { return {is_true(x)}; }
    static Truth apply(std::int32_t x) { return {is_true(x)}; }
    Truth apply(double x) const { return {decide(x)}; }
    template <Hypercomplex T>
    T apply(const T& x) const {
        return decided(*this, x);
    }

    template <class T, class Out>
    static int flops(const T&, const Out&) {
        return 0;
    }

    template <class T>
    static Look look(const T&, Look operand) requires(width<T> <= 1) {
        return truth_look(operand);
    }
    // The mark of a probable value is told by what was drawn so far.
    template <Hypercomplex T>
    Look look(const T&, Look operand) const {
        return components_look<T>(operand, probable || drawn);
    }
    template <Hypercomplex T>
    static Look components_look(Look operand, bool probable) {
        const auto marks = std::same_as<T, Complex> ? truth_look(operand).marks : std::uint16_t{0};
        return {form::boolean, static_cast<std::uint16_t>(marks | (probable ? mark::probable : 0))};
    }
};

// Of a stretch without 0.5.
struct Threshold {
    static Truth apply(double x) { return {!(x < 0.5)}; }
    static int flops(double, Truth) { return 0; }
    static Look look(double, Look operand) { return operand; }
};

bool has_half(const double* x, std::size_t n) {
    bool found = false;
    bool* out = &found;
    run_simd([=]() __attribute__((always_inline)) {
        std::uint64_t halves = 0;
        for (std::size_t i = 0; i < n; ++i)
            halves += x[i] == 0.5 ? 1u : 0u;
        *out = halves != 0;
    });
    return found;
}

void decide_reals(const void* record, const Stretch& s, void* room, Tally& tally) {
    const auto* x = static_cast<const double*>(s.left);
    auto* items = static_cast<std::uint8_t*>(room);
    for (std::uint32_t first = 0; first < s.n; first += stretch_length) {
        Stretch part = s;
        part.n = std::min(stretch_length, s.n - first);
        part.left = x + first;
        const bool drawing = has_half(x + first, part.n);
        const auto loop =
            drawing ? in_order<Boolean, double> : Single<Threshold, double>::run<false>;
        loop(record, part, items + first, tally);
    }
    tally.flops = 0;
}

constexpr Kernel reals = with_loop<Boolean, double>(decide_reals);

// Components without 0.5, in place or not.
void pass_threshold(const double* x, double* items, std::size_t n) {
    run_simd([=]() __attribute__((always_inline)) {
#pragma GCC ivdep
        for (std::size_t i = 0; i < n; ++i)
            items[i] = x[i] < 0.5 ? 0.0 : 1.0;
    });
}

// Hypercomplex numbers of a value that is probable already are alike; those of any other are up to
// the first draw, with which the marks change.
template <class T, bool probable>
void decide_components(const void* record, const Stretch& s, void* room, Tally& tally) {
    const auto* x = static_cast<const double*>(s.left);
    const std::size_t n = std::size_t{s.n} * width<T>;
    tally = {};
    if (!has_half(x, n))
        pass_threshold(x, static_cast<double*>(room), n);
    else if (probable)
        in_order<Boolean, T>(record, s, room, tally);
    else
        tally.misfit = true;
}

template <class T, bool probable>
constexpr Kernel components = [] {
    Kernel kernel = with_loop<Boolean, T>(decide_components<T, probable>);
    kernel.checked = !probable;
    kernel.look = [](Look operand, Look, bool, Look& result) {
        result = Boolean::components_look<T>(operand, probable);
        return true;
    };
    return kernel;
}();

// A subarray's draws aren't those of the array around it.
class OwnDraws {
public:
    OwnDraws() { drawn = false; }
    OwnDraws(const OwnDraws&) = delete;
    OwnDraws& operator=(const OwnDraws&) = delete;
    ~OwnDraws() { drawn = outer_; }

private:
    bool outer_ = drawn;
};

template <bool probable>
constexpr MonadicVerb table = [] {
    MonadicVerb made = monadic_verb<Boolean>(boolean);
    made.kernels[tag::real] = &reals;
    made.kernels[tag::complex] = &components<Complex, probable>;
    made.kernels[tag::quaternion] = &components<Quaternion, probable>;
    made.kernels[tag::octonion] = &components<Octonion, probable>;
    return made;
}();

} // namespace

void boolean(Space** top, const Space* cell, Space* quads, signed char mode) {
    const bool probable = ((*top)->type & ISPROBABLE) != 0;
    const OwnDraws own;
    run_monadic_with(probable ? table<true> : table<false>, Boolean{probable}, top, cell, quads,
                     mode);
    if (drawn)
        (*top)->type |= ISPROBABLE;
}

} // namespace tessor
