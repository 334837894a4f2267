#ifndef BENCH_PROGRAM_H
#define BENCH_PROGRAM_H

#include "Operation.h"

/*
 * What every benchmark program does: it times its operations and prints a table, or counts.
 *
 *   bench_Name [--quick] [--plot] [--counts] [--folder FOLDER] [--tsv FILE]
 *
 * --plot      times the points of the plots as well
 * --counts    counts instead
 * --folder    where the files lie that are worked on; a fresh folder unless it is given
 * --tsv       appends the results to the file, for machines
 */
namespace Program {

int run(int argc, char* argv[], const Operations& operations);

} // namespace Program

#endif
