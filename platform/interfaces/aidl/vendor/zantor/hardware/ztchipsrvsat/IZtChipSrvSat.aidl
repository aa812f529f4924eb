package vendor.zantor.hardware.ztchipsrvsat;

/** The satellite chip's tests. */
interface IZtChipSrvSat {
    @utf8InCpp String chipTtTestCp(@utf8InCpp String testScene);
    @utf8InCpp String chipTtTestPdet(@utf8InCpp String testScene);
    @utf8InCpp String chipTtTestPa(@utf8InCpp String testScene);
    @utf8InCpp String chipTtRssiTest(@utf8InCpp String testScene);
}
