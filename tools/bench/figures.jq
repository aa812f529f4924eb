# The lines "/PLACE VALUE" of all processes become the figures: medians, of a ratio its interval besides and how
# many processes it is of; of a load and a death the least, since their time is not one thread's: what else the
# machine does is in all others.

def median: sort | .[length / 2 | floor];

# The 95 % confidence interval of the median, by order statistics: whatever the distribution. $below of the values
# are left out at each end; .sum is how probable it is that no more of them are below the median.
def interval:
    sort as $values | length as $count
    | {below: -1, term: pow(0.5; $count), sum: pow(0.5; $count)}
    | until(.sum > 0.025; .below += 1 | .term *= ($count - .below) / (.below + 1) | .sum += .term)
    | if .below < 0 then {low: null, high: null}  # too few values
      else {low: $values[.below], high: $values[$count - 1 - .below]} end;

[inputs | capture("^/(?<place>\\S+) (?<value>.*)")] | group_by(.place)
| reduce .[] as $lines ({};
    ($lines[0].place / "/") as $place
    | setpath($place; $lines | map(.value)
        | if $place[-1] == "fault" then first
          elif $place[0] == "loads" then map(tonumber) | min
          elif $place[-1] == "timesFloor" then map(tonumber) | {median: median} + interval + {processes: length}
          else map(tonumber) | median end))
