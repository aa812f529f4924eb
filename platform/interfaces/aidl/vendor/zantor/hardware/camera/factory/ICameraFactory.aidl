package vendor.zantor.hardware.camera.factory;

/** The camera factory service. */
interface ICameraFactory {
    int getOisAgingResult();
    int setFlashLight(byte type, byte value);
}
