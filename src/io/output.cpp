#include "io/output.h"

#include "io/writers/dump.h"

#include <cstdio>

namespace tessor {

Next output(Activation& run) {
    const Space& top = *run.top;
    const bool line = run.now->suboperation == op::PRINT;
    const bool empty = (top.type & ISEMPTY) != 0;
    if (!empty || !line)
        dump(stdout, "", top);
    if (line)
        std::fputc('\n', stdout);
    if (run.now->operation == op::PRINT)
        pop(run);
    return Next::advance;
}

} // namespace tessor
