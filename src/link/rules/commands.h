// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// The command words of the meter. An argument follows with the blanks that its command wants; a
/// query is the word and "?".
namespace m47::command {

inline const QString kMeasure = QStringLiteral("MEASURE");
inline const QString kVersion = QStringLiteral("VER");

// Receiver
inline const QString kFrequency = QStringLiteral("FREQ");           ///< MHz
inline const QString kOscillator = QStringLiteral("LOCOSC");        ///< number and MHz
inline const QString kSupply = QStringLiteral("LNB");               ///< 00 off, 01 on
inline const QString kSupplyVoltage = QStringLiteral("LNVOLT");     ///< V
inline const QString kTone = QStringLiteral("TONE22K");             ///< 00 off, 01 on
inline const QString kSymbolRate = QStringLiteral("SYMBRATEQPSK");  ///< kS/s
inline const QString kBandwidth = QStringLiteral("CHBW");           ///< MHz
inline const QString kAttenuator = QStringLiteral("ATTEN");         ///< steps of 10 dB
inline const QString kUnit = QStringLiteral("UNIT");                ///< 00 dBuV, 01 dBmV, 02 dBm
inline const QString kMarker = QStringLiteral("MARKER");            ///< number, 0 analog, 1 digital

// Antenna
inline const QString kDiseqc = QStringLiteral("DISEQC");          ///< place in kDiseqcCommands
inline const QString kDiseqcMotor = QStringLiteral("DISEQCMOT");  ///< motor command and argument

// Programs and data logger
inline const QString kProgram = QStringLiteral("PROGRAM");          ///< number, 0 to 99
inline const QString kStore = QStringLiteral("STORE");              ///< into the chosen program
inline const QString kDelete = QStringLiteral("DELETE");            ///< first and last program
inline const QString kLoggerTable = QStringLiteral("DATAPROGRAM");  ///< line, program, state

// Measurements
inline const QString kLevel = QStringLiteral("LEVANL");
inline const QString kChannelPower = QStringLiteral("LEVDCP");
inline const QString kAnalogCn = QStringLiteral("LEVCNA");
inline const QString kDigitalCn = QStringLiteral("LEVCND");
inline const QString kQpskQuality = QStringLiteral("BERQPSK");

// Data logger and span
inline const QString kDevice = QStringLiteral("DEVICE");        ///< 0 the meter itself
inline const QString kAllLogs = QStringLiteral("DATAOUT");      ///< sends every log
inline const QString kLastLog = QStringLiteral("DATALASTOUT");  ///< sends the latest log
inline const QString kDeleteAllLogs = QStringLiteral("DATADELALL");
inline const QString kDeleteLastLog = QStringLiteral("DATADELLAST");
inline const QString kStartLog = QStringLiteral("DATAIN");
inline const QString kOutputMode = QStringLiteral("outputmode");  ///< 1: TAB between the columns
inline const QString kSpan = QStringLiteral("spanout");           ///< sends the span's points

// Satellite slots
inline const QString kSlotName = QStringLiteral("ASLNAME");    ///< slot and name
inline const QString kLearnSlot = QStringLiteral("ASLLEARN");  ///< slot
inline const QString kDeleteSlot = QStringLiteral("ASLDEL");   ///< slot
/// Copies a memory area; area 6 holds all satellite slots.
inline const QString kCopySlots = QStringLiteral("MASTERCOPY 6?");

// Owner's mark
inline const QString kLogo = QStringLiteral("LOGO");

/// The query form of `word`.
inline QString query(const QString& word) {
    return word + u'?';
}

/// All attenuation, as before each level reading.
inline const QString kFullAttenuation = kAttenuator + QStringLiteral(" 6");
inline const QString kMeterDevice = kDevice + QStringLiteral(" 0");
inline const QString kTabbedOutput = kOutputMode + QStringLiteral(" 1");
/// Every line of the logger table.
inline const QString kClearLoggerTable = kLoggerTable + QStringLiteral(" *");
inline const QString kAnalogMarker = kMarker + QStringLiteral(" 1 0");
inline const QString kDigitalMarker = kMarker + QStringLiteral(" 1 1");
inline const QString kSupplyOff = kSupply + QStringLiteral(" 00");
inline const QString kSupplyOn = kSupply + QStringLiteral(" 01");
inline const QString kToneOff = kTone + QStringLiteral(" 00");
inline const QString kToneOn = kTone + QStringLiteral(" 01");
inline const QString kNoOscillator = kOscillator + QStringLiteral(" 00");
/// The one oscillator of the real-time screen, as its option and as its frequency box name it: the
/// two forms differ on purpose.
inline const QString kOptionOscillator = kOscillator + QStringLiteral(" 1 A");
inline const QString kBoxOscillator = kOscillator + QStringLiteral("01");

}  // namespace m47::command
