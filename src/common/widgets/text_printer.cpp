// SPDX-License-Identifier: GPL-3.0-or-later
#include "text_printer.h"

#include "handler.h"
#include "part.h"
#include "text_printing.h"

namespace m47 {
namespace {

constexpr Bilingual kNotLoaded{
    "Nothing was printed: %1 is missing or damaged. Install the program anew.",
    "Non è stato stampato nulla: %1 manca o è danneggiato. Installare di nuovo il programma."};

}  // namespace

bool print_text(QWidget* screen, const QString& title, const QString& text, const Texts& texts) {
    Part part("m47-print");
    auto* const printing = part.offer<TextPrinting>();
    if (printing) return printing->print(screen, title, text, texts);
    report_fault(screen, texts.pick(kNotLoaded).arg(part.fault()));
    return false;
}

}  // namespace m47
