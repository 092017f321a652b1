// SPDX-License-Identifier: GPL-3.0-or-later
#include "fault.h"

#include <new>

namespace m47 {
namespace {

constexpr Bilingual kNoMemory{
    "There is not enough memory for this. Close other programs, then try again.",
    "La memoria non basta per questa operazione. Chiudere altri programmi e riprovare."};
constexpr Bilingual kUnexpected{"This could not be done because of an unexpected fault: %1",
                                "Operazione non riuscita per un errore imprevisto: %1"};

}  // namespace

QString Fault::text(const Texts& texts) const {
    return words_ ? texts.pick(*words_) : QString::fromUtf8(what());
}

QString words_of(const std::exception& exception, const Texts& texts) {
    if (const auto* fault = dynamic_cast<const Fault*>(&exception)) return fault->text(texts);
    if (dynamic_cast<const std::bad_alloc*>(&exception)) return texts.pick(kNoMemory);
    return texts.pick(kUnexpected).arg(QString::fromUtf8(exception.what()));
}

}  // namespace m47
