#pragma once

#include <map>
#include <string>

/**
 * What a method asks its service, on the generated proxy itself: by Java name, with the arguments
 * that the operation sends when it is called as Calls.java does.
 */
namespace bench {

using BareCalls = std::map<std::string, void (*)()>;

/** Connects proxies of its own to the running services; empties them before the device ends. */
const BareCalls& ConnectAidl();
const BareCalls& ConnectHidl();
void LetGoOfAidl();
void LetGoOfHidl();

/** Looks all services of the backend up once and links to their death; returns how many. */
int LookUpAidl();
int LookUpHidl();

}  // namespace bench
