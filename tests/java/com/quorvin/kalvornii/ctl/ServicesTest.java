package com.quorvin.kalvornii.ctl;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertNotNull;
import static org.junit.jupiter.api.Assertions.assertNull;

import java.util.List;
import org.junit.jupiter.api.Test;

class ServicesTest {
    private static final String FINGERPRINT =
            "vendor.zantor.hardware.biometrics.fingerprint.IFingerprint/default";

    private final Services services = new Services();

    private static LogLine line(int tid, String text) {
        LogLine line =
                LogLine.parse("11-21 15:56:18.123  4157 " + tid + " I KalvornNative: " + text);
        assertNotNull(line, text);
        return line;
    }

    /** Lines "THREAD TEXT". */
    private void log(String... lines) {
        for (String line : lines) {
            services.take(line(line.charAt(0) - '0', line.substring(2)));
        }
    }

    private void expect(String service, String backend, String said) {
        assertEquals(backend, services.named(service).backend(), service);
        assertEquals(said, services.named(service).said(), service);
    }

    @Test
    void followALoad() {
        assertNull(services.lookedFor());
        log("1 JNI_OnLoad", "1 InitKvNativeManager", "1 InitAidlFactoryInterface",
                "1 g_aidlFactory linkToDeath", "1 InitAidlSensors", "1 aidlSensors is null",
                "1 InitHidlSensors", "2 enter into ReinitHal, fqName:x, name:x, preexisting:1",
                "1 g_sensors linkToDeath", "1 InitAidlFingerprintService",
                "1 " + FINGERPRINT + " is not Declared", "1 InitHidlFingerprintService",
                "1 g_qxFingerprint is null", "1 InitChipSrvSat");
        expect("factory", "AIDL", "g_aidlFactory linkToDeath");
        expect("sensors", "HIDL", "aidlSensors is null; g_sensors linkToDeath");
        expect("fingerprint", "none", FINGERPRINT + " is not Declared; g_qxFingerprint is null");
        expect("satellite", "none", "");
        assertEquals("vendor.zantor.hardware.ztchipsrvsat.IZtChipSrvSat/ztchipsrv_sat",
                services.lookedFor());
        assertEquals(services.named("sensors").hidl.instance, services.named("sensors").instance());
    }

    @Test
    void followDeathsOnSeveralThreads() {
        log("1 InitAidlPower", "1 g_aidlPower linkToDeath", "1 InitAidlLight",
                "1 aidlLight is null", "1 InitHidlLight", "1 g_light linkToDeath",
                "2 ExitKvManager by aidl");
        expect("power", "none", "ExitKvManager by aidl");
        expect("light", "HIDL", "aidlLight is null; g_light linkToDeath");
        // The threads take turns; a dead name is linked, given back, and then gone.
        log("2 InitAidlPower", "3 InitAidlLight", "2 g_aidlPower linkToDeath",
                "3 aidlLight is null", "2 aidlPower is null", "3 InitAidlPower",
                "3 g_aidlPower linkToDeath", "2 InitAidlLight", "2 aidlLight is null",
                "4 ExitKvManager by hidl");
        expect("power", "AIDL", "g_aidlPower linkToDeath");
        expect("light", "none", "aidlLight is null; ExitKvManager by hidl");
        // Connected already: no line but the start. Other lines of the thread come from elsewhere.
        log("5 InitAidlPower", "5 InitChipSrvSat", "5 g_aidlChipSat is null", "5 GetBoardName",
                "5 ChipSrvSat linkToDeath");
        expect("power", "AIDL", "g_aidlPower linkToDeath");
        expect("satellite", "none", "g_aidlChipSat is null");
    }

    @Test
    void tellADenialFromAnAbsence() {
        log("1 InitAidlPower", "1 aidlPower is null", "1 InitHidlPower", "1 g_Power is null");
        String[][] lines = {// who logs it, what, and whether it concerns us
                {"99 99 E SELinux ",
                        "avc:  denied  { find } for pid=4157 uid=1000 name=vendor.zantor"
                                + ".hardware.light.ILight/default scontext=u:r:shell:s0 tcontext=u:object_r:x:s0 "
                                + "tclass=service_manager permissive=0",
                        "light"},
                {"99 99 E SELinux ",
                        "avc:  denied  { find } for interface=vendor.zantor.hardware.power"
                                + "::IQXPower sid=u:r:shell:s0 pid=4157 scontext=u:r:shell:s0 "
                                + "tclass=hwservice_manager permissive=0",
                        "power"},
                {"4157 9 W ServiceManagerCppClient",
                        "Failed to get isDeclared for vendor.zantor"
                                + ".hardware.ztsimradio.IZtsimradio/slot1: Status(-1, EX_SECURITY): "
                                + "'SELinux denied.'",
                        "sim"},
                {"99 99 E SELinux ",
                        "avc:  denied  { find } for pid=41570 uid=1000 name=vendor.zantor"
                                + ".hardware.tp.ITouchscreen/default scontext=x permissive=0",
                        ""},
                {"99 99 E SELinux ",
                        "avc:  denied  { find } for pid=4157 uid=1000 name=vendor.zantor"
                                + ".hardware.tp.ITouchscreen/default scontext=x permissive=1",
                        ""},
                {"98 9 W ServiceManagerCppClient",
                        "Failed to get isDeclared for vendor.zantor"
                                + ".hardware.tp.ITouchscreen/default: Status(-1, EX_SECURITY): "
                                + "'SELinux denied.'",
                        ""}};
        for (String[] line : lines) {
            LogLine parsed = LogLine.parse("11-21 15:56:18.123 " + line[0] + ": " + line[1]);
            assertNotNull(parsed);
            services.takeDenials(List.of(parsed), 4157);
            if (!line[2].isEmpty()) {
                assertEquals(true, services.named(line[2]).isDenied(), line[2]);
            }
        }
        assertEquals(3, services.all().stream().filter(Services.Service::isDenied).count());
        expect("power", "none", "aidlPower is null; g_Power is null (denied to this process)");
    }
}
