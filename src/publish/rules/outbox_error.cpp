// SPDX-License-Identifier: GPL-3.0-or-later
#include "outbox_error.h"

namespace m47::publish {
namespace {

using Kind = OutboxError::Kind;

constexpr db::OwnFileWording kWordings[] = {
    {Kind::newer,
     {"The outbox '%1' was written by a newer version of the program. It has been left as it is: "
      "update the program, or move the file elsewhere to begin a new one.",
      "La posta in uscita '%1' è stata scritta da una versione più recente del programma. È stata "
      "lasciata com'è: aggiornare il programma, oppure spostare il file altrove per cominciarne "
      "uno nuovo."}},
    {Kind::foreign,
     {"The file '%1' is not an outbox of this program. It has been left as it is: move it "
      "elsewhere, and the program makes a new one.",
      "Il file '%1' non è la posta in uscita di questo programma. È stato lasciato com'è: "
      "spostarlo altrove, e il programma ne crea uno nuovo."}},
    {Kind::damaged,
     {"The outbox '%1' is damaged. Move it elsewhere, and the program makes a new one; the rows "
      "are in the log.",
      "La posta in uscita '%1' è danneggiata. Spostarla altrove, e il programma ne crea una nuova; "
      "le righe sono nel registro."}},
    {Kind::locked,
     {"The outbox '%1' is in use by another process. Only one at a time can have it: end the other "
      "one, or give this run another log.",
      "La posta in uscita '%1' è usata da un altro processo. Può averla soltanto uno alla volta: "
      "terminare l'altro, oppure dare a questo un altro registro."}},
    {Kind::full,
     {"There is no room left for the outbox '%1'. Make room on its disk.",
      "Non c'è più spazio per la posta in uscita '%1'. Liberare spazio sul suo disco."}},
    {Kind::unreadable,
     {"The outbox '%1' cannot be read or written. See that it is an ordinary file and that its "
      "disk is connected.",
      "La posta in uscita '%1' non si lascia leggere o scrivere. Verificare che sia un file "
      "normale e che il suo disco sia collegato."}},
    {Kind::read_only,
     {"The outbox '%1' cannot be written. The file and its folder need write permission.",
      "La posta in uscita '%1' non è scrivibile. Per il file e la sua cartella serve il permesso "
      "di scrittura."}},
    {Kind::moved,
     {"The outbox '%1' was deleted, moved or replaced while the program was at work on it. Start "
      "the program again.",
      "La posta in uscita '%1' è stata cancellata, spostata o sostituita mentre il programma ci "
      "lavorava. Riavviare il programma."}},
    {Kind::other,
     {"The outbox '%1' could not be worked on. Start the program again.",
      "Non è stato possibile lavorare sulla posta in uscita '%1'. Riavviare il programma."}},
};

}  // namespace

QString outbox_error_text(const OutboxError& error, const Texts& texts) {
    return db::own_file_text(kWordings, error, texts, u' ');
}

}  // namespace m47::publish
