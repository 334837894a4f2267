#ifndef BENCH_TIMING_H
#define BENCH_TIMING_H

#include "Operation.h"

#include <vector>

// Times an operation: subject and peers take turns, so that what the machine does beside hits all
// of them. What counts is the median of the rounds.
namespace Timing {

struct Result
{
    QString contender;
    double nanoseconds = 0; // per call
    double ratio = 0;       // how many times dearer the subject is
    double target = 0;      // 0 where there is none
    bool isMet = false;
};

// The subject comes first; quick is good for a look, not for a record.
std::vector<Result> time(const Operation& operation, bool quick);

} // namespace Timing

#endif
