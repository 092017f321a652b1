// SPDX-License-Identifier: GPL-3.0-or-later
#include "no_database.h"

#include <QCheckBox>
#include <QDir>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QSocketNotifier>

#include "database_error.h"
#include "end_signals.h"
#include "example_plan.h"
#include "handler.h"
#include "message_box.h"
#include "site_store.h"
#include "toolkit_language.h"
#include "work_folder.h"

namespace m47::shell {
namespace {

constexpr Bilingual kQuestion{
    "There are no plans and satellites in the folder %1 yet: it has no database.",
    "Nella cartella %1 non ci sono ancora piani e satelliti: manca il database."};
constexpr Bilingual kCreateHere{"Create &here", "Crea &qui"};
constexpr Bilingual kChooseFolder{"Choose a &folder…", "Scegli una &cartella…"};
constexpr Bilingual kWithExample{"With an &example plan, to try things out",
                                 "Con un piano d'&esempio, per provare"};

enum class Answer { create_here, choose_folder, end };

struct Choice {
    Answer answer;
    bool example;
};

Choice ask(const ProgramState& state) {
    QMessageBox box;
    box.setObjectName(QStringLiteral("no_database"));
    box.setWindowTitle(QStringLiteral("M47"));
    box.setIcon(QMessageBox::Question);
    // Before the text: the name of a folder is no mark-up.
    box.setTextFormat(Qt::PlainText);
    box.setText(Said{kQuestion, {QDir::toNativeSeparators(QDir::cleanPath(state.base_dir))}}.in(
        state.texts));
    auto* example = new QCheckBox(state.texts.pick(kWithExample));
    example->setObjectName(QStringLiteral("example_plan"));
    box.setCheckBox(example);
    const QAbstractButton* here =
        box.addButton(state.texts.pick(kCreateHere), QMessageBox::AcceptRole);
    const QAbstractButton* folder =
        box.addButton(state.texts.pick(kChooseFolder), QMessageBox::ActionRole);
    box.setEscapeButton(box.addButton(QMessageBox::Close));
    // Nobody may be there to answer when the program is told to end.
    const QSocketNotifier told(platform::end_signal_descriptor(), QSocketNotifier::Read);
    QObject::connect(&told, &QSocketNotifier::activated, &box, &QDialog::reject);
    box.exec();
    const Answer answer = box.clickedButton() == here     ? Answer::create_here
                          : box.clickedButton() == folder ? Answer::choose_folder
                                                          : Answer::end;
    return {answer, example->isChecked()};
}

void tell(const db::DatabaseError& error, const ProgramState& state) {
    show_message_box(nullptr, QMessageBox::Critical, QStringLiteral("M47"),
                     db::database_error_text(error, state.texts));
}

std::unique_ptr<db::Database> create_here(bool example, const ProgramState& state) {
    db::DatabaseError error{};
    std::unique_ptr<db::Database> database;
    if (db::Database::create(state.database_file, error))
        database = db::Database::open(state.database_file, error);
    if (!database)
        tell(error, state);
    else if (example)
        run_handler(nullptr, "example_plan", [&] { plans::add_example_plan(*database); });
    return database;
}

/// Nothing where the user chose none, or it has no database either: the question comes again.
std::unique_ptr<db::Database> open_elsewhere(ProgramState& state) {
    const QString folder = QFileDialog::getExistingDirectory(
        nullptr, state.texts.pick(kChooseFolder).remove(u'&'), state.base_dir);
    if (folder.isEmpty() || !unattended::work_in(folder, state)) return nullptr;
    db::DatabaseError error{};
    auto database = db::Database::open(state.database_file, error);
    if (!database && error.fault != db::DatabaseFault::missing) tell(error, state);
    return database;
}

}  // namespace

std::unique_ptr<db::Database> ask_for_database(ProgramState& state) {
    ToolkitLanguage words;
    words.follow(state.texts);
    for (;;) {
        const Choice choice = ask(state);
        if (choice.answer == Answer::end) return nullptr;
        auto database = choice.answer == Answer::create_here ? create_here(choice.example, state)
                                                             : open_elsewhere(state);
        if (database) return database;
    }
}

}  // namespace m47::shell
