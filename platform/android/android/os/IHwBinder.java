package android.os;

/** Stands in for the platform's interface, with the methods that are used. */
public interface IHwBinder {
    /** Is told of a death. */
    interface DeathRecipient {
        /** Called once, on a HIDL thread. */
        void serviceDied(long cookie);
    }

    /** Has the recipient told when the service dies; false when it is dead already. */
    boolean linkToDeath(DeathRecipient recipient, long cookie);
}
