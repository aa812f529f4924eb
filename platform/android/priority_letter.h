#pragma once

namespace kalvorn::host {

/** The letter by which logcat shows a priority of the log; "?" for none. */
inline char PriorityLetter(int priority) {
    constexpr char kLetters[] = "??VDIWEF";
    return priority >= 0 && priority < 8 ? kLetters[priority] : '?';
}

}  // namespace kalvorn::host
