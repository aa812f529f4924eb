#pragma once

#include <jni.h>

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

/** Ends the program with this line, if the condition does not hold. */
void Demand(bool condition, const char* what);

}  // namespace bench
