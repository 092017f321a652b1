// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_questions.h"

#include <QDir>
#include <QInputDialog>

#include "message_box.h"
#include "plan_name.h"

namespace m47::plans {
namespace {

const QString kRemoveTitle = QStringLiteral("VKDM47");
const QString kQuestionTitle = QStringLiteral("M47");
const QString kErrorTitle = QStringLiteral("Error");
constexpr Bilingual kEditsToStore{"The edits of program %1 are not stored. Store them?",
                                  "Le modifiche del programma %1 non sono memorizzate. "
                                  "Memorizzarle?"};
constexpr Bilingual kNoProgram{"The plan has no program: make one first.",
                               "Il piano non ha programmi: occorre prima crearne uno."};

constexpr Bilingual kReplaced{
    "This erases all programs of the meter, 00 to 99, and its whole logger table.",
    "Cancella tutti i programmi dello strumento, da 00 a 99, e l'intera tabella datalogger."};
constexpr Bilingual kTableKept{
    "The logger table is kept in %1. The programs cannot be read from the meter.",
    "La tabella datalogger è conservata in %1. I programmi non si possono leggere dallo "
    "strumento."};
constexpr Bilingual kTableNotRead{
    "The logger table could not be read: there is no copy of it.",
    "Non è stato possibile leggere la tabella datalogger: non ce n'è copia."};

QString with_continue(const Texts& texts, const QString& prompt) {
    return prompt + u'\r' + texts.message(kContinue);
}

}  // namespace

bool ask_remove(QWidget* screen, const Texts& texts, const QString& what) {
    return show_message_box(screen, QMessageBox::Question, kRemoveTitle,
                            texts.message(kRemoveProgram) + what,
                            QMessageBox::Ok | QMessageBox::Cancel) == QMessageBox::Ok;
}

bool ask_continue(QWidget* screen, const Texts& texts, const QString& prompt) {
    return show_message_box(screen, QMessageBox::Question, kQuestionTitle,
                            with_continue(texts, prompt),
                            QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes;
}

bool ask_replace(QWidget* screen, const Texts& texts, const QString& prompt,
                 const std::optional<QString>& kept) {
    QString what_goes = texts.pick(kReplaced);
    if (kept)
        what_goes +=
            u'\n' + (kept->isEmpty() ? texts.pick(kTableNotRead)
                                     : texts.pick(kTableKept).arg(QDir::toNativeSeparators(*kept)));
    return ask_first(screen, kQuestionTitle, with_continue(texts, prompt), what_goes);
}

QString ask_plan_name(QWidget* screen, const QString& prompt, const QString& preset) {
    return programme::plan_name(
        QInputDialog::getText(screen, kRemoveTitle, prompt, QLineEdit::Normal, preset));
}

Edits ask_edits(QWidget* screen, const Texts& texts, const QString& number) {
    const auto answer = show_message_box(
        screen, QMessageBox::Question, kQuestionTitle, texts.pick(kEditsToStore).arg(number),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
    if (answer == QMessageBox::Save) return Edits::store;
    return answer == QMessageBox::Discard ? Edits::discard : Edits::stay;
}

void tell_clash(QWidget* screen, const Texts& texts, Clash clash) {
    const int number = clash == Clash::number ? kProgramExists : kLoggerPositionExists;
    tell_problem(screen, texts.message(number));
}

void tell_problem(QWidget* screen, const QString& text) {
    show_message_box(screen, QMessageBox::Warning, kErrorTitle, text);
}

void tell_no_program(QWidget* screen, const Texts& texts) {
    tell_problem(screen, texts.pick(kNoProgram));
}

}  // namespace m47::plans
