package vendor.zantor.hardware.qxfactoryinterface;

import vendor.zantor.hardware.qxfactoryinterface.FmdEvent;

/** A big-data message; numEvents is the number of elements of events. */
parcelable FmdMsg {
    int version = 0;
    int dataSource = 0;
    int numEvents = 0;
    FmdEvent[] events;
}
