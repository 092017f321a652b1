// SPDX-License-Identifier: GPL-3.0-or-later
#include "asl_boxes.h"

#include <QFileDialog>
#include <QInputDialog>

#include "file_question.h"
#include "message_box.h"
#include "restore_preview.h"
#include "slot_backup.h"

namespace m47 {

bool AslBoxes::confirm(const QString& title, const QString& text) {
    return show_message_box(screen_, QMessageBox::NoIcon, title, text,
                            QMessageBox::Ok | QMessageBox::Cancel) == QMessageBox::Ok;
}

QString AslBoxes::input(const QString& title, const QString& text, const QString& proposal) {
    return QInputDialog::getText(screen_, title, text, QLineEdit::Normal, proposal);
}

void AslBoxes::warn(const QString& title, const QString& text) {
    show_message_box(screen_, QMessageBox::Warning, title, text);
}

void AslBoxes::inform(const QString& title, const QString& text) {
    show_message_box(screen_, QMessageBox::Information, title, text);
}

QString AslBoxes::file_to_save() {
    return ask_file(true);
}

QString AslBoxes::file_to_restore() {
    return ask_file(false);
}

bool AslBoxes::preview(const RestorePlan& plan) {
    return RestorePreview(plan, program_.texts, screen_).exec() == QDialog::Accepted;
}

QString AslBoxes::ask_file(bool save) {
    QFileDialog dialog(screen_);
    dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    dialog.setNameFilter(QStringLiteral("(*.%1)").arg(kBackupSuffix));
    dialog.setDefaultSuffix(kBackupSuffix);
    return ask_for_file(dialog, program_);
}

}  // namespace m47
