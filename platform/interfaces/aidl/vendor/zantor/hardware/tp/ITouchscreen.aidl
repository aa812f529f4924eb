package vendor.zantor.hardware.tp;

import vendor.zantor.hardware.tp.ITPIntString;

/** The touch panel service. */
interface ITouchscreen {
    void zantor_tp_capacitance_test(int id, out ITPIntString reply);
}
