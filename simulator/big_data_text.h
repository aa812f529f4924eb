#pragma once

#include <string>

namespace kalvorn::device {

// How the big-data records are recorded: the same text for the same values, whichever backend
// carried them.

template <typename CmdData>
std::string OperationText(const CmdData& data) {
    return "version=" + std::to_string(data.version) +
           " commandId=" + std::to_string(data.commandId) +
           " operation=" + std::to_string(data.operation) + " cycle=" + std::to_string(data.cycle) +
           " station=" + std::string(data.station) + " bsn=" + std::string(data.bsn);
}

template <typename Event>
std::string EventText(const Event& event) {
    return "errorCode=" + std::to_string(event.errorCode) +
           " itemId=" + std::to_string(event.itemId) + " cycle=" + std::to_string(event.cycle) +
           " result=" + std::string(event.result) + " station=" + std::string(event.station) +
           " bsn=" + std::string(event.bsn) + " time=" + std::string(event.time) +
           " deviceName=" + std::string(event.deviceName) +
           " testName=" + std::string(event.testName) + " value=" + std::string(event.value) +
           " minThreshold=" + std::string(event.minThreshold) +
           " maxThreshold=" + std::string(event.maxThreshold) +
           " firmware=" + std::string(event.firmware) +
           " description=" + std::string(event.description);
}

template <typename Message>
std::string MessageText(const Message& message) {
    std::string text = "version=" + std::to_string(message.version) +
                       " dataSource=" + std::to_string(message.dataSource) +
                       " numEvents=" + std::to_string(message.numEvents);
    for (const auto& event : message.events) text += " {" + EventText(event) + "}";
    return text;
}

}  // namespace kalvorn::device
