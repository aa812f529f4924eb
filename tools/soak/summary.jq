# What a terminal shows of soak.json.
def grouped: tostring | gsub("(?<digit>[0-9])(?=([0-9]{3})+$)"; .digit + ",");
def judged($judgement; figure): if $judgement == null then "too short to judge" else figure end;

(.devices[]
    | (.wrong[] as $wrong | "Wrong on the device \(.device), after \($wrong.afterDeaths) deaths "
        + "(\($wrong.circumstances)): \($wrong.method) \($wrong.verdict)",
            "Its arguments: \($wrong.arguments)"),
      (select(.failed) | "The device \(.device) failed: \(.end)"),
      (select(.log != []) | "The last \(.log | length) lines of the log:", .log[])),
.verdict,
"\(.calls | grouped) calls (and \(.measuringCalls | grouped) to measure what each keeps), "
    + "\(.deaths | grouped) deaths, \(.wrongAnswers) wrong in \(.seconds) s: \(.end)",
"growth per million calls: \(judged(.doesNotGrow; .growthPerMillionCalls | round | grouped + " bytes")); "
    + "references left by deaths: \(.referencesLeft)",
"resident size of the last halves moved by: \(judged(.isFlat; .residentMoved * 10000 | round / 100 | "\(.) %"))"
