package android.hardware.biometrics.fingerprint;

/** Callbacks of a session; nothing here uses one. */
interface ISessionCallback {
}
