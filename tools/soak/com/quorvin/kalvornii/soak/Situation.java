package com.quorvin.kalvornii.soak;

import static com.quorvin.kalvornii.simulated.SimulatedDevice.Backend.AIDL;
import static com.quorvin.kalvornii.simulated.SimulatedDevice.Backend.HIDL;

import com.quorvin.kalvornii.simulated.SimulatedDevice;
import com.quorvin.kalvornii.simulated.SimulatedDevice.Backend;
import java.util.Arrays;
import java.util.List;

/** What the services of the device may answer now. One thread changes it, callers look at it. */
final class Situation {
    /** How a call is served. */
    enum Way {
        AIDL,
        HIDL,
        ABSENT,
        NO_SERVICE
    }

    final List<String> services = SimulatedDevice.get().services();
    /** The backend of each service on this device; null for none. */
    private final Backend[] backends;
    private final int[] may;
    private volatile int changes;

    Situation() {
        backends = services.stream().map(SimulatedDevice.get()::runs).toArray(Backend[]::new);
        may = new int[services.size()];
        allHealthy();
    }

    /** Where a call finds what it may answer; -1 for one that asks no service. */
    int indexOf(Call call) {
        return call.service == null ? -1 : services.indexOf(call.service);
    }

    Backend backend(int service) {
        return service < 0 ? null : backends[service];
    }

    Way way(int service, int may) {
        if (service < 0) return Way.NO_SERVICE;
        if (may == Call.ABSENT) return Way.ABSENT;
        return backends[service] == HIDL ? Way.HIDL : Way.AIDL;
    }

    boolean has(Backend backend) {
        return Arrays.asList(backends).contains(backend);
    }

    int changes() {
        return changes;
    }

    int may(int service) {
        return service < 0 ? Call.HEALTHY : may[service];
    }

    /** At rest, all that the device has are there. */
    void allHealthy() {
        for (int i = 0; i < may.length; i++) {
            may[i] = backends[i] == null ? Call.ABSENT : Call.HEALTHY;
        }
        changes++;
    }

    /** Whoever is held over AIDL may die during a call, be away or have come back. */
    void aidlInTurmoil() {
        for (int i = 0; i < may.length; i++) if (backends[i] == AIDL) may[i] = Call.ANYTHING;
        changes++;
    }

    /**
     * After deaths of which the library has heard, while those that died are still away: of HIDL
     * all are released; of AIDL they are connected again one by one, up to the first that is away.
     */
    void away() {
        boolean aidlWaits = false;
        boolean hidlDied = false;
        for (int i = 0; i < may.length; i++) {
            hidlDied |= backends[i] == HIDL && SimulatedDevice.get().runs(services.get(i)) == null;
        }
        for (int i = 0; i < may.length; i++) {
            aidlWaits |= backends[i] == AIDL && SimulatedDevice.get().runs(services.get(i)) == null;
            boolean absent = backends[i] == null || (backends[i] == AIDL ? aidlWaits : hidlDied);
            may[i] = absent ? Call.ABSENT : Call.HEALTHY;
        }
        changes++;
    }

    /** What is away may be back at any moment. */
    void coming() {
        for (int i = 0; i < may.length; i++) if (backends[i] != null) may[i] |= Call.HEALTHY;
        changes++;
    }
}
