package com.quorvin.kalvornii.soak;

import static com.quorvin.kalvornii.simulated.SimulatedDevice.Backend.AIDL;
import static com.quorvin.kalvornii.simulated.SimulatedDevice.Backend.HIDL;

import com.quorvin.kalvornii.simulated.SimulatedDevice;
import com.quorvin.kalvornii.simulated.SimulatedDevice.Backend;
import java.util.LinkedHashMap;
import java.util.Map;
import java.util.function.ToIntFunction;

/** What the services of the device may answer now. One thread changes it, callers look at it. */
final class Situation {
    static final SimulatedDevice DEVICE = SimulatedDevice.get();

    /** How a call is served. */
    enum Route { AIDL, HIDL, ABSENT, NO_SERVICE }

    /** A service, or what stands for it where no service is asked. */
    static final class Service {
        final String name;
        /** As the device was at its start; null for none. */
        final Backend backend;
        private final int atRest;
        volatile int may;

        Service(String name) {
            this.name = name;
            backend = name == null ? null : DEVICE.runs(name);
            atRest = name == null || backend != null ? Call.HEALTHY : Call.ABSENT;
        }

        boolean isAway() {
            return backend != null && DEVICE.runs(name) == null;
        }

        /** Of a call that may be answered so. */
        Route route(int may) {
            if (name == null) return Route.NO_SERVICE;
            if (may == Call.ABSENT) return Route.ABSENT;
            return backend == HIDL ? Route.HIDL : Route.AIDL;
        }
    }

    final Map<String, Service> services = new LinkedHashMap<>();
    volatile int changes;

    Situation() {
        services.put(null, new Service(null));
        DEVICE.services().forEach(name -> services.put(name, new Service(name)));
        allHealthy();
    }

    boolean has(Backend backend) {
        return services.values().stream().anyMatch(service -> service.backend == backend);
    }

    /** At rest, all that the device has are there. */
    void allHealthy() {
        change(service -> service.atRest);
    }

    /** Whoever is held over AIDL may die during a call, be away or have come back. */
    void aidlInTurmoil() {
        change(service -> service.backend == AIDL ? Call.ANYTHING : service.may);
    }

    /**
     * After deaths of which the library has heard, while those that died are still away: of HIDL
     * all are released; of AIDL they are connected again one by one, up to the first that is away.
     */
    void away() {
        boolean[] aidlWaits = {false};
        boolean hidlDied = services.values().stream().anyMatch(
                service -> service.backend == HIDL && service.isAway());
        change(service -> {
            aidlWaits[0] |= service.backend == AIDL && service.isAway();
            boolean isReleased =
                    service.backend == AIDL ? aidlWaits[0] : service.backend == HIDL && hidlDied;
            return isReleased ? Call.ABSENT : service.may;
        });
    }

    /** What is away may be back at any moment. */
    void coming() {
        change(service -> service.backend == null ? service.may : service.may | Call.HEALTHY);
    }

    private void change(ToIntFunction<Service> may) {
        services.values().forEach(service -> service.may = may.applyAsInt(service));
        changes++;
    }
}
