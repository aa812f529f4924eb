package vendor.zantor.hardware.biometrics.fingerprint;

/** An open fingerprint session. */
interface ISession {
    int sendCmdToHal(int cmd);
}
