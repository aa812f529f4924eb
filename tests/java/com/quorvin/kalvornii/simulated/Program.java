package com.quorvin.kalvornii.simulated;

import com.quorvin.kalvornii.KvNativeInterface;
import java.util.Scanner;

/** Prints what four services answer, after each line that it reads. */
public class Program {
    public static void main(String[] arguments) {
        KvNativeInterface kv = new KvNativeInterface();
        Scanner lines = new Scanner(System.in);
        do {
            System.out.println(kv.nativeGetBoardName() + " " + kv.nativeSetLedBrightness(1, 2) + " "
                    + kv.nativeChipTtTestCp("cp") + " " + kv.nativeWriteMiscToRecovery());
        } while (lines.hasNextLine() && !lines.nextLine().isEmpty());
        System.exit(arguments.length);
    }
}
