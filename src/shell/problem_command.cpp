// SPDX-License-Identifier: GPL-3.0-or-later
#include "problem_command.h"

#include <QBuffer>
#include <QFileDialog>
#include <QPixmap>

#include "file_question.h"
#include "message_box.h"
#include "problem_dialog.h"

namespace m47::shell {
namespace {

constexpr Bilingual kSaveTitle{"Save the report of a problem", "Salva la segnalazione"};
constexpr Bilingual kReports{"Reports (*.tar.gz)", "Segnalazioni (*.tar.gz)"};
constexpr Bilingual kNotWritten{"The report %1 could not be written: %2",
                                "La segnalazione %1 non è stata scritta: %2"};
constexpr Bilingual kPicture{"a picture of the window, with what stands in it",
                             "un'immagine della finestra, con ciò che mostra"};
constexpr Bilingual kPlans{"all plans and satellites, the database",
                           "tutti i piani e i satelliti, il database"};

QByteArray picture_of(QWidget& window) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    window.grab().save(&buffer, "PNG");
    return bytes;
}

}  // namespace

ProblemCommand::ProblemCommand(const ProgramState& program, unattended::MeterConnection& connection,
                               const db::Database& database,
                               const unattended::LineRecording& recording, QWidget& window)
    : program_(program),
      connection_(connection),
      database_(database),
      recording_(recording),
      window_(window) {}

std::vector<unattended::ProblemItem> ProblemCommand::items() {
    std::vector<unattended::ProblemItem> items =
        unattended::problem_items(program_, connection_, recording_.path(), Person::here());
    items.push_back(
        {QStringLiteral("screen.png"), kPicture, picture_of(window_), false, true, nullptr});
    items.push_back({QStringLiteral("plans.sqlite"), kPlans, QByteArray(), false, false,
                     [this](const QString& path) { database_.copy_to(path); }});
    return items;
}

void ProblemCommand::cmdproblem_Click() {
    // The picture shows the window as it was before the dialog.
    ProblemDialog dialog(items(), program_.texts, &window_);
    if (dialog.exec() == QDialog::Accepted) save(dialog.items());
}

void ProblemCommand::save(const std::vector<unattended::ProblemItem>& items) {
    const QString title = program_.texts.pick(kSaveTitle);
    QFileDialog dialog(&window_, title, QString(), program_.texts.pick(kReports));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QStringLiteral("tar.gz"));
    dialog.selectFile(
        proposed_name_with_time(QStringLiteral("m47-problem"), QStringLiteral("tar.gz")));
    const QString path = ask_for_file(dialog, program_, FilePurpose::problem);
    if (path.isEmpty()) return;
    const QString reason = unattended::write_problem_report(path, items, program_.texts);
    if (reason.isEmpty()) return program_.saved(path);
    show_message_box(&window_, QMessageBox::Critical, title,
                     Said{kNotWritten, {path, reason}}.in(program_.texts));
}

}  // namespace m47::shell
