// SPDX-License-Identifier: GPL-3.0-or-later
#include "band_tooltips.h"

namespace m47::band {
namespace {

constexpr Tooltip kTooltips[] = {
    {"band_start", "Ask for the levels of the band; the meter is set back at the end (F5)",
     "Chiede i livelli della banda; alla fine lo strumento torna com'era (F5)"},
    {"band_stop", "Stop; what was found stays (Esc)", "Ferma; ciò che si è trovato resta (Esc)"},
    {"band_repeat", "Sweep again and again until it is stopped",
     "Ripete la scansione finché non viene fermata"},
    {"band_feed", "How the LNB is fed: polarisation and band",
     "Come è alimentato l'LNB: polarizzazione e banda"},
    {"band_axis", "Frequencies of the intermediate band, or of the sky",
     "Frequenze della banda intermedia, o del cielo"},
    {"band_from", "First frequency, MHz", "Prima frequenza, MHz"},
    {"band_to", "Last frequency, MHz", "Ultima frequenza, MHz"},
    {"band_whole", "All that the meter can tune", "Tutto ciò che lo strumento può sintonizzare"},
    {"band_step", "Ask only where something is, or every so many MHz",
     "Chiede solo dove c'è qualcosa, oppure ogni tanti MHz"},
    {"band_low", "Oscillator of the LNB without the tone, or as it is, MHz",
     "Oscillatore dell'LNB senza il tono, o com'è, MHz"},
    {"band_high", "Oscillator of the LNB with the 22 kHz tone, MHz",
     "Oscillatore dell'LNB con il tono 22 kHz, MHz"},
    {"band_shown", "Which state of the LNB the chart shows",
     "Quale stato dell'LNB mostra il grafico"},
    {"band_live", "Show the last pass", "Mostra l'ultimo passaggio"},
    {"band_hold", "Show the highest level at each frequency",
     "Mostra il livello più alto a ogni frequenza"},
    {"band_average", "Show the mean power at each frequency",
     "Mostra la potenza media a ogni frequenza"},
    {"band_reference", "Show the reference", "Mostra il riferimento"},
    {"band_difference", "Show how far the last pass lies above the reference",
     "Mostra di quanto l'ultimo passaggio supera il riferimento"},
    {"band_zoom",
     "Show all again. Wheel or drag: frequencies; with Ctrl: levels; keys: arrows, +, -, Home",
     "Mostra di nuovo tutto. Rotella o trascinamento: frequenze; con Ctrl: livelli; tasti: "
     "frecce, +, -, Home"},
    {"band_clear", "Forget all levels and carriers; the reference stays",
     "Dimentica livelli e portanti; il riferimento resta"},
    {"band_keep", "Keep the last pass to hold others against it",
     "Conserva l'ultimo passaggio per confrontarne altri"},
    {"band_load", "Take a saved table (TSV) as the reference",
     "Prende come riferimento una tabella salvata (TSV)"},
    {"band_scan", "Name the carriers by a DVB scan table",
     "Dà un nome alle portanti da una tabella di scansione DVB"},
    {"band_save", "Save as picture (PNG), page (PDF) or table (TSV)",
     "Salva come immagine (PNG), pagina (PDF) o tabella (TSV)"},
    {"band_programs", "Put the carriers into a plan; shows first what comes",
     "Mette le portanti in un piano; prima mostra che cosa viene"},
    {"band_carriers", "Carriers found: a click, or Enter, tunes to one",
     "Portanti trovate: un clic, o Invio, ne sintonizza una"},
    {"band_marks",
     "Click in the chart: marker 1; with Shift or the right button: marker 2. Ctrl with the "
     "arrows, and Shift, moves them",
     "Clic nel grafico: marcatore 1; con Maiusc o il tasto destro: marcatore 2. Ctrl con le "
     "frecce, e Maiusc, li sposta"},
};

constexpr Caption kCaptions[] = {
    {"band_start", {"Start", "Avvia"}},
    {"band_stop", {"Stop", "Ferma"}},
    {"band_repeat", {"Repeat", "Ripeti"}},
    {"label_feed", {"LNB", "LNB"}},
    {"label_axis", {"Axis", "Asse"}},
    {"label_from", {"From", "Da"}},
    {"label_to", {"to", "a"}},
    {"band_whole", {"Whole band", "Tutta la banda"}},
    {"label_step", {"Step", "Passo"}},
    {"label_low", {"Oscillator", "Oscillatore"}},
    {"label_high", {"with 22 kHz", "con 22 kHz"}},
    {"label_shown", {"Shown", "Mostrato"}},
    {"band_live", {"Live", "Attuale"}},
    {"band_hold", {"Max hold", "Massimi"}},
    {"band_average", {"Average", "Media"}},
    {"band_reference", {"Reference", "Riferimento"}},
    {"band_difference", {"Difference", "Differenza"}},
    {"band_zoom", {"Show all", "Mostra tutto"}},
    {"band_clear", {"Clear", "Svuota"}},
    {"band_keep", {"Keep as reference", "Tieni come riferimento"}},
    {"band_load", {"Load reference…", "Apri riferimento…"}},
    {"band_scan", {"Scan table…", "Tabella di scansione…"}},
    {"band_save", {"Save…", "Salva…"}},
    {"band_programs", {"Make programs…", "Crea programmi…"}},
    {"cmdbandstart", {"&Start the sweep", "&Avvia la scansione"}},
    {"cmdbandstop", {"S&top the sweep", "&Ferma la scansione"}},
};

}  // namespace

std::span<const Tooltip> band_tooltips() {
    return kTooltips;
}

std::span<const Caption> band_captions() {
    return kCaptions;
}

}  // namespace m47::band
