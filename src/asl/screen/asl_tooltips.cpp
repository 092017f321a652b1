// SPDX-License-Identifier: GPL-3.0-or-later
#include "asl_tooltips.h"

namespace m47::asl {
namespace {

constexpr Tooltip kAslTooltips[] = {
    {"listadb", "Satellites available in the PC", "Lista Satelliti disponibili nel PC"},
    {"listastr", "Satellites available in the M47", "Lista Satelliti disponibili nel M47"},
    {"cmdaddindb", "Add the selected satellite to the PC",
     "Aggiunge nel PC il satellite selezionato"},
    {"cmdsave", "Save the selected satellite to the M47", "Salva nel M47 il satellite selezionato"},
    {"cmddelpc", "Delete the selected satellite from the PC",
     "Cancella il Satellite selezionato dal PC"},
    {"cmddelstr", "Delete the selected satellite from the M47",
     "Cancella il Satellite selezionato dal M47"},
    {"cmdlearn", "Learn a satellite into the selected position of the M47",
     "Acquisisce un satellite nella posizione selezionata nel M47"},
};

}  // namespace

std::span<const Tooltip> asl_tooltips() {
    return kAslTooltips;
}

}  // namespace m47::asl
