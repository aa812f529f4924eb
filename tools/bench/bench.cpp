// Measures what the library adds to a call: each method on each backend through Java, and, for a
// method of each shape, the floor and the bare proxy. The built library, a real virtual machine,
// the simulated device; one thread.

#include "bench.h"

#include <stdio.h>
#include <string.h>
#include <unistd.h>

/**
 * "kalvorn_bench WHAT BACKEND [FILTER]": "load"; "look-ups"; or "calls" of all methods, of the
 * "shapes" that have a floor alone, or of each method "once", with FILTER in their names.
 */
int main(int argc, char** argv) {
    using bench::Backend;
    bench::Demand(argc > 2, "what, and over which backend?");
    const std::string what = argv[1];
    const Backend backend = strcmp(argv[2], "aidl") == 0 ? Backend::kAidl : Backend::kHidl;
    if (what == "load") {
        bench::MeasureLoad(backend);
    } else if (what == "look-ups") {
        bench::MeasureLookUps(backend);
    } else {
        bench::MeasureCalls(backend,
                            {what == "once", what == "shapes", argc > 3 ? argv[3] : ""});
    }
    fflush(stdout);
    _exit(0);  // the virtual machine's own end is of no interest
}
