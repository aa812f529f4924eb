#pragma once

#include <map>
#include <string>

#include "arguments.h"

/** What loading costs, and one death and restart, each the median of several fresh processes. */
namespace bench {

/** By the names of kLoadFigures. */
using LoadFigures = std::map<std::string, double>;

struct LoadFigure {
    const char* name;
    const char* what;
};

/** Of the library, and "bare" of the same look-ups and links without it; in the order of the table.
 */
constexpr LoadFigure kLoadFigures[] = {
        {"mapUs", "mapping and relocating the library"},
        {"loadLibraryUs", "System.loadLibrary and the class that calls it"},
        {"connectorsUs", "  its connectors, with 2 to 4 lines a service"},
        {"connectorsBareUs", "    their look-ups and death links done bare"},
        {"registrationUs", "  after them: registration of the methods"},
        {"connectorsAgainUs", "JNI_OnLoad once more: connectors"},
        {"connectorsAgainBareUs", "    look-ups and death links done bare"},
        {"registrationAgainUs", "  registration"},
        {"deathUs", "a death and its restart, until all is held again"},
        {"deathBareUs", "    the same, look-ups and links done bare"},
        {"touchedKiB", "the library's pages that were touched"},
        {"writtenKiB", "  of which written"},
        {"residentKiB", "resident memory more than before the load"},
};

/** One of these processes, which prints its figures; `what` is "library" or "bare". */
int RunOneLoad(const std::string& backend, const std::string& what);

LoadFigures MeasureLoad(Backend backend, int processes);

}  // namespace bench
