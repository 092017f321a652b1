// SPDX-License-Identifier: GPL-3.0-or-later
#include "download_tooltips.h"

namespace m47::logger {
namespace {

constexpr Tooltip kTooltips[] = {
    {"open", "Open file", "Apri file"},
    {"save", "Save file", "Salva file"},
    {"delete", "Delete file", "Cancella file"},
    {"dwl", "Download", nullptr},
    {"dwl_c", "Download and clear", nullptr},
    {"dwl_m", "Start manual log", nullptr},
    {"to_ana", "Analogic Conversion", nullptr},
    {"to_dig", "Digital Conversion", nullptr},
    {"stampa", "Print measures", "Stampa pagina misure"},

    {"tmpfile", "Select name for a temporary download file.", "Selezione per file temporaneo"},
    {"cmddownload", "Download data logged from instrument to PC", "Scarica i dati memorizzati"},
    {"cmddownloadlast", "Download last data logged from instrument to PC",
     "Scarica i dati memorizzati ultima loggata"},
    {"cmdclearall", "Clear All logged data", "Cancella tutte le acquisizioni"},
    {"cmdclearlast", "Clear Last logged data", "Cancella l'ultima acquisizione"},
    {"cmddatain", "Start Manual Log", "Inizia acquisizione manuale"},
    {"cmdspan", "Read the span from the instrument", "Legge lo span dallo strumento"},
    {"dwl_txt", nullptr, "Elenco misure"},
};

constexpr Caption kKeyWords[] = {
    {"open", {"Open", "Apri"}},
    {"save", {"Save", "Salva"}},
    {"delete", {"Delete", "Cancella"}},
    {"dwl", {"Download", "Scarica"}},
    {"dwl_c", {"Fetch, clear", "Scarica, svuota"}},
    {"dwl_m", {"Log now", "Log ora"}},
    {"to_ana", {"Analog", "Analogico"}},
    {"to_dig", {"Digital", "Digitale"}},
    {"stampa", {"Print", "Stampa"}},
};

}  // namespace

std::span<const Caption> download_key_words() {
    return kKeyWords;
}

std::span<const Tooltip> download_tooltips() {
    return kTooltips;
}

}  // namespace m47::logger
