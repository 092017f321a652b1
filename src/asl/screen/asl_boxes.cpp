// SPDX-License-Identifier: GPL-3.0-or-later
#include "asl_boxes.h"

#include <QFileDialog>
#include <QInputDialog>

#include "asl_texts.h"
#include "compare_view.h"
#include "file_question.h"
#include "message_box.h"
#include "restore_preview.h"
#include "slot_backup.h"

namespace m47::asl {

bool AslBoxes::confirm(const QString& title, const QString& text) {
    return show_message_box(screen_, QMessageBox::NoIcon, title, text,
                            QMessageBox::Ok | QMessageBox::Cancel) == QMessageBox::Ok;
}

bool AslBoxes::erase(const QString& title, const QString& text, const QString& what_goes) {
    return ask_first(screen_, title, text, what_goes);
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

bool AslBoxes::overwrite(const ChangedSatellite& change) {
    const Texts& texts = program_.texts;
    const Bilingual& own = change.deletes ? asl_text::kShownHere : asl_text::kYours;
    const Bilingual& question =
        change.deletes ? asl_text::kDeleteChanged : asl_text::kOverwriteChanged;
    const QList<Comparable> both{
        {texts.pick(asl_text::kStoredMeanwhile), SlotBlock::parse(change.stored)},
        {texts.pick(own), SlotBlock::parse(change.own)}};
    CompareView view(both, 0, 1, texts, screen_);
    view.ask(texts.pick(question).arg(change.name));
    return view.exec() == QDialog::Accepted;
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
    dialog.setNameFilter(program_.texts.pick(asl_text::kFileKind).arg(kBackupSuffix));
    dialog.setDefaultSuffix(kBackupSuffix);
    if (save) dialog.selectFile(proposed_name(QStringLiteral("slots"), kBackupSuffix));
    return ask_for_file(dialog, program_, FilePurpose::slots_of_meter);
}

}  // namespace m47::asl
