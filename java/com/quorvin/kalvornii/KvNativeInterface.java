package com.quorvin.kalvornii;

/**
 * The running test's way to the device's hardware services.
 *
 * <p>Loading this class loads the native library, which connects every service: over AIDL where the
 * device offers it, over HIDL otherwise. Loading waits for services that the device declares but
 * has not started yet. Any thread may call; a call runs on its own thread and returns when the
 * service has answered. Nothing throws. For every method, unless it says otherwise:
 *
 * <ul>
 *   <li>Absent service: an int method returns {@link #SERVICE_ABSENT}, a String method {@link
 *       #INVALID_SERVICE}. A service is absent when the device has none, and for the while between
 *       its death and its return. The death of one service takes along all others of the same
 *       backend until they are reconnected; an AIDL service may be served over HIDL meanwhile, and
 *       HIDL services come back only when one of them registers anew.
 *   <li>Null argument: nothing is sent; the library logs which argument is null, and the result is
 *       that of an absent service.
 *   <li>Ids, scenes, commands and parameters mean what the service says, and are passed on as they
 *       are; so are the service's own codes and texts in the results. An empty text is "", not
 *       null. What is not UTF-8 in a service's text becomes U+FFFD.
 *   <li>Out of memory: a text or array that cannot be made is null, and a static field that cannot
 *       be written stays as it was; the log tells what was lost.
 *   <li>A call that breaks off on its way (the service dies during it) tells Java nothing of that:
 *       text methods return "", int methods 0, save where "broken call" says otherwise. Over HIDL a
 *       broken call of an int method ends the process, save where "broken call" names HIDL.
 * </ul>
 *
 * <p>The comment above each group of methods names the service that serves them.
 */
public class KvNativeInterface {
    /** The result of an int method whose service is absent. */
    public static final int SERVICE_ABSENT = -9999;

    /** The result of a String method whose service is absent. */
    public static final String INVALID_SERVICE = "INVALID_SERVICE";

    /**
     * What the last storage test had to say (its text, whatever the result), or the measured value
     * of the last power test. Written by {@link #nativeStorageJoblessTest}, {@link
     * #nativeStorageTestJudge} and {@link #nativePowerTest}; the last call to finish wins.
     */
    public static String currentValue;

    /** The details of the last {@link #nativeI2cTest} that did not fail. */
    public static String i2cInfo;

    static {
        System.loadLibrary("_kalvorn");
    }

    // Test results (factory service)

    /**
     * Reads the stored result of a test.
     *
     * @param id the test
     * @return the result text; null when the service reports failure (-1)
     */
    public native String nativeGetTestResult(int id);

    /**
     * Stores the result of a test. Broken call: -1 over AIDL.
     *
     * @param value the result text
     * @param id the test
     * @return the service's result; -1 is failure
     */
    public native int nativeSetTestResult(String value, int id);

    // Chip and storage self-tests (factory service)

    /**
     * Runs a SoC test. Broken call: "success:value=0", or "0" for the two secure scenes.
     *
     * @param testScene the scene
     * @param para its parameters
     * @return for the scenes "secure_flash" and "secure_weaver" the service's code as decimal text;
     *     for others the service's text, or "success:value=0" when the code is 0 and the text empty
     */
    public native String nativeSocTest(String testScene, String para);

    /**
     * Runs a DDR memory test, or asks how it stands. Broken call: as for code 0.
     *
     * @param testScene the scene
     * @param para its parameters
     * @param status "getstate" to ask only
     * @return for "getstate" "busy" on code 0 and "done" on any other; for another status "success"
     *     on 0, "get ddr result fail" on -1, and the service's text on any other code
     */
    public native String nativeDdrTest(String testScene, String para, String status);

    /**
     * Runs an eMMC storage test. Broken call: "success".
     *
     * @param testScene the scene
     * @param para its parameters
     * @param status handed to the service
     * @return "success" on code 0, "failed" on 1, "get emmc result fail" on -1, and the service's
     *     text on any other code
     */
    public native String nativeEmmcTest(String testScene, String para, String status);

    /**
     * Runs the storage test of an idle device. The service's text goes to {@link #currentValue},
     * whatever the code. Broken call: 0 and an empty text, over HIDL too.
     *
     * @param testScene the scene
     * @param para its parameters
     * @return the service's code
     */
    public native int nativeStorageJoblessTest(String testScene, String para);

    /**
     * Judges a storage test. The service's text goes to {@link #currentValue}, whatever the code.
     * Broken call: 0 and an empty text, over HIDL too.
     *
     * @param testScene the scene
     * @return the service's code
     */
    public native int nativeStorageTestJudge(String testScene);

    /**
     * Runs the DDR mapper test. Broken call: 0, over HIDL too.
     *
     * @param status the status word for the service
     * @return the service's code; its text is only logged
     */
    public native int nativeDdrMapperTest(String status);

    /**
     * Reads a piece of SoC information.
     *
     * @param testScene which one
     * @return the service's text; when its code is not 0, an AIDL device still returns the text and
     *     a HIDL device ""
     */
    public native String nativeGetSocInfo(String testScene);

    /**
     * Sets a piece of SoC information.
     *
     * @param testScene which one
     * @param para the value
     * @return the service's result
     */
    public native int nativeSetSocInfo(String testScene, String para);

    /**
     * Runs the FPGA test.
     *
     * @param testScene the scene
     * @return the service's text, whatever its code
     */
    public native String nativeFpgaTest(String testScene);

    /**
     * Checks the I2C buses. On success the details go to {@link #i2cInfo}. Broken call: "", and
     * {@link #i2cInfo} becomes "" too.
     *
     * @return the check result; when the service reports failure (-1), "Get i2c result error" on an
     *     AIDL and "get i2c result error" on a HIDL device, and {@link #i2cInfo} stays as it was
     */
    public native String nativeI2cTest();

    /**
     * Reads the board's version name.
     *
     * @return the name; when the service's code is not 0, an AIDL device still returns the text and
     *     a HIDL device ""
     */
    public native String nativeGetBoardName();

    /**
     * Sets the watchdog. Broken call: 0, over HIDL too.
     *
     * @param cmd the command for the service
     * @return the service's code; its text is only logged
     */
    public native int nativeOemWatchdogSetFunc(String cmd);

    /**
     * Sets the routing of JTAG to the SD card. Broken call: 0, over HIDL too.
     *
     * @param cmd the command for the service
     * @return the service's code; its text is only logged
     */
    public native int nativeOemJtagtosdSetFunc(String cmd);

    // Recovery request (no service)

    /**
     * Asks the bootloader, on the misc partition, for recovery at the next boot. Does not reboot.
     *
     * @return 0, or -1 when the partition cannot be opened or not wholly written
     */
    public native int nativeWriteMiscToRecovery();

    // NV items and running-test info (factory service)

    /**
     * Reads an NV item.
     *
     * @param nvId the item
     * @return its text; null when the service reports failure (-1)
     */
    public native String nativeReadNvValue(int nvId);

    /**
     * Writes an NV item.
     *
     * @param value the text
     * @param nvId the item
     * @return the service's result; -1 is failure
     */
    public native int nativeWriteNvValue(String value, int nvId);

    /**
     * Writes running-test info into the NV item that holds it.
     *
     * @param nvId the item
     * @param value the text
     * @return the service's result
     */
    public native int nativeSetKvInfoToOem(int nvId, String value);

    /**
     * Reads running-test info. Unlike {@link #nativeReadNvValue} it takes only 0 for success.
     *
     * @param nvId the NV item that holds it
     * @return the text; null when the service's code is not 0
     */
    public native String nativeGetKvInfoFromOem(int nvId);

    // Touch panel (touch service)

    /**
     * Runs the touch panel's capacitance test. Broken call: 0, over HIDL too.
     *
     * @param id the test
     * @return the service's result; its text is only logged
     */
    public native int nativeGetCapacitanceTestResult(int id);

    // Fingerprint (fingerprint service)

    /**
     * Sends a command to the fingerprint service. Broken call: -1 over AIDL.
     *
     * @param cmd the command
     * @param rawData logged by its length only, never sent; may be null
     * @return the service's result
     */
    public native int sendCmdToFingerprintHalNative(int cmd, byte[] rawData);

    // Camera (camera service)

    /**
     * Drives the flash light. Only the low 8 bits of either number are sent: signed (-128 to 127)
     * on an AIDL device, unsigned (0 to 255) on a HIDL device.
     *
     * @param type which light
     * @param value the setting
     * @return the service's result
     */
    public native int nativeSetFlashLight(int type, int value);

    /**
     * Reads the result of the ageing of the camera's optical image stabiliser.
     *
     * @return the service's result
     */
    public native int nativeGetOisAgingResult();

    // Sensors (sensors service)

    /**
     * Gives a sensor a self-test command.
     *
     * @param sensorId the sensor
     * @param command the command for the service
     * @return the service's result
     */
    public native int nativeSetSensorSelfTest(int sensorId, int command);

    /**
     * Reads the result of a sensor's self-test.
     *
     * @param sensorId the sensor
     * @return the service's result
     */
    public native int nativeGetSensorSelfTestResult(int sensorId);

    /**
     * Runs a parameter command of a sensor.
     *
     * @param sensorId the sensor
     * @param mainCmd the command
     * @param subCmd its sub-command
     * @param length the length for the service
     * @return the service's text, whatever its code
     */
    public native String nativeGetSensorPara(int sensorId, int mainCmd, int subCmd, int length);

    // Display panel (display service)

    /**
     * Shows a test pattern or runs a panel check of the display service: "white", "black", "red",
     * "green", "blue", "pcd_errflag", "checksum1" to "checksum3", "bl_onpen_close",
     * "dot_inversion", "checkreg", "column_inversion", "lcd_power_on_off", "bl_switch", "gpu_slt".
     *
     * @param scene one of these, exactly; any other text asks for the unknown scene, which has the
     *     number 20 on an AIDL and 18 on a HIDL device
     * @return the service's text
     */
    public native String nativeDisplayTest(String scene);

    // Display panel, general and low-voltage scenes (display_factory service)

    /**
     * Runs a scene of the display factory service: "lcd_general", "vertical_scene1" to
     * "vertical_scene4", "restore_display_scene", "lvd_set_code_scene1" to "lvd_set_code_scene4",
     * "lvd_restore_scene1" to "lvd_restore_scene4", "avdd_get_result".
     *
     * @param scene one of these, exactly; any other text asks for the unknown scene, number 40
     * @return the service's text
     */
    public native String nativeDisplayGeneralTest(String scene);

    // Refresh-rate test (chip service)

    /**
     * Starts the refresh-rate test.
     *
     * @return the parameters of the test that was started
     */
    public native String nativeStartHertzTest();

    /**
     * Stops the refresh-rate test.
     *
     * @return the service's result
     */
    public native int nativeStopHertzTest();

    /**
     * Reads the result of the refresh-rate test.
     *
     * @return the service's result
     */
    public native int nativeGetHertzTestResult();

    // Lights (light service)

    /**
     * Sets the brightness of a light.
     *
     * @param type which light
     * @param brightness the brightness
     * @return the service's result
     */
    public native int nativeSetLedBrightness(int type, int brightness);

    // End of ageing (display service)

    /**
     * Marks the end of ageing. It is the display service that keeps the mark.
     *
     * @return the service's result
     */
    public native int nativeSetEndTimeOfAgeing();

    // Power states (power service)

    /**
     * Sets a power state.
     *
     * @param testScene the scene
     * @param para its parameters
     * @return the service's result
     */
    public native int nativeSetPowerState(String testScene, String para);

    /**
     * Reads a power state.
     *
     * @param scene the scene
     * @return the state; "" when the service's code is not 0
     */
    public native String nativeGetPowerState(String scene);

    // Commands (factory service)

    /**
     * Passes a command on. Broken call: "native setCommand fail" over HIDL.
     *
     * @param first the command
     * @param second its argument
     * @return the service's reply, or "native setCommand fail" when its code is not 0
     */
    public native String nativeSetCommand(String first, String second);

    /**
     * Passes a Wi-Fi command on. Broken call: "setWifiCommand fail" over HIDL.
     *
     * @param testScene the scene
     * @param cmd the command
     * @return the service's reply, or "setWifiCommand fail" when the service reports failure
     */
    public native String nativeSetWifiCommand(String testScene, String cmd);

    // SoC voltage (factory service)

    /**
     * Asks for the voltage offset of a SoC.
     *
     * @param socId the SoC's id
     * @return the service's text, whatever its code
     */
    public native String nativeSocVoltageOffsetById(int socId);

    // Lights that stay on (light service)

    /**
     * Keeps a light on, or lets it go.
     *
     * @param type which light
     * @param status the status for the service
     * @return the service's result
     */
    public native int nativeSetLedAlwaysOnStatus(int type, int status);

    // Power test (power service)

    /**
     * Runs a power test. {@link #currentValue} gets the measured value on a HIDL device, whatever
     * the result, and "" on an AIDL device, whose service has none. Broken call: 0, over HIDL too.
     *
     * @param testScene the scene
     * @param testTimes the number of runs, as text
     * @param maxLimit the upper limit, as text
     * @param minLimit the lower limit, as text
     * @return the service's result
     */
    public native int nativePowerTest(
            String testScene, String testTimes, String maxLimit, String minLimit);

    // CPU (factory service)

    /**
     * Locks the big CPU cores, or releases them. Broken call: -1 over AIDL.
     *
     * @param lockOrRelease which of the two
     * @return the service's result
     */
    public native int nativeLockOrReleaseBigCpu(int lockOrRelease);

    // Big data (factory service)

    /**
     * Reports an operation record.
     *
     * @param operation the record, all texts set
     * @return the service's result; {@link #SERVICE_ABSENT} also when a text of the record is null
     */
    public native int nativeSendBigDataOperation(BigDataOperation operation);

    /**
     * Reports a value record.
     *
     * @param value the record, all texts set
     * @return the service's result; {@link #SERVICE_ABSENT} also when a text of the record is null
     */
    public native int nativeSendBigDataValue(BigDataValue value);

    // Light sleep (factory service)

    /**
     * Enters or leaves light sleep. Broken call: -1 over AIDL.
     *
     * @param action which of the two
     * @return the service's result
     */
    public native int nativeSetLightSleep(int action);

    // Control flags (factory service; over HIDL of version 1.1, an older one counts as absent)

    /**
     * Reads a control flag. The service is told that at most 1024 bytes are taken; what it answers
     * is handed on whole.
     *
     * @param flagId the flag
     * @return its text, whatever the service's code; "" for a flag without one
     */
    public native String nativeGetControlFlag(int flagId);

    /**
     * Sets a control flag. A text of more than 1024 bytes is sent too, but a service does not give
     * it back. Broken call: -1 over AIDL.
     *
     * @param flagId the flag
     * @param flag its text
     * @return the service's result
     */
    public native int nativeSetControlFlag(int flagId, String flag);

    // Where the running test stands (factory service; over HIDL of version 1.1)

    /**
     * Tells station and cycle. Both are kept as a text of two digits each, station 5 and cycle 12
     * as "0512"; the cycle always begins at the third character, so a station of 100 or more, or of
     * -10 or less, is cut short.
     *
     * @param stationId the station, 0 to 99
     * @param cycle the cycle, 0 to 99, or -100 when there is none, which clears the text
     * @return the service's result
     */
    public native int nativeSetTestCycle(int stationId, int cycle);

    /**
     * Tells the names of the current test items, of at most 64 bytes each. Broken call: -1 in its
     * element over AIDL; over HIDL it ends the process.
     *
     * @param mainItemName the main item
     * @param subItemName the sub item
     * @return two elements, the service's results for the main and the sub item; both are {@link
     *     #SERVICE_ABSENT} when the service is absent or a name null
     */
    public native int[] nativeSetTestItemName(String mainItemName, String subItemName);

    // Modem log (radio service)

    /**
     * Switches the modem's log. Broken call: -1 over AIDL.
     *
     * @param state the state for the service
     * @return the service's result
     */
    public native int nativeSetModemLogState(int state);

    // Manufacture mode and signature (factory service; the mode over HIDL of version 1.1)

    /**
     * Tells whether the device is in manufacture mode. Broken call: -1 over AIDL.
     *
     * @return the service's value
     */
    public native int nativeGetManufactureMode();

    /**
     * Writes a signature, as lower-case hexadecimal text, to NV item 11 for the device to verify.
     * Broken call: {@link #SERVICE_ABSENT} over AIDL.
     *
     * @param signature the bytes of the signature
     * @return the service's result; -1 also for an empty signature
     */
    public native int nativeGetVerifySignatureResult(byte[] signature);

    // Refresh rate (display service; over HIDL of version 1.1, an older one counts as absent)

    /**
     * Reads the refresh-rate configuration. A HIDL device first switches the panel to the rate of
     * that number, and reads nothing when the switch is rejected. A broken switch over HIDL ends
     * the process.
     *
     * @param scene the scene; on a HIDL device the index of the rate
     * @return the configuration; null when the service rejects the read or the switch
     */
    public native String nativeGetScreenFpsConfigByScenes(int scene);

    /**
     * Switches the panel's refresh rate. Broken call: -1 over AIDL.
     *
     * @param freqIndex the index of the rate
     * @return 0, or -1 when the service answers anything but 0
     */
    public native int nativeSetScreenFps(int freqIndex);

    // MCU (no service)

    /**
     * Only logs the two numbers and the length of the data; no command goes out.
     *
     * @param first a number to log
     * @param second a number to log
     * @param data its length is logged; null is logged as such
     * @return 0
     */
    public native int nativeSendCommandMcu(int first, int second, byte[] data);

    /**
     * Only logs the first number and a reference to this object; the second number is not looked
     * at.
     *
     * @param result a number to log
     * @param serviceId not used
     * @return 0
     */
    public native int nativeUnregisterCallback(int result, int serviceId);

    // Frame interpolation (no service; the display chip vendor's library)

    /**
     * Sets the display chip's frame-interpolation mode.
     *
     * @param mode the mode, the vendor library's first argument
     * @param rate the vendor library's second argument
     * @return the library's result; -1 also when the library or its entry point is missing
     */
    public native int nativeSetInperpolateFrameMode(int mode, int rate);

    /**
     * Reads the frame-interpolation mode.
     *
     * @return the library's result; -1 also when the library or its entry point is missing
     */
    public native int nativeGetInperpolateFrameCurMode();

    /**
     * Reads the result of the frame-interpolation test.
     *
     * @return the library's result; -1 also when the library or its entry point is missing
     */
    public native int nativeGetInperpolateFrameTestResult();

    /**
     * Returns from frame interpolation to the panel's own refresh rate.
     *
     * @return the library's result; -1 also when the library or its entry point is missing
     */
    public native int nativeInperpolateFrameRecoverFreshRate();

    // SIM (sim service; AIDL only)

    /**
     * Switches the power of the SIM.
     *
     * @param state the state for the service
     * @return the service's result
     */
    public native int nativeSetSimPowerState(int state);

    // Satellite chip (satellite service; AIDL only)

    /**
     * Runs the satellite chip's CP test.
     *
     * @param scene the scene
     * @return the service's text
     */
    public native String nativeChipTtTestCp(String scene);

    /**
     * Measures the satellite chip's received signal strength.
     *
     * @param scene the scene
     * @return the service's text
     */
    public native String nativeChipTtRssiTest(String scene);

    /**
     * Tests the satellite chip's power amplifier.
     *
     * @param scene the scene
     * @return the service's text
     */
    public native String nativeChipTtTestPa(String scene);

    /**
     * Tests the satellite chip's power detector.
     *
     * @param scene the scene
     * @return the service's text
     */
    public native String nativeChipTtTestPdet(String scene);
}
