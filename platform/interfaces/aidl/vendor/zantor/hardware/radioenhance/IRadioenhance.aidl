package vendor.zantor.hardware.radioenhance;

/** The radio-enhance service. */
interface IRadioenhance {
    int setModemLogState(int state);
}
