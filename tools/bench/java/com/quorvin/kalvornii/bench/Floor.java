package com.quorvin.kalvornii.bench;

import com.quorvin.kalvornii.BigDataOperation;

/** One method of each shape, as in KvNativeInterface, served by the least that has to be done. */
class Floor {
    static {
        System.loadLibrary("kalvorn_floor");
    }

    native int nativeGetSensorSelfTestResult(int sensorId);

    native int nativeWriteNvValue(String value, int nvId);

    native String nativeReadNvValue(int nvId);

    native String nativeEmmcTest(String testScene, String para, String status);

    native int nativeGetVerifySignatureResult(byte[] signature);

    native int nativeSendBigDataOperation(BigDataOperation operation);

    native int[] nativeSetTestItemName(String mainItemName, String subItemName);
}
