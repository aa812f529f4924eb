package vendor.zantor.hardware.biometrics.fingerprint;

import android.hardware.biometrics.fingerprint.ISessionCallback;
import vendor.zantor.hardware.biometrics.fingerprint.ISession;

/** The fingerprint service; it refuses a session by answering null. */
interface IFingerprint {
    @nullable ISession createSession(int sensorId, int userId, @nullable ISessionCallback callback);
}
