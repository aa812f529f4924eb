import static com.quorvin.kalvornii.simulated.SimulatedDevice.Backend.AIDL;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.quorvin.kalvornii.KvNativeInterface;
import com.quorvin.kalvornii.simulated.KalvornDevice;
import com.quorvin.kalvornii.simulated.SimulatedDevice;
import java.util.List;
import org.junit.jupiter.api.Test;

/**
 * How an application's reaction to absent, dying and failing services is tested without a device.
 */
@KalvornDevice("mixed")
class BurnInTest {
    /** The application: a step of its run-in. */
    private static final class BurnIn {
        private final KvNativeInterface kv = new KvNativeInterface();

        /** The verdict on the storage of this device. */
        String storage() {
            String result = kv.nativeEmmcTest("emmc_rw", "size=1G", "start");
            if (KvNativeInterface.INVALID_SERVICE.equals(result)) return "no service, try later";
            return "success".equals(result) ? "PASS" : "FAIL: " + result;
        }

        String satellite() {
            String result = kv.nativeChipTtTestCp("cp");
            return KvNativeInterface.INVALID_SERVICE.equals(result) ? "not fitted" : result;
        }

        boolean keepsResult(int test, String result) {
            return kv.nativeSetTestResult(result, test) == 0;
        }
    }

    private final BurnIn burnIn = new BurnIn();

    @Test
    void passesOnAHealthyDevice(SimulatedDevice device) {
        assertEquals("PASS", burnIn.storage());
        assertEquals(List.of("aidl factory.emmcTest(\"emmc_rw\", \"size=1G\", \"start\")"),
                device.received());
    }

    @Test
    void tellsWhatFailed(SimulatedDevice device) {
        device.on("emmcTest").answer(5, "bad block 17");
        assertEquals("FAIL: bad block 17", burnIn.storage());
    }

    @Test
    void knowsThatThereIsNoSatelliteChip() {
        assertEquals("not fitted", burnIn.satellite());
    }

    @Test
    void waitsForAServiceThatDies(SimulatedDevice device) {
        device.kill(AIDL, "factory");
        assertEquals("no service, try later", burnIn.storage());

        device.restart(AIDL, "factory");
        device.settle();
        assertEquals("PASS", burnIn.storage());
    }

    @Test
    void noticesThatAResultWasNotKept(SimulatedDevice device) {
        device.on("aidl setTestResult").times(1).fail();
        assertFalse(burnIn.keepsResult(3, "PASS"));
        assertTrue(burnIn.keepsResult(3, "PASS"));
    }
}
