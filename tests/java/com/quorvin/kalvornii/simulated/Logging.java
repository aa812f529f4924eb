package com.quorvin.kalvornii.simulated;

import com.quorvin.kalvornii.KvNativeInterface;

/** Says that it runs, and ends when it has read a line, while six threads go on logging. */
public class Logging {
    public static void main(String[] arguments) throws Exception {
        KvNativeInterface kv = new KvNativeInterface();
        for (int i = 0; i < 6; i++) {
            Thread thread = new Thread(() -> {
                for (;;) kv.nativeGetBoardName();
            });
            thread.setDaemon(true);
            thread.start();
        }
        System.out.println("logging");
        System.in.read();
        System.exit(7);
    }
}
