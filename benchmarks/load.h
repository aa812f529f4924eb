#pragma once

#include <string>
#include <vector>

#include "arguments.h"

/** What loading costs, and one death and restart, each the median of several fresh processes. */
namespace bench {

struct LoadFigures {
    Backend backend;
    // Of the library, in microseconds; its memory in KiB.
    double map, load, connectors, registration, connectorsAgain, registrationAgain, death;
    double touched, written, resident;
    // Of the same look-ups and links done bare.
    double lookUps, lookUpsAgain, deathBare;
};

/** One of these processes, which prints its figures; `what` is "library" or "bare". */
int RunOneLoad(const std::string& backend, const std::string& what);

LoadFigures MeasureLoad(Backend backend, int processes);

}  // namespace bench
