#pragma once

#include <istream>
#include <optional>

#include "harness.h"

using Lines = std::vector<std::string>;
using Args = std::vector<java::Arg>;

/** What samples/methods.samples tells of a method. */
struct Sample {
    /** Over one backend. Results are as java::Call() renders them. */
    struct Side {
        Lines asks;                   // "writeNv(7, \"abc\")", without backend and service
        std::vector<Answer> answers;  // to each
        std::string result;
        Lines log;  // a ">" where the service is called; empty when the backend has no such method
        std::optional<std::string> brokenResult;  // none: a call that breaks off ends the process
        Lines brokenLog;
        std::optional<Lines> absentLog;
        std::string field;  // the static field that it fills; "" for none
        std::string fieldText;
    };

    std::string where;    // "samples/methods.samples:12"
    std::string service;  // "" for none
    std::string method;
    Args args;
    /** The names of the arguments, in order. */
    Lines names;
    std::string healthyResult;
    std::string absentResult;
    /** Texts that are not released, on purpose. */
    int keeps = 0;
    Side aidl, hidl;

    const Side& On(Backend backend) const { return backend == kAidl ? aidl : hidl; }
    std::vector<Backend> Backends() const {
        if (service.empty()) return {};
        if (hidl.log.empty()) return {kAidl};
        return {kAidl, kHidl};
    }
};

/** The samples of a file; what is wrong in it throws an error that names the file and the line. */
std::vector<Sample> ReadSamples(std::istream& file, const std::string& name);

/** Those of samples/methods.samples. */
const std::vector<Sample>& Samples();
