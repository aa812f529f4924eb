package com.quorvin.kalvornii.demo;

import com.quorvin.kalvornii.KvNativeInterface;

import java.net.URL;
import java.net.URLClassLoader;

/**
 * Unloads the library with its class loader while a restart waits and the HIDL watcher stays
 * registered, lets both go on, and loads the library again.
 */
final class Unload {
    public static void main(String[] arguments) throws Exception {
        SimulatedDevice.start("mixed", false);
        expect("board name", "KV-MAIN-V3", loadAndAskBoardName());

        SimulatedDevice.kill("AIDL", "factory");
        awaitRestart();
        awaitUnload();

        SimulatedDevice.kill("HIDL", "light");
        SimulatedDevice.restart("HIDL", "light");
        SimulatedDevice.restart("AIDL", "factory");
        expect("device at rest", true, SimulatedDevice.settle());
        expect("light, announced to the watcher", "HIDL", SimulatedDevice.holder("light"));
        expect("power, of the restart", "AIDL", SimulatedDevice.holder("power"));

        expect("board name after the second load", "KV-MAIN-V3", loadAndAskBoardName());
        SimulatedDevice.stop();
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

    /** The restart begins by releasing all AIDL services, then waits for the one that has died. */
    private static void awaitRestart() throws InterruptedException {
        for (int i = 0; i < 100 && SimulatedDevice.holder("power").equals("AIDL"); i++) {
            Thread.sleep(10);
        }
        expect("power, before the restart", "none", SimulatedDevice.holder("power"));
    }

    /** JNI_OnUnload releases the HIDL services too, which the death of an AIDL one leaves held. */
    private static void awaitUnload() throws InterruptedException {
        expect("light, before the unload", "HIDL", SimulatedDevice.holder("light"));
        for (int i = 0; i < 100 && SimulatedDevice.holder("light").equals("HIDL"); i++) {
            System.gc();
            Thread.sleep(10);
        }
        expect("light, after the unload", "none", SimulatedDevice.holder("light"));
        Thread.sleep(100);  // JNI_OnUnload has yet to return before anything is unmapped
    }

    private static void expect(String what, Object expected, Object found) {
        if (!expected.equals(found)) {
            throw new AssertionError(what + ": expected " + expected + ", found " + found);
        }
    }
}
