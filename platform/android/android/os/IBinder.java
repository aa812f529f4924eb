package android.os;

/** Stands in for the platform's interface, with the methods that are used. */
public interface IBinder {
    /** Is told of a death. */
    interface DeathRecipient {
        /** Called once, on a binder thread. */
        void binderDied();
    }

    /** Whether no notice of its death has come, even if its recipients have to wait for theirs. */
    boolean isBinderAlive();

    /**
     * Has the recipient told when the service dies.
     *
     * @throws RemoteException when it is dead already
     */
    void linkToDeath(DeathRecipient recipient, int flags) throws RemoteException;
}
