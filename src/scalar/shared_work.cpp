#include "scalar/shared_work.h"

#include "frontend/symtab.h"
#include "parallel/slices.h"
#include "scalar/random.h"
#include "values/refderef.h"

#include <array>
#include <cstring>
#include <utility>
#include <vector>

namespace tessor {

namespace {

// A packed loop over fewer elements is done before a worker has woken up.
#ifdef TESSOR_TIGHT
constexpr std::uint32_t least_shared = 0;
#else
constexpr std::uint32_t least_shared = 1 << 15;
#endif

struct Kept {
    void* block;
    std::uint32_t n;
};

// The record of the one job that there is at a time.
struct ScalarJob : Job {
    Frame frame;
    Space quads[8] = {}; ///< #CT as it was: the program may set another meanwhile
    const DyadicVerb* dyadic = nullptr;
    const MonadicVerb* monadic = nullptr;
    Space left{}; ///< the operands as they were; their counts are with the frame, or kept
    Space right{};
    alignas(16) std::array<std::byte, most_op_bytes> op{};
    Forecast forecast;
    void* place = nullptr; ///< of packed results
    std::vector<Outcome> parts;
    std::array<Kept, 2> kept{};
    std::size_t keeps = 0;
    Space* made = nullptr;         ///< the result; null until the verb has closed
    const Frame* failed = nullptr; ///< that of the verb, if the main thread's slice has failed
};

ScalarJob& the_job() {
    static ScalarJob job;
    return job;
}

bool is_packed(const ScalarJob& job) {
    return job.forecast.storage != Storage::elements;
}

Outcome place_of(const ScalarJob& job, std::uint32_t first) {
    Outcome out;
    if (is_packed(job)) {
        out.place = static_cast<char*>(job.place) + first * item_size(job.forecast.storage);
        out.wide_place = job.forecast.wide;
        out.over_operand = job.forecast.over_operand;
    }
    return out;
}

std::uint32_t word(const ScalarJob& job, Storage storage) {
    return encode({storage, job.forecast.look.form, job.forecast.look.marks});
}

// A block of what a slice has made in the common place.
BlockHandle copied(const ScalarJob& job, const Outcome& part) {
    const std::size_t item = item_size(job.forecast.storage);
    BlockHandle block(allocate_items(part.done, item, word(job, job.forecast.storage)));
    std::memcpy(block.get(), part.place, part.done * item);
    return block;
}

template <class VerbTable>
void run_part(const ScalarJob& job, Frame& f, const VerbTable& verb, Outcome& part) {
    if (is_packed(job))
        packed_road(f, verb, part);
    if (part.done == f.n)
        return;
    if (!part.fresh && part.done)
        part.fresh = copied(job, part);
    element_road(f, verb, part);
}

void run_stream(ScalarJob& job, std::uint32_t stream, Space** top) {
    const Slice slice = slice_of(job.count, job.streams, stream);
    Frame f = job.frame;
    f.top = top;
    f.slice = true;
    f.offset = slice.first;
    f.n = slice.end - slice.first;
    Outcome& part = job.parts[stream];
    part = place_of(job, slice.first);
    if (f.n == 0)
        return;
    drawn = false;
    if (job.dyadic)
        run_part(job, f, *job.dyadic, part);
    else
        run_part(job, f, *job.monadic, part);
    if (drawn)
        part.kinds |= ISPROBABLE;
}

// Who makes an element shows only in draws, and in what threads are reported to have done.
bool pays(const ScalarJob& job) {
    return !is_packed(job) || job.count >= least_shared || job.frame.rules->draws || opstime;
}

// A worker's recursion into subarrays works on a stack of its own. The kinds of the right operand
// stand below, as they do on the main thread.
void run_on_worker(Job& base, std::uint32_t stream) {
    auto& job = static_cast<ScalarJob&>(base);
    Space* top = stacktop - (worker_cells - 2);
    *top = job.dyadic ? job.right : job.left;
    Space* const floor = top;
    try {
        run_stream(job, stream, &top);
    } catch (...) {
        while (top > floor)
            dereferencepoint(top--);
        total_flops += op_flops;
        throw;
    }
    total_flops += op_flops;
}

bool fits_place(const ScalarJob& job, std::uint32_t stream) {
    const Slice slice = slice_of(job.count, job.streams, stream);
    const Outcome& part = job.parts[stream];
    return !part.fresh && part.done == slice.end - slice.first;
}

bool all_in_place(const ScalarJob& job) {
    for (std::uint32_t i = 0; i < job.streams; ++i)
        if (!fits_place(job, i))
            return false;
    return is_packed(job);
}

bool holds_doubles(Storage storage) {
    return storage == Storage::real || storage == Storage::quotient || storage == Storage::promoted;
}

// Parts that are whole, and numbers that doubles can stand for.
bool all_doubles(const ScalarJob& job) {
    if (!is_packed(job) || !holds_doubles(job.forecast.wide_storage))
        return false;
    for (std::uint32_t i = 0; i < job.streams; ++i) {
        const Slice slice = slice_of(job.count, job.streams, i);
        const Outcome& part = job.parts[i];
        if (part.done != slice.end - slice.first
            || (part.fresh && !holds_doubles(storage_of(part.fresh.get()))))
            return false;
    }
    return true;
}

// Number of integers among doubles of two kinds, and what they are stored as.
std::uint32_t kinds_of_doubles(const ScalarJob& job, std::uint64_t integers, Storage& storage) {
    storage = job.forecast.wide_storage;
    if (storage == Storage::real || integers == 0) {
        storage = Storage::real;
        return HASREAL;
    }
    return HASINTEGER | (integers != job.count ? HASREAL : 0u);
}

std::uint32_t settle_place(const ScalarJob& job, const Space& made) {
    std::uint32_t kinds = 0;
    std::uint64_t integers = 0;
    for (std::uint32_t i = 0; i < job.streams; ++i) {
        kinds |= job.parts[i].kinds;
        integers += job.parts[i].integers;
    }
    Storage storage = job.forecast.storage;
    if (job.forecast.wide)
        kinds = kinds_of_doubles(job, integers, storage);
    header_of(made.data_pointer).layout = word(job, storage);
    return kinds;
}

std::uint32_t join_doubles(const ScalarJob& job, BlockHandle& joined) {
    joined = BlockHandle(allocate_items(job.count, sizeof(double)));
    std::uint64_t integers = 0;
    for (std::uint32_t i = 0; i < job.streams; ++i) {
        const Outcome& part = job.parts[i];
        double* to = joined.as<double>() + slice_of(job.count, job.streams, i).first;
        const bool narrow = !part.fresh && !job.forecast.wide;
        if (narrow)
            widen_items(part.place, job.forecast.storage, to, part.done);
        else
            std::memcpy(to, part.block(), part.done * sizeof(double));
        integers += narrow ? part.done : part.integers;
    }
    Storage storage = Storage::real;
    const std::uint32_t kinds = kinds_of_doubles(job, integers, storage);
    header_of(joined.get()).layout = word(job, storage);
    return kinds;
}

// Elements that a failed slice hasn't made, up to `end`: those that they were to be written over,
// or 0 if there are none.
void add_rest(const ScalarJob& job, ArrayBuilder& all, std::uint32_t end) {
    if (all.size() < end && job.frame.target != Target::fresh)
        all.add_copies(overwritten(job.frame).data_pointer, end - all.size(), all.size());
    while (all.size() < end)
        all.add_integer(0);
}

std::uint32_t join_elements(const ScalarJob& job, BlockHandle& joined) {
    ArrayBuilder all(job.count);
    std::uint32_t kinds = 0;
    bool told = true; // the slices know their kinds better than the tags do
    for (std::uint32_t i = 0; i < job.streams; ++i) {
        const Outcome& part = job.parts[i];
        const Slice slice = slice_of(job.count, job.streams, i);
        if (part.fresh) {
            all.add_copies(part.fresh.get(), part.done);
        } else if (part.done) {
            const BlockHandle block = copied(job, part);
            all.add_copies(block.get(), part.done);
        }
        kinds |= part.kinds;
        told = told && part.kinds != 0 && all.size() == slice.end;
        add_rest(job, all, slice.end);
    }
    if (!told)
        kinds |= all.kinds();
    joined = BlockHandle(all.finish());
    return kinds;
}

void drop_parts(ScalarJob& job) {
    for (std::uint32_t i = 0; i < job.streams; ++i) {
        Outcome& part = job.parts[i];
        if (part.fresh)
            release_data(part.fresh.release(), part.done);
    }
    for (; job.keeps > 0; --job.keeps)
        release_data(job.kept[job.keeps - 1].block, job.kept[job.keeps - 1].n);
    dereferencepoint(&job.quads[quad_ct]);
    job.quads[quad_ct] = {};
}

// What all slices have made stands in the operand, as after a failure of a serial run.
void write_over(const ScalarJob& job) {
    if (job.frame.target == Target::fresh)
        return;
    BlockHandle joined;
    const std::uint32_t kinds = join_elements(job, joined);
    put_over_operand(*job.failed, joined.release(), kinds);
}

void complete(const ScalarJob& job, Space& result) {
    std::uint32_t kinds = 0;
    if (all_in_place(job)) {
        kinds = settle_place(job, result);
    } else {
        BlockHandle joined;
        kinds = all_doubles(job) ? join_doubles(job, joined) : join_elements(job, joined);
        release_block(result.data_pointer);
        result.data_pointer = joined.release();
    }
    result.type |= kinds;
    if (several(result.type & simple_kinds))
        result.type |= COMPLEXED;
}

void make_void(Space& result) {
    dereferencepoint(&result);
    make_empty(result);
}

void collect(Job& base) {
    auto& job = static_cast<ScalarJob&>(base);
    Space* const made = std::exchange(job.made, nullptr);
    try {
        if (made && job.given_up)
            make_void(*made);
        else if (made)
            complete(job, *made);
        else if (job.failed)
            write_over(job);
    } catch (const OutOfStorage&) {
        if (made)
            make_void(*made);
        drop_parts(job);
        throw;
    }
    drop_parts(job);
}

void take_place(ScalarJob& job, Frame& f, Outcome& out) {
    if (!is_packed(job))
        return;
    if (job.forecast.over_operand)
        out.reused = target_block(f, job.forecast.storage);
    else
        out.fresh = BlockHandle(
            allocate_items(f.n, item_size(job.forecast.storage), word(job, job.forecast.storage)));
    job.place = out.block();
}

template <class VerbTable>
bool run_shared(ScalarJob& job, Frame& f, const VerbTable& verb, Outcome& out) {
    job.run = run_on_worker;
    job.collect = collect;
    job.cell = f.cell ? *f.cell : Space{};
    job.count = f.n;
    job.result = f.left;
    job.left = *f.left;
    job.right = f.right ? *f.right : Space{};
    job.frame = f;
    job.frame.left = &job.left;
    job.frame.right = f.right ? &job.right : nullptr;
    job.frame.cell = &job.cell;
    if (verb.op_size != 0) // else what there is of it is permanent
        job.frame.op = std::memcpy(job.op.data(), f.op, verb.op_size);
    job.frame.quads = job.quads;
    job.failed = nullptr;
    job.forecast = forecast(job.frame, verb);
    if (!pays(job))
        return false;
    job.parts.resize(std::max<std::size_t>(job.parts.size(), cpus));
    take_place(job, job.frame, out);
    job.quads[quad_ct] = f.quads[quad_ct];
    referencepoint(&job.quads[quad_ct]);
    publish(job);
    try {
        run_stream(job, 0, f.top);
    } catch (const ErrorJump& jump) {
        if (jump.value == -1)
            job.failed = &f;
        else
            give_up_job();
        settle_coprocessors();
        throw;
    } catch (...) {
        give_up_job();
        settle_coprocessors();
        throw;
    }
    out.kinds = job.parts[0].kinds;
    return true;
}

} // namespace

bool share(Frame& f, const DyadicVerb& verb, Outcome& out) {
    ScalarJob& job = the_job();
    job.dyadic = &verb;
    job.monadic = nullptr;
    return run_shared(job, f, verb, out);
}

bool share(Frame& f, const MonadicVerb& verb, Outcome& out) {
    ScalarJob& job = the_job();
    job.dyadic = nullptr;
    job.monadic = &verb;
    return run_shared(job, f, verb, out);
}

void keep_operand(void* block, std::uint32_t n) {
    ScalarJob& job = the_job();
    job.kept[job.keeps++] = {block, n};
}

void complete_later(Space& result) {
    the_job().made = &result;
}

} // namespace tessor
