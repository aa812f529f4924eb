package com.quorvin.kalvornii.ctl;

import android.util.Log;
import java.util.concurrent.locks.LockSupport;

/** A call beside a thread that logs without pause. */
public final class Noise {
    private Noise() {}

    public static void main(String[] arguments) {
        Thread noise = new Thread(() -> {
            for (;;) {
                Log.i("KalvornNative", "noise");
                LockSupport.parkNanos(1_000_000);
            }
        });
        noise.setDaemon(true);
        noise.start();
        Main.main(new String[] {"call", "-v", "getboardname"});
    }
}
