// SPDX-License-Identifier: GPL-3.0-or-later
#include "realtime_tooltips.h"

#include <vector>

#include "measures.h"

namespace m47::realtime {
namespace {

// The slips in these texts ("Gropu", "sucessivo") are the screen's own.
constexpr Tooltip kTooltips[] = {
    {"save", "Open / Close file", "Apri/chidi file"},
    {"single", "Single Element", "Elemento singolo"},
    {"group", "Multiple acquisition elements from selected Plan",
     "Acquisizione multipla di elementi di un piano"},
    {"previous", "Move to Previous Plan", "Seleziona il piano precedente"},
    {"next", "Move to Next Plan", "Seleziona il piano sucessivo"},
    {"previous_prog", "Move to Previous Program", "Seleziona il programma precedente"},
    {"next_prog", "Move to Next Program", "Seleziona il programma sucessivo"},
    {"satellite", "Satellite Mode", "Modo satellite"},
    {"terrestre", "Terrestrial Mode", "Modo terrestre"},
    {"analogico", "Analog Mode", "Modo analogico"},
    {"qpsk", "QPSK Digital Satellite", "Modo QPSK"},
    {"qam", "QAM Digital Terrestrial", "Modo QAM"},
    {"ofdm", "OFDM Digital Terrestrial", "Modo OFDM"},
    {"single_acq", "Single Acquisition Element", "Acquisizione singolo elemento"},
    {"multiple_acq", "Single Plan Acquisitions Elements",
     "Acquisizione singola elementi del piano"},
    {"start", "Timed Acquisition", "Timer acquisizioni"},
    {"stop", "Stop Acquisition", "Stop acquisizioni"},
    {"cancella", "Clear measurement page", "Cancella misure"},
    {"stampa", "Print measurement page", "Stampa misure"},

    {"grp_name", "Gropu name recall from database", nullptr},
    {"prog_num", "Program number recall from database", nullptr},
    {"file_name", "File name for data rescue", nullptr},

    {"sat_opt", "Satellite options", "Opzioni satellite"},
    {"fsat", "Select frequency", "Selezione frequenza"},
    {"satlnb_state", "Select LNB options", "Selezione opzioni LNB"},
    {"k22_state", "Select 22kHz tone", "Selezione tono 22K"},
    {"locosc", "Select local oscillator", "Selezione oscillatore locale"},
    {"locopt_0", "1IF No Local Oscillator", "1°IF No oscillatore locale"},
    {"locopt_1", "Set Local Oscillator", "Selezione oscillatore locale"},
    {"ol_freq", "Local Oscillator Frequency", "Frequenza oscillatore locale"},
    {"diseqc", "Select DiSEqC Options", "Opzioni DiSEqC"},
    {"dsq11opt", "Select DiSEqC command protocol 1.1", "Selezione DiSEqC protocollo 1.1"},
    {"diseqc_cmd", "Select DiSEqC Command Type 1.1", "Selezione DiSEqC protocollo 1.1"},
    {"dsq12opt", "Select DiSEqC command protocol 1.2", "Selezione DiSEqC protocollo 1.2"},
    {"satdigmea", "Digital measurement options", "Opzioni misura digitale"},
    {"chbws", "Select channel bandwidth for digital channel power measurement",
     "Selezione larghezza banda per misura DCP"},
    {"srqpsk_txt", "Select symbol rate", "Selezione SymbolRate"},
    {"cmdstart", "Start Timing Acquisition", nullptr},
    {"time_act", nullptr, "Data e ora del sistema"},
    {"time_delay", "Expected Time", "Tempo d'attesa ciclo"},
    {"measgrid", nullptr, "Elenco misure"},

    {"cmdfulltune", nullptr, "Imposta tutto per ogni programma"},
    {"cmdcomplete", nullptr, "Completa le misure C/N e rumore"},
    {"cmdlevelview", "The level in digits that are read from afar, with a tone",
     "Il livello in cifre leggibili da lontano, con un tono"},
    {"cmdreport", "Make a PDF of the measurement page for the customer",
     "Crea un PDF della pagina misure per il cliente"},
};

constexpr Caption kKeyWords[] = {
    {"save", {"Log", "Log"}},
    {"single", {"Single", "Singolo"}},
    {"group", {"Plan", "Piano"}},
    {"previous", {"‹ Plan", "‹ Piano"}},
    {"next", {"Plan ›", "Piano ›"}},
    {"previous_prog", {"‹ Prog.", "‹ Prog."}},
    {"next_prog", {"Prog. ›", "Prog. ›"}},
    {"satellite", {"Sat", "Sat"}},
    {"terrestre", {"Terr", "Terr"}},
    {"analogico", {"Analog", "Analog."}},
    {"qpsk", {"QPSK", "QPSK"}},
    {"qam", {"QAM", "QAM"}},
    {"ofdm", {"OFDM", "OFDM"}},
    {"single_acq", {"Measure", "Misura"}},
    // It stands in the place of the one before, which is as wide.
    {"multiple_acq", {"Measure", "Misura"}},
    {"start", {"Timed", "A tempo"}},
    {"stop", {"Stop", "Stop"}},
    {"cancella", {"Clear", "Svuota"}},
    {"stampa", {"Print", "Stampa"}},
};

std::vector<Tooltip> with_measures() {
    std::vector<Tooltip> all(std::begin(kTooltips), std::end(kTooltips));
    const auto add = [&all](const MeasureControl& control) {
        all.push_back({control.name, control.english, control.italian});
    };
    for (const Measure& measure : measures()) {
        add(measure.box);
        if (measure.alarm) add(measure.alarm->box);
    }
    for (const LimitBox& limit : limit_boxes()) add(limit.control);
    return all;
}

}  // namespace

std::span<const Caption> realtime_key_words() {
    return kKeyWords;
}

std::span<const Tooltip> realtime_tooltips() {
    static const std::vector<Tooltip> all = with_measures();
    return all;
}

}  // namespace m47::realtime
