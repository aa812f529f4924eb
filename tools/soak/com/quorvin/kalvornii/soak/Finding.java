package com.quorvin.kalvornii.soak;

import com.quorvin.kalvornii.soak.Situation.Way;
import java.io.Serializable;

/** What the process of a device tells the soak, one after the other. */
interface Finding extends Serializable {
    /** How far it is, now and then. */
    record State(long calls, long deaths, long resident) implements Finding {}

    /** Memory in bytes; the others are counts. */
    record Sample(long calls, long deaths, long resident, long inUse, long liveServices,
            long deathLinks, long listeners, long notifications, long threads, long files)
            implements Finding {}

    /** How long the library took to be whole again over HIDL, and what had died. */
    record Restart(long listeners, String what, long microseconds) implements Finding {}

    /** What so many deaths of all services at once led to. */
    record AfterDeathsOfAll(long deaths, long listeners, long notifications) implements Finding {}

    /** By how many bytes so many calls or deaths made the native heap grow. */
    record Grown(String what, int stretches, long count, double typicalBytesEach, long totalBytes)
            implements Finding {}

    /** What each of so many calls with texts of sixteen characters left of native memory. */
    record Kept(String method, Way way, boolean onPurpose, double bytesPerCall, long calls)
            implements Finding {
        /** A kept text takes 24 bytes at least. */
        boolean isExpected() {
            return onPurpose == bytesPerCall >= 8;
        }
    }

    /** How long the calls took that were served this way. */
    record Latency(String method, Way way, Histogram durations) implements Finding {}

    record Wrong(String method, String verdict, long afterDeaths, String circumstances)
            implements Finding {}

    /** The last; "done", "stopped" early, or why it could not go on. */
    record End(String how, boolean isFailure) implements Finding {}
}
