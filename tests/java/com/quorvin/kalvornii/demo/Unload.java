package com.quorvin.kalvornii.demo;

import static com.quorvin.kalvornii.simulated.SimulatedDevice.Backend.AIDL;
import static com.quorvin.kalvornii.simulated.SimulatedDevice.Backend.HIDL;

import com.quorvin.kalvornii.KvNativeInterface;
import com.quorvin.kalvornii.simulated.SimulatedDevice;
import java.net.URL;
import java.net.URLClassLoader;
import java.util.Objects;

/**
 * Unloads the library with its class loader while a restart waits and the HIDL watcher stays
 * registered, lets both go on, and loads the library again.
 */
final class Unload {
    public static void main(String[] arguments) throws Exception {
        SimulatedDevice.start("mixed");
        expect("board name", "KV-MAIN-V3", loadAndAskBoardName());

        SimulatedDevice.get().kill(AIDL, "factory");
        expect("power, before the restart", null, SimulatedDevice.get().holder("power"));
        awaitUnload();

        SimulatedDevice.get().kill(HIDL, "light");
        SimulatedDevice.get().restart(HIDL, "light");
        SimulatedDevice.get().restart(AIDL, "factory");
        SimulatedDevice.get().settle();
        expect("light, announced to the watcher", HIDL, SimulatedDevice.get().holder("light"));
        expect("power, of the restart", AIDL, SimulatedDevice.get().holder("power"));

        expect("board name after the second load", "KV-MAIN-V3", loadAndAskBoardName());
    }

    /** Through a class loader that is garbage once this returns. */
    private static Object loadAndAskBoardName() throws Exception {
        // The class is only asked where it is; initialised, it would load the library itself.
        URL classes = KvNativeInterface.class.getProtectionDomain().getCodeSource().getLocation();
        ClassLoader loader =
                new URLClassLoader(new URL[] {classes}, ClassLoader.getPlatformClassLoader());
        Class<?> library = loader.loadClass(KvNativeInterface.class.getName());
        return library.getMethod("nativeGetBoardName")
                .invoke(library.getDeclaredConstructor().newInstance());
    }

    /** JNI_OnUnload releases the HIDL services too, which the death of an AIDL one leaves held. */
    private static void awaitUnload() throws InterruptedException {
        expect("light, before the unload", HIDL, SimulatedDevice.get().holder("light"));
        for (int i = 0; i < 100 && SimulatedDevice.get().holder("light") == HIDL; i++) {
            System.gc();
            Thread.sleep(10);
        }
        expect("light, after the unload", null, SimulatedDevice.get().holder("light"));
        Thread.sleep(100);  // JNI_OnUnload has yet to return before anything is unmapped
    }

    private static void expect(String what, Object expected, Object found) {
        if (!Objects.equals(expected, found)) {
            throw new AssertionError(what + ": expected " + expected + ", found " + found);
        }
    }
}
