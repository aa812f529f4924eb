package vendor.zantor.hardware.qxfactoryinterface;

import vendor.zantor.hardware.qxfactoryinterface.FmdCmdData;
import vendor.zantor.hardware.qxfactoryinterface.FmdMsg;
import vendor.zantor.hardware.qxfactoryinterface.IFacBoolStr;
import vendor.zantor.hardware.qxfactoryinterface.IFacIntStr;
import vendor.zantor.hardware.qxfactoryinterface.IFacIntStrStr;

/**
 * The factory service. The declaration order fixes the transaction codes; a device's own interface
 * has further methods between these.
 */
interface IQxFactoryInterface {
    void getControlFlag(int flagId, int maxSize, out IFacIntStr reply);
    void readNv(int nvId, out IFacIntStr reply);
    void i2cTest(int maxSize, out IFacIntStrStr reply);
    void getVersionName(out IFacIntStr reply);
    int getManufactureMode();
    void getTestResult(int id, out IFacIntStr reply);
    void fpgaTest(@utf8InCpp String testScene, int maxSize, out IFacIntStr reply);
    int setSocInfo(@utf8InCpp String testScene, @utf8InCpp String para);
    int sendBigData(in FmdMsg message);
    int sendBigDataOperation(in FmdCmdData data);
    void setCommand(@utf8InCpp String first, @utf8InCpp String second, int capacity,
            out IFacIntStr reply);
    int setControlFlag(int flagId, @utf8InCpp String flag, int flagSize);
    int writeNv(int nvId, @utf8InCpp String value);
    int setLightSleep(int action);
    int setTestResult(int id, @utf8InCpp String value);
    int writeOemInfo(int id, int length, in byte[] data);
    int writeOemSubInfo(int id, int subId, int length, in byte[] data);
    void setWifiCommand(@utf8InCpp String testScene, @utf8InCpp String cmd, int capacity,
            out IFacBoolStr reply);
    void ddrMapperTest(@utf8InCpp String status, out IFacIntStr reply);
    void ddrTest(@utf8InCpp String testScene, @utf8InCpp String para, @utf8InCpp String status,
            out IFacIntStr reply);
    void emmcTest(@utf8InCpp String testScene, @utf8InCpp String para, @utf8InCpp String status,
            out IFacIntStr reply);
    void storageJoblessTest(@utf8InCpp String testScene, @utf8InCpp String para,
            out IFacIntStr reply);
    void storageTestJudge(@utf8InCpp String testScene, out IFacIntStr reply);
    void setWatchdog(@utf8InCpp String cmd, out IFacIntStr reply);
    void getSocInfo(@utf8InCpp String testScene, out IFacIntStr reply);
    void setJtagtosd(@utf8InCpp String cmd, out IFacIntStr reply);
    void socTest(@utf8InCpp String testScene, @utf8InCpp String para, out IFacIntStr reply);
    void socVoltageOffsetById(int socId, out IFacIntStr reply);
    int lockBigCpu(int lockOrRelease);
}
