#include "engine/streams.h"

#include "io/writers/exception.h"
#include "parallel/coprocessor.h"
#include "values/array.h"

#include <algorithm>
#include <cstdio>

namespace tessor {

namespace {

bool single_integer(const Space& value) {
    return (value.type & (ISSCALAR | ISONEELEMENT)) != 0 && (value.type & HASINTEGER) != 0
           && has_data(value) && first_tag(value) == tag::integer;
}

std::uint32_t capped(const Activation& run, std::uint32_t streams) {
    if (streams <= cpus)
        return streams;
    std::fflush(stdout);
    std::fprintf(stderr, "WARNING: 204 - requested more than started processors (%ld):",
                 static_cast<long>(cpus));
    exception(204, &run.top, run.now);
    return cpus;
}

} // namespace

Next parallel(Activation& run) {
    if (!single_integer(*run.top))
        return failed(run, 202);
    const std::int32_t streams = std::max(element_at(*run.top, 0).integer, 1);
    processors = capped(run, static_cast<std::uint32_t>(streams));
    pop(run);
    return Next::advance;
}

Next serial(Activation& run) {
    if (!single_integer(*run.top))
        return failed(run, 203);
    const auto largest = static_cast<std::uint32_t>(element_at(*run.top, 0).integer);
    MIN_PARALLEL = static_cast<std::int32_t>(std::max(largest, processors));
    pop(run);
    return Next::advance;
}

} // namespace tessor
