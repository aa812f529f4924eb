package vendor.zantor.hardware.qxdisplay.displayfactory;

import vendor.zantor.hardware.qxdisplay.displayfactory.DisplayFactoryOutInfo;

/** The display factory service: general and low-voltage-detection scenes. */
interface IDisplayFactory {
    void displayGeneralTest(int type, int scene, out DisplayFactoryOutInfo info);
}
