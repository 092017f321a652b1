// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <vector>

/// The command words of the meter. An argument follows with the blanks that its command wants; a
/// query is the word and "?". What stands beside a word goes into the page that describes the
/// protocol.
namespace m47::link::command {

/// One way in which a command is used.
struct Usage {
    const char* argument;  ///< as it stands behind the word, blanks included
    const char* meaning;
};

/// A command word with what it is for.
struct Word : QString {
    Word(const char* word, const char* what_for, std::vector<Usage> usages)
        : QString(QString::fromLatin1(word)), purpose(what_for), uses(std::move(usages)) {}

    const char* purpose;
    std::vector<Usage> uses;
};

inline const Word kVersion{"VER", "Version of the meter's program", {{"?", "ask"}}};
inline const Word kMeasure{"MEASURE", "The meter goes into its measuring mode", {{"", "go"}}};

// Receiver
inline const Word kOscillator{
    "LOCOSC",
    "Local oscillator of the LNB, MHz: the frequency is given and shown above or below it",
    {{" 1 10600", "plan: store oscillator 1"},
     {" 1", "plan: work with oscillator 1"},
     {" 1 A 10600", "option of the real-time screen: store"},
     {" 1 A", "option of the real-time screen: work with it"},
     {"0110600", "frequency box of the real-time screen: store"},
     {"01", "frequency box of the real-time screen: work with it"},
     {" 0", "plan: none, the frequency is the intermediate one"},
     {" 00", "real-time screen: none"},
     {"?", "ask which is in use"}}};
inline const Word kFrequency{"FREQ",
                             "Frequency, MHz",
                             {{" 1000.0", "tune"},
                              {" 1000", "tune, as at the opening of the real-time screen"},
                              {"?", "ask"}}};
inline const Word kSupply{
    "LNB", "Supply of the LNB", {{" 00", "off"}, {" 01", "on"}, {"?", "ask"}}};
inline const Word kSupplyVoltage{"LNVOLT",
                                 "Voltage of the LNB supply, V: 13, 15, 18 or 24",
                                 {{" 18", "18 V, horizontal polarisation"},
                                  {" 13", "13 V, vertical polarisation"},
                                  {"?", "ask"}}};
inline const Word kTone{
    "TONE22K", "22 kHz tone on the LNB supply", {{" 01", "on"}, {" 00", "off"}, {"?", "ask"}}};
inline const Word kSymbolRate{
    "SYMBRATEQPSK", "Symbol rate of the QPSK demodulator, kS/s", {{" 27500", "set"}, {"?", "ask"}}};
inline const Word kBandwidth{"CHBW", "Bandwidth for the channel power, MHz", {{" 36", "set"}}};
inline const Word kAttenuator{"ATTEN",
                              "Input attenuator, steps of 10 dB",
                              {{" 6", "all of it, as before each level reading"},
                               {" 00", "none of it, as before a QPSK reading"},
                               {"?", "ask; also the question whether a meter is there"}}};
inline const Word kUnit{
    "UNIT",
    "Unit of the levels",
    {{" 01", "dBmV"}, {" 02", "dBm"}, {" 00", "dBuV"}, {"?", "ask for its index"}}};
inline const Word kMarker{
    "MARKER", "Kind of the carrier under the marker", {{" 1 0", "analog"}, {" 1 1", "digital"}}};

// Antenna
inline const Word kDiseqc{
    "DISEQC", "DiSEqC switching command: its place in the list below", {{" 03", "RESET"}}};
inline const Word kDiseqcMotor{"DISEQCMOT",
                               "DiSEqC motor command",
                               {{" 00", "stop"},
                                {" 01", "start east"},
                                {" 02", "start west"},
                                {" 03", "disable the limits"},
                                {" 04", "delete the east limit"},
                                {" 05", "delete the west limit"},
                                {" 0601", "store the present place as position 01"},
                                {" 0701", "go to position 01"},
                                {" 08 12 01", "12 steps east"},
                                {" 08 03 00", "3 s east"},
                                {" 09 12 01", "12 steps west"},
                                {" 09 03 00", "3 s west"},
                                {" 10", "calculate the positions anew"},
                                {" 11", "reset"}}};

// Measurements
inline const Word kLevel{"LEVANL", "Level of an analog carrier", {{"?", "ask"}}};
inline const Word kChannelPower{
    "LEVDCP",
    "Power of a digital channel",
    {{"?", "ask"}, {"?1050.0", "ask at another frequency, as for the noise beside the channel"}}};
inline const Word kAnalogCn{"LEVCNA", "C/N of an analog carrier", {{"?", "ask"}}};
inline const Word kDigitalCn{"LEVCND", "C/N of a digital channel", {{"?", "ask"}}};
inline const Word kQpskQuality{"BERQPSK",
                               "QPSK mode: channel BER, BER behind Viterbi, frequency offset, MER",
                               {{"", "start; readings are good after 5 s"}, {"?", "ask"}}};

// Programs and data logger
inline const Word kProgram{
    "PROGRAM", "Chooses a program of the meter, 0 to 99", {{" 01", "program 1"}}};
inline const Word kStore{
    "STORE", "Stores the present settings in the chosen program", {{"", "store"}}};
inline const Word kDelete{
    "DELETE", "Deletes programs of the meter", {{" 02 99", "the first and the last to go"}}};
inline const Word kLoggerTable{"DATAPROGRAM",
                               "The logger table: line, program, state",
                               {{" *", "clear the whole table"},
                                {" 00 01 01", "line 0 logs program 1"},
                                {" 01 01 00", "line 1 holds program 1 and does not log it"},
                                {"?", "ask for the whole table"}}};
inline const Word kDevice{"DEVICE", "Where logged data are kept", {{" 0", "in the meter itself"}}};
inline const Word kStartLog{"DATAIN", "Logs what the logger table names, once", {{"", "log"}}};
inline const Word kAllLogs{"DATAOUT", "Sends every log", {{"", "send"}}};
inline const Word kLastLog{"DATALASTOUT", "Sends the latest log", {{"", "send"}}};
inline const Word kDeleteLastLog{"DATADELLAST", "Deletes the latest log", {{"", "delete"}}};
inline const Word kDeleteAllLogs{"DATADELALL", "Deletes every log", {{"", "delete"}}};

// Span
inline const Word kOutputMode{
    "outputmode", "Form of the span's lines", {{" 1", "TAB between the columns"}}};
inline const Word kSpan{
    "spanout", "Sends the points of the span: MHz and detector reading", {{"", "send"}}};

// Satellite slots
inline const Word kSlotName{"ASLNAME",
                            "Names of the 20 satellite slots",
                            {{"?", "ask for all"},
                             {" 3 SOLE 16E", "name slot 3"},
                             {" 03 SOLE 16E", "name it after learning"}}};
inline const Word kLearnSlot{
    "ASLLEARN", "Stores what is being received in a slot", {{" 03", "slot 3"}}};
inline const Word kDeleteSlot{"ASLDEL", "Empties a slot", {{" 3", "slot 3"}}};
inline const Word kMasterCopy{
    "MASTERCOPY", "Sends a memory area as S-records", {{" 6?", "area 6: all satellite slots"}}};

// Owner's mark
inline const Word kLogo{
    "LOGO", "Text that the meter shows at switching on", {{" ROSSI TV", "set"}, {"?", "ask"}}};

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
/// Memory area 6 holds all satellite slots.
inline const QString kCopySlots = kMasterCopy + QStringLiteral(" 6?");

}  // namespace m47::link::command
