#include "values/shared.h"

namespace tessor {

bool Trace = false;
bool Step = false;
bool stepping = false;
bool endprocess = false;
bool PrintOut = false;
int A_Problem = 0;
short violations = 0;

double operators = 0;
constinit thread_local double operations = 0;
double verbs = 0;
constinit thread_local double flopos = 0;
constinit thread_local double op_flops = 0;
constinit thread_local double total_flops = 0;

bool timing = false;
bool performance = false;
bool processor_performance = false;
std::int32_t MHz = 0;
bool opstime = false;
bool constraindirectories = true;

std::atomic<std::uint32_t> attention{0};

} // namespace tessor
