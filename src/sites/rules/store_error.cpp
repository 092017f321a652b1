// SPDX-License-Identifier: GPL-3.0-or-later
#include "store_error.h"

namespace m47::sites {
namespace {

using Kind = StoreError::Kind;

// What is wrong, and what helps.
constexpr db::OwnFileWording kWordings[] = {
    {Kind::newer,
     {"The file of sites '%1' was written by a later version of this program and has been left as "
      "it is: use that version, or work in another folder.",
      "Il file dei siti '%1' è stato scritto da una versione successiva di questo programma ed è "
      "stato lasciato com'è: usare quella versione, oppure lavorare in un'altra cartella."}},
    {Kind::foreign,
     {"The file '%1' is not a file of sites and visits of this program. It has been left as it is: "
      "move it elsewhere, and the program makes a new one.",
      "Il file '%1' non è un file di siti e visite di questo programma. È stato lasciato com'è: "
      "spostarlo altrove, e il programma ne crea uno nuovo."}},
    {Kind::damaged,
     {"The file of sites '%1' is damaged. Put a backup copy in its place, or move it elsewhere to "
      "begin a new one.",
      "Il file dei siti '%1' è danneggiato. Sostituirlo con una copia di riserva, oppure spostarlo "
      "altrove per cominciarne uno nuovo."}},
    {Kind::locked,
     {"The file of sites '%1' is in use by another program. Wait until that program has finished "
      "or close it, then try again.",
      "Il file dei siti '%1' è usato da un altro programma. Attendere che quel programma abbia "
      "finito oppure chiuderlo, poi riprovare."}},
    {Kind::full,
     {"There is no room left for the file of sites '%1'. Make room on its disk, then try again.",
      "Non c'è più spazio per il file dei siti '%1'. Liberare spazio sul suo disco, poi "
      "riprovare."}},
    {Kind::unreadable,
     {"The file of sites '%1' cannot be read or written. See that it is an ordinary file, that "
      "there is permission to read it and that its disk is connected, then try again.",
      "Il file dei siti '%1' non si lascia leggere o scrivere. Verificare che sia un file normale, "
      "che ci sia il permesso di lettura e che il suo disco sia collegato, poi riprovare."}},
    {Kind::read_only,
     {"The file of sites '%1' cannot be written. The file and its folder need write permission.",
      "Il file dei siti '%1' non è scrivibile. Per il file e la sua cartella serve il permesso di "
      "scrittura."}},
    {Kind::moved,
     {"The file of sites '%1' was deleted, moved or replaced while the program was at work on it. "
      "See that the right file is in its place, then start the program again.",
      "Il file dei siti '%1' è stato cancellato, spostato o sostituito mentre il programma ci "
      "lavorava. Verificare che al suo posto ci sia il file giusto, poi riavviare il programma."}},
    {Kind::other,
     {"The file of sites '%1' could not be worked on. Try again; if that does not help, start the "
      "program again.",
      "Non è stato possibile lavorare sul file dei siti '%1'. Riprovare; se non basta, riavviare "
      "il "
      "programma."}},
};

}  // namespace

QString store_error_text(const StoreError& error, const Texts& texts) {
    return db::own_file_text(kWordings, error, texts, u'\n');
}

}  // namespace m47::sites
