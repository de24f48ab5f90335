// Arithmetic on arrays: Tessor, the limit and NumPy on the same work, in turns, in one run. What
// counts are the ratios; the times are there to give an idea.
//
//   bench_arrays INTERPRETER SCRIPT [ROUNDS [VERB]]
#include "clock.h"
#include "limit.h"
#include "numpy_side.h"
#include "tessor_side.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace bench {

namespace {

int missed = 0;
const char* only_verb = nullptr; ///< null: all of them

// A ratio beside its target, which is an upper bound.
void print_ratio(const char* against, const Spread& ratio, double target) {
    const bool met = ratio.median <= target;
    missed += !met;
    std::printf("  %s x%.2f (%.2f-%.2f) <= %.2f %-6s", against, ratio.median, ratio.least,
                ratio.most, target, met ? "ok" : "MISSED");
}

// Memory that is kept, in huge pages where the system gives them.
class Kept {
public:
    explicit Kept(std::size_t bytes) {
        constexpr std::size_t huge = std::size_t{2} << 20;
        const std::size_t rounded = (bytes + huge - 1) / huge * huge;
        data_ = std::aligned_alloc(huge, rounded);
        madvise(data_, rounded, MADV_HUGEPAGE);
        std::memset(data_, 1, rounded);
    }
    Kept(const Kept&) = delete;
    Kept& operator=(const Kept&) = delete;
    ~Kept() { std::free(data_); }
    void* data() const { return data_; }

private:
    void* data_;
};

// The operands and the result of the limit, for one type and size.
struct Operands {
    Type type;
    std::size_t n;
    Kept left, right, result;
    double scalar[2] = {scalar_value + 0.5, scalar_value + 0.5};
    std::int32_t whole_scalar = scalar_value;
    std::uint8_t truth_scalar = 1;

    Operands(Type t, std::size_t count)
        : type(t),
          n(count),
          left(count * type_size(t)),
          right(count * type_size(t)),
          result(count * std::max<std::size_t>(type_size(t), sizeof(double))) {
        fill_operand(left.data(), type, n, left_value);
        fill_operand(right.data(), type, n, right_value);
    }

    const void* right_of(const Work& work) const {
        if (!work.scalar)
            return right.data();
        if (type == Type::truth)
            return &truth_scalar;
        return type == Type::int32 ? static_cast<const void*>(&whole_scalar) : scalar;
    }
};

Nanoseconds time_limit(const Work& work, const Operands& operands, int n) {
    const Kernel kernel = limit_of(work).kernel;
    const void* right = operands.right_of(work);
    const Nanoseconds began = now();
    for (int i = 0; i < n; ++i)
        kernel(operands.left.data(), right, operands.result.data(), work.n);
    return (now() - began) / n;
}

// Component c of element i of what the limit computed.
double limit_at(const Work& work, const Operands& operands, std::size_t i, int c) {
    const void* result = operands.result.data();
    switch (limit_of(work).result_size) {
    case 1: return c == 0 ? static_cast<const std::uint8_t*>(result)[i] : 0;
    case 4: return c == 0 ? static_cast<const std::int32_t*>(result)[i] : 0;
    case 8: return c == 0 ? static_cast<const double*>(result)[i] : 0;
    default: return static_cast<const double*>(result)[2 * i + static_cast<std::size_t>(c)];
    }
}

std::string sentence_text(const Work& work, const char* end) {
    if (of_one(work.verb))
        return std::string(work.verb < Verb::root ? "A " : "B ") + verb_text(work.verb) + end;
    return "A " + (work.scalar ? scalar_text(work.type) : std::string("B")) + " "
           + verb_text(work.verb) + end;
}

// Both sides must have computed the same, or the times say nothing.
void compare_results(const Work& work, const Operands& operands) {
    Sentence sentence(sentence_text(work, " ."));
    const Result result(sentence);
    time_limit(work, operands, 1);
    bool same = result.size() == work.n;
    for (std::size_t i = 0; same && i < work.n; i += 977)
        for (int c = 0; c < 2; ++c)
            same = same && result.at(i, c) == limit_at(work, operands, i, c);
    if (!same) {
        std::fprintf(stderr, "results differ: %s\n", sentence_text(work, " .").c_str());
        std::exit(1);
    }
}

const char* type_name(Type type) {
    constexpr const char* names[] = {"integer", "real", "complex", "truth"};
    return names[static_cast<int>(type)];
}

// Results are the C library's to the bit, which NumPy's own vector code is free not to give.
bool by_library(Verb verb) {
    return verb == Verb::power || verb == Verb::logarithm;
}

double limit_target(const Work& work) {
    if (by_library(work.verb))
        return 1.05;
    if (work.verb == Verb::square || work.verb == Verb::root)
        return 1.3;
    return work.type == Type::complex128 ? 1.5 : 1.25;
}

void measure(const Work& work, const Operands& operands, NumPy& numpy, int rounds) {
    compare_results(work, operands);
    Sentence sentence(sentence_text(work, " DISCARD ."));
    const int n = static_cast<int>(std::max(1.0, 15e6 / time_limit(work, operands, 3)));
    std::vector<double> times, to_limit, to_numpy;
    for (int round = 0; round < rounds; ++round) {
        const double tessor = sentence.time(n);
        const double limit = time_limit(work, operands, n);
        const double other = numpy.time(work, n);
        times.push_back(tessor / 1e6);
        to_limit.push_back(tessor / limit);
        to_numpy.push_back(tessor / other);
    }
    std::printf("%-8s %-9s %.0e with %s  %8.3f ms", type_name(work.type), verb_text(work.verb),
                static_cast<double>(work.n),
                of_one(work.verb) ? "itself"
                : work.scalar     ? "scalar"
                                  : "vector",
                spread_of(times).median);
    print_ratio("limit", spread_of(to_limit), limit_target(work));
    if (by_library(work.verb))
        std::printf("  NumPy x%.2f", spread_of(to_numpy).median);
    else
        print_ratio("NumPy", spread_of(to_numpy), 1.0);
    std::putchar('\n');
    std::fflush(stdout);
}

std::vector<Verb> verbs_of(Type type) {
    if (type == Type::complex128)
        return {Verb::multiply};
    const std::vector<Verb> logic = {Verb::conjunction, Verb::disjunction, Verb::negation};
    if (type == Type::truth)
        return logic;
    std::vector<Verb> verbs = {Verb::add,  Verb::subtract, Verb::multiply, Verb::divide,
                               Verb::less, Verb::equal,    Verb::minimum,  Verb::maximum};
    verbs.insert(verbs.end(), logic.begin(), logic.end());
    if (type == Type::float64)
        verbs.insert(verbs.end(), {Verb::square, Verb::root, Verb::power, Verb::logarithm});
    return verbs;
}

void measure_type(Type type, std::size_t n, NumPy& numpy, int rounds) {
    const Operands operands(type, n);
    bind_array("A", type, n, true);
    bind_array("B", type, n, false);
    for (const Verb verb : verbs_of(type)) {
        if (only_verb && std::strcmp(only_verb, verb_text(verb)) != 0)
            continue;
        for (const bool scalar : {false, true})
            if (!scalar || !of_one(verb))
                measure({type, verb, n, scalar}, operands, numpy, rounds);
    }
    bind_array("A", type, 1, true);
    bind_array("B", type, 1, false);
}

std::string repeated(const char* text, int n) {
    std::string result;
    for (int i = 0; i < n; ++i)
        result += text;
    return result + ".";
}

// A verb on 10 elements beside a cell that does nothing.
void measure_small(Type type, NumPy& numpy, int rounds) {
    constexpr int copies = 200;
    constexpr int runs = 2000;
    bind_array("A", type, 10, true);
    bind_array("B", type, 10, false);
    Sentence with(repeated("A B ADD DISCARD ", copies));
    Sentence without(repeated("A B NOOP DISCARD DISCARD ", copies)); // ADD gives up an operand too
    std::vector<double> times, to_numpy;
    for (int round = 0; round < rounds; ++round) {
        times.push_back((with.time(runs) - without.time(runs)) / copies);
        const double other = numpy.time({type, Verb::add, 10, false}, runs * copies);
        to_numpy.push_back(times.back() / other);
    }
    std::printf("%-8s ADD of 10 elements beside NOOP:", type_name(type));
    print_ratio("ns", spread_of(times), 40);
    print_ratio("NumPy", spread_of(to_numpy), 1.0);
    std::putchar('\n');
}

// Verbs that move or compare elements, beside a copy of so many bytes.
struct Moving {
    const char* text;
    std::size_t bytes;
};

void measure_moving(const Moving& row, std::size_t n, int rounds) {
    const Kept from(row.bytes);
    const Kept to(row.bytes);
    Sentence sentence(std::string(row.text) + " DISCARD .");
    sentence.run();
    const int times = static_cast<int>(20'000'000 / n) + 1;
    std::vector<double> spent, to_copy;
    for (int round = 0; round < rounds; ++round) {
        const double tessor = sentence.time(times);
        const Nanoseconds began = now();
        for (int i = 0; i < times; ++i) {
            std::memcpy(to.data(), from.data(), row.bytes);
            asm volatile("" : : "r"(to.data()) : "memory");
        }
        spent.push_back(tessor / 1e6);
        to_copy.push_back(tessor / ((now() - began) / times));
    }
    std::printf("%-20s %.0e  %8.3f ms", row.text, static_cast<double>(n), spread_of(spent).median);
    print_ratio("copy", spread_of(to_copy), 2.0);
    std::putchar('\n');
}

// p and q hold the same values in blocks of their own.
void measure_all_moving(std::size_t n, int rounds) {
    bind_array("p", Type::int32, n, false);
    Sentence("p 200 RESIDUE @small SET small ENASCII @bytes SET .").run();
    for (const Moving& row : {Moving{"small ENASCII", 4 * n}, {"bytes DEASCII", 4 * n}})
        measure_moving(row, n, rounds);
    for (const Type type : {Type::int32, Type::float64, Type::complex128}) {
        bind_array("p", type, n, true);
        bind_array("q", type, n, true);
        Sentence("MARK p q COLLECT @both SET .").run();
        const std::size_t bytes = n * type_size(type);
        for (const Moving& row :
             {Moving{"p q EXACT MATCH", bytes}, {"p q MATCH", bytes}, {"both ENLIST", 2 * bytes}})
            measure_moving(row, n, rounds);
    }
    for (const char* name : {"p", "q", "small", "bytes", "both"})
        bind_array(name, Type::truth, 1, true);
}

double peak_memory() {
    std::FILE* status = std::fopen("/proc/self/status", "r");
    char line[256];
    double kibibytes = 0;
    while (std::fgets(line, sizeof line, status))
        if (std::sscanf(line, "VmHWM: %lf", &kibibytes) == 1)
            break;
    std::fclose(status);
    return kibibytes * 1024;
}

// Bytes at the peak of a sum, operands included, in a child of its own.
double tessor_memory(Type type, std::size_t n) {
    int ends[2];
    if (pipe(ends) != 0)
        std::exit(1);
    const pid_t child = fork();
    if (child == 0) {
        std::FILE* clear = std::fopen("/proc/self/clear_refs", "w");
        std::fputs("5", clear);
        std::fclose(clear);
        const double before = peak_memory();
        bind_array("A", type, n, true);
        bind_array("B", type, n, false);
        Sentence("A B ADD @C SET .").run();
        const double bytes = peak_memory() - before;
        _exit(write(ends[1], &bytes, sizeof bytes) != sizeof bytes);
    }
    double bytes = 0;
    if (read(ends[0], &bytes, sizeof bytes) != sizeof bytes)
        std::exit(1);
    waitpid(child, nullptr, 0);
    close(ends[0]);
    close(ends[1]);
    return bytes;
}

void measure_memory(Type type, std::size_t n, NumPy& numpy) {
    const double tessor = tessor_memory(type, n);
    const double ratio = tessor / numpy.memory(type, n);
    std::printf("%-8s two arrays of %.0e and their sum: %.1f MiB", type_name(type),
                static_cast<double>(n), tessor / (1 << 20));
    print_ratio("NumPy", {ratio, ratio, ratio}, 1.1);
    std::putchar('\n');
}

int run(const char* interpreter, const char* script, int rounds) {
    NumPy numpy(interpreter, script);
    start_tessor();
    if (!only_verb) {
        for (Type type : {Type::int32, Type::float64, Type::complex128})
            measure_memory(type, 10'000'000, numpy);
        for (Type type : {Type::int32, Type::float64})
            measure_small(type, numpy, rounds);
    }
    if (!only_verb || std::strcmp(only_verb, "MOVING") == 0)
        for (std::size_t n : {std::size_t{1'000'000}, std::size_t{10'000'000}})
            measure_all_moving(n, rounds);
    for (std::size_t n : {std::size_t{1'000'000}, std::size_t{10'000'000}})
        for (Type type : {Type::int32, Type::float64, Type::complex128, Type::truth})
            measure_type(type, n, numpy, rounds);
    std::printf("targets missed: %d\n", missed);
    return 0;
}

} // namespace

} // namespace bench

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fputs("usage: bench_arrays INTERPRETER SCRIPT [ROUNDS [VERB]]\n", stderr);
        return 1;
    }
    bench::only_verb = argc > 4 ? argv[4] : nullptr;
    return bench::run(argv[1], argv[2], argc > 3 ? std::max(std::atoi(argv[3]), 1) : 9);
}
