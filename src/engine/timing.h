// Timing of sentences and of single instructions.
//
// A sentence is timed from the start of its run to its end, where the reports are printed. With
// opstime every instruction that completes makes an entry in its record; attend::timing keeps the
// machine off the short road then. What a nested run takes, and does, is its own: the cell that
// started it counts from the end of that run.
#pragma once

#include "values/instructions.h"

namespace tessor {

/// Whether a sentence is to be reported.
bool sentences_timed();

/// At the start of a fresh run, and at its end, when all work is done. The reports go to standard
/// output.
void begin_sentence();
void report_sentence();

/// Prints the time since the sentence began, which begins anew.
void writetime();

/// Notes of a cell: where its time and its operations count from.
struct CellStart {
    double time = 0;
    double operations = 0;
};
extern CellStart cell_start;

/// Before a cell, and at the end of an instruction that completed.
void begin_cell();
void enter_timing(int operation);

/// What a nested activation keeps of the cell that started it.
struct ActivationStart {
    double entry = 0;
    double cell_time = 0;
};
ActivationStart begin_activation();
void end_activation(const ActivationStart& start);

} // namespace tessor
