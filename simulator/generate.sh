#!/bin/bash
# What the simulated device is made of besides its sources, from the C++ headers of the vendor interfaces and
# the samples: generate.sh HEADERS SAMPLES OUTPUT_DIR
#   aidl_services.inc, hidl_services.inc   for each interface, but not of the NDK binder, a Simulated<Interface>
#                                          that asks the device for the answer to each call
#   service_methods.inc                    the names of all methods, each with whether HIDL returns one number,
#                                          which cannot be read when the call has failed
#   usual_answers.inc                      what a healthy device answers
set -euo pipefail
samples=$(realpath "$2")
output=$(realpath "$3")
cd "$1"
export LC_ALL=C

# overrides HEADER: of a method's parameters, those that are filled or called back come last, as its results.
overrides() {
    awk '/^ +virtual .* = 0;$/ {
        line = $0
        sub(/^ +virtual /, "", line)
        sub(/ = 0;$/, "", line)
        name = parameters = line
        sub(/\(.*/, "", name)
        sub(/.* /, "", name)
        gsub(/^[^(]*\(|\)$/, "", parameters)
        count = split(parameters, each, ", ")
        shown = results = ""
        for (i = 1; i <= count; i++) {
            parameter = each[i]
            sub(/.* /, "", parameter)
            if (each[i] ~ /\* |_cb /) results = results ", " parameter
            else shown = shown (shown == "" ? "" : ", ") "Show(" parameter ")"
        }
        printf "    %s override {\n        return Reply(Ask(\"%s\", {%s})%s);\n    }\n", line, name, shown, results
    }' "$1"
}

# with_methods DIR...: the headers that declare an interface with methods of its own.
with_methods() { grep -rlE --include='I*.h' '^ +virtual .* = 0;$' "$@" | sort; }

# services DIR PREFIX: PREFIX is what the name of the base class has in place of the I.
services() {
    local header folder interface
    for header in $(with_methods "$1/vendor"); do
        folder=::$(sed -E 's,/([0-9]+)\.([0-9]+),/V\1_\2,; s,/,::,g' <<<"$(dirname "${header#"$1"/}")")
        interface=$(basename "$header" .h)
        echo "template <> class Simulated<$folder::$interface> : public Answering<$folder::$2${interface#I}> {"
        echo "    using Answering::Answering;"
        overrides "$header"
        echo "};"
    done
}

# usual_answers: the texts are those of the first sample that asks the method; the code is the sample's result,
# where that is a number, else 0: a sample's own code may be odd.
usual_answers() {
    awk '# word(): takes the next one off the answer; what is in quotes is one.
        function word(  end, taken) {
            end = answer ~ /^\047/ ? index(substr(answer, 2), "\047") + 1 : match(answer " ", " ") - 1
            taken = substr(answer, 1, end)
            answer = substr(answer, end + 2)
            gsub(/\047/, "", taken)
            return taken
        }
        /^[^ #]/ { usual = match($0, / = -?[0-9]+$/) ? substr($0, RSTART + 3) : 0 }
        !/^ +[|]/ { asks = sub(/^ +((aidl|hidl) )?asks +/, "") }
        asks {
            sub(/^ +[|] /, "")
            count = split($0, calls, " [|] ")
            for (i = 1; i <= count; i++) {
                name = answer = calls[i]
                sub(/\(.*/, "", name)
                sub(/.*\./, "", name)
                sub(/.*\) -> /, "", answer)
                word()
                text = word()
                detail = word()
                if (!seen[name]++ && (usual != 0 || text != ""))
                    printf "{\"%s\", {%s, \"%s\", \"%s\"}},\n", name, usual, text, detail
            }
        }' "$samples"
}

services aidl_cpp/include Bn >"$output/aidl_services.inc"
services hidl I >"$output/hidl_services.inc"
with_methods aidl_cpp/include/vendor aidl_ndk/include/aidl/vendor hidl/vendor | xargs cat |
    sed -nE 's/^ +virtual [^(]*Return<int32_t> ([A-Za-z0-9_]+)\(.* = 0;$/\1 true/p
        s/^ +virtual [^(]* ([A-Za-z0-9_]+)\(.* = 0;$/\1 false/p' |
    sort -k 1,1f -k 2,2r | awk '$1 != last { printf "{\"%s\", %s},\n", $1, $2 } { last = $1 }' >"$output/service_methods.inc"
usual_answers >"$output/usual_answers.inc"
