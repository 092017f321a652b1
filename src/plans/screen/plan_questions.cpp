// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_questions.h"

#include <QInputDialog>

#include "message_box.h"
#include "plan_name.h"

namespace m47::plans {
namespace {

const QString kRemoveTitle = QStringLiteral("VKDM47");
const QString kQuestionTitle = QStringLiteral("M47");
const QString kErrorTitle = QStringLiteral("Error");
constexpr Bilingual kNoProgram{"The plan has no program: make one first.",
                               "Il piano non ha programmi: occorre prima crearne uno."};

}  // namespace

bool ask_remove(QWidget* screen, const Texts& texts, const QString& what) {
    return show_message_box(screen, QMessageBox::Question, kRemoveTitle,
                            texts.message(kRemoveProgram) + what,
                            QMessageBox::Ok | QMessageBox::Cancel) == QMessageBox::Ok;
}

bool ask_continue(QWidget* screen, const Texts& texts, const QString& prompt) {
    return show_message_box(screen, QMessageBox::Question, kQuestionTitle,
                            prompt + u'\r' + texts.message(kContinue),
                            QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes;
}

QString ask_plan_name(QWidget* screen, const QString& prompt, const QString& preset) {
    return programme::plan_name(
        QInputDialog::getText(screen, kRemoveTitle, prompt, QLineEdit::Normal, preset));
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
