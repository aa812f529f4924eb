package com.quorvin.kalvornii.ctl;

import static com.quorvin.kalvornii.simulated.SimulatedDevice.Backend.AIDL;

import com.quorvin.kalvornii.simulated.SimulatedDevice;

/**
 * The command on a device whose satellite service is declared, and starts only later; meanwhile the
 * power service dies and comes back.
 */
public final class LateService {
    private LateService() {}

    public static void main(String[] arguments) {
        SimulatedDevice.get().declare(AIDL, "satellite");
        Thread events = new Thread(() -> {
            pause(4500);
            SimulatedDevice.get().kill(AIDL, "power");
            SimulatedDevice.get().restart(AIDL, "power");
            pause(500);
            SimulatedDevice.get().restart(AIDL, "satellite");
        });
        events.setDaemon(true);
        events.start();
        Main.main(arguments);
    }

    private static void pause(long milliseconds) {
        try {
            Thread.sleep(milliseconds);
        } catch (InterruptedException e) {
            throw new IllegalStateException(e);
        }
    }
}
