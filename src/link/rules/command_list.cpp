// SPDX-License-Identifier: GPL-3.0-or-later
#include "command_list.h"

namespace m47::link::command {

std::vector<Group> command_list() {
    return {
        {"Identification and mode", {&kVersion, &kMeasure}},
        {"Receiver",
         {&kOscillator, &kFrequency, &kSupply, &kSupplyVoltage, &kTone, &kSymbolRate, &kBandwidth,
          &kAttenuator, &kUnit, &kMarker}},
        {"Antenna", {&kDiseqc, &kDiseqcMotor}},
        {"Measurements", {&kLevel, &kChannelPower, &kAnalogCn, &kDigitalCn, &kQpskQuality}},
        {"Programs and data logger",
         {&kProgram, &kStore, &kDelete, &kLoggerTable, &kDevice, &kStartLog, &kAllLogs, &kLastLog,
          &kDeleteLastLog, &kDeleteAllLogs}},
        {"Span", {&kOutputMode, &kSpan}},
        {"Satellite slots", {&kSlotName, &kMasterCopy, &kLearnSlot, &kDeleteSlot}},
        {"Owner's mark", {&kLogo}},
    };
}

}  // namespace m47::link::command
