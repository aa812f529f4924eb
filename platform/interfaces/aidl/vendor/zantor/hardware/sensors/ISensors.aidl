package vendor.zantor.hardware.sensors;

import vendor.zantor.hardware.sensors.ZtSensorString;

/** The sensor service. */
interface ISensors {
    int getSensorSelfTestResult(int sensorId);
    int handleSensorPara(int sensorId, int mainCmd, int subCmd, int length,
            out ZtSensorString result, out int[] values);
    int setSensorSelfTest(int sensorId, int command);
}
