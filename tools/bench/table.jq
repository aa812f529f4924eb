# What ./bench prints of the figures.
def blanks: [range(.)] | map(" ") | add // "";
def left($width): . + ($width - length | blanks);
def right($width): ($width - length | blanks) + .;
def number: if type == "number" then round | tostring else "-" end;
def ratio: if type != "number" then "-" else (1000 * . | round) as $all
    | "\($all / 1000 | floor).\($all % 1000 + 1000 | tostring | .[1:])" end;
def row($head): "\(.method | left(32)) \(.over | left(4)) " + $head;
def judged: if .low == null then "" elif .low > $goal then "above" elif .high > $goal then "not decided" else "" end;

. as $all
| [.calls.aidl // {} | keys[] as $method | ("aidl", "hidl") as $over
    | $all.calls[$over][$method] // empty | . + {$method, $over}] as $calls
| "\(.machine), \(.cores) cores",
"",
"A method of each shape, beside its floor and the bare proxy; nanoseconds a call.",
"Goal: at most \($goal) times the floor. Interval: of the median, at 95 %.",
"",
({method: "method", over: "over"} | row("   Java   floor   proxy x floor  interval")),
($calls[] | select(.timesFloor) | row([.java, .floor, .proxy | number | right(7)] | join(" "))
    + (.timesFloor | " \(.median | ratio | right(7))  \(.low | ratio) to \(.high | ratio)  \(judged)")),
"",
"Each method, with the log going nowhere, and to where it goes by default.",
"",
({method: "method", over: "over"} | row("   Java with log")),
($calls[] | row("\(.java | number | right(7)) \(.javaWithLog | number | right(8)) \(.fault // "")")),
(.loads // empty
    | "",
    "Loading, and a death with its restart: the least of \($loads) processes; microseconds and KiB.",
    "",
    "\("" | left(52))    aidl    hidl",
    (["mapUs", "mapping and relocating the library"],
        ["loadLibraryUs", "System.loadLibrary and the class that calls it"],
        ["connectorsUs", "  its connectors, with 2 to 4 lines a service"],
        ["connectorsBareUs", "    their look-ups and death links done bare"],
        ["registrationUs", "  after them: registration of the methods"],
        ["deathUs", "a death and its restart, until all is held again"],
        ["deathBareUs", "    the same, look-ups and links done bare"],
        ["touchedKiB", "the library's pages that were touched"],
        ["writtenKiB", "  of which written"],
        ["residentKiB", "resident memory more than before the load"]) as [$name, $what]
    | "\($what | left(52)) \(.aidl[$name] | number | right(7)) \(.hidl[$name] | number | right(7))")
