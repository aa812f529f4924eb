#pragma once

#include <jni.h>
#include <stddef.h>

#include <functional>
#include <map>
#include <string>

#include "arguments.h"

/**
 * What the parts of ./bench share. A process measures one thing, since where it lies in memory is
 * in every figure: it prints lines "/PLACE VALUE", of which the place is that of the value among
 * all figures.
 */
namespace bench {

struct Choice {
    bool quick;          // everything once
    bool shapesOnly;     // only methods that have a floor
    std::string filter;  // only methods with this in their name
};

/** Nanoseconds of the thread's processor time a call, and how many times the floor's that is. */
void MeasureCalls(Backend backend, const Choice& choice);

/** The load of the library, and one death and restart. */
void MeasureLoad(Backend backend);

/** The same look-ups and links without the library. */
void MeasureLookUps(Backend backend);

/**
 * What the methods that have a floor ask their service, by Java name, on generated proxies, with
 * the arguments that the operation sends when it is called as Calls.java does.
 */
using BareCalls = std::map<std::string, std::function<void()>>;
BareCalls ConnectProxies(Backend backend);

/** Looks all services of the backend up once and links to their death; returns how many. */
size_t LookUpAll(Backend backend);

/** Starts the virtual machine, without the checks of JNI calls; once. */
JNIEnv* StartVm();

/** Every line is put together and goes nowhere. */
void LogToNowhere();

/** Ends the program with this line, if the condition does not hold. */
void Demand(bool condition, const char* what);

}  // namespace bench
