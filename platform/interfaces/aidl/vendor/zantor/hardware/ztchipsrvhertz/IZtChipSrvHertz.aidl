package vendor.zantor.hardware.ztchipsrvhertz;

/** The chip service's refresh-rate tests. */
interface IZtChipSrvHertz {
    int getHertzTestResult();
    @utf8InCpp String startHertzTest();
    int stopHertzTest();
}
