#pragma once

#include "harness.h"

using Lines = std::vector<std::string>;
using Args = std::vector<java::Arg>;

/** What the methods that ask a service have in common, a row each. Lists are parted by "|". */
struct Row {
    const char* service;
    const char* method;
    Args args;
    const char* names;  // of the arguments that may be null, in order
    const char* asks;   // the service's method, once for each call
    const char* aidlFails;
    const char* hidlFails;  // null: reading the failed call's value ends the process
    int unreleased;         // texts kept on purpose
    int linesBefore;        // the call, the dispatch's own included
    const char* absent;
    const char* aidlFailsLog;     // without the dispatch's line, as the next
    const char* aidlAbsentLine;   // with those before it, when the service is looked at late
    const char* hidlAbsentLines;  // null: no HIDL side
    const char* hidlFailsLog = nullptr;
};

/** One for each method of jni/methods.inc that asks a service. */
extern const std::vector<Row> kRows;

Lines Split(const std::string& text);
