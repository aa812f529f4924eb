#pragma once

#include <jni.h>

#include <string>
#include <utility>
#include <vector>

#include "arguments.h"

/** The virtual machine and the two libraries in it, the log, and what the terminal is told. */
namespace bench {

/** Starts the virtual machine, without the checks of JNI calls; once. */
JNIEnv* StartVm();

/** A built library that is loaded: "_kalvorn" or "kalvorn_floor". */
class Library {
  public:
    explicit Library(const char* name);
    void Load() const;
    void Unload() const;

  private:
    using OnLoad = jint(JavaVM*, void*);
    using OnUnload = void(JavaVM*, void*);
    OnLoad* mOnLoad;
    OnUnload* mOnUnload;
};

/** The log goes nowhere, or where it goes by default; every priority is logged. */
void LogToNowhere();
void LogByDefault();

/** Writes how far it is, when there is a terminal to see it. */
class Progress {
  public:
    explicit Progress(std::string what, int expected = 0)
        : mWhat(std::move(what)), mExpected(expected) {}
    void Expect(int steps) { mExpected += steps; }
    void Step();

    /** To be called before stderr is given to the log. */
    static int FindTerminal();

  private:
    const std::string mWhat;
    int mExpected, mDone = 0, mShown = -1;
};

/** Of at least one. */
double Median(std::vector<double> values);

/** Ends the program with this line, if the condition does not hold. */
void Demand(bool condition, const char* what);

}  // namespace bench
