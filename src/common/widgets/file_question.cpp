// SPDX-License-Identifier: GPL-3.0-or-later
#include "file_question.h"

#include <QDateTime>
#include <QFileInfo>
#include <QMessageBox>

namespace m47 {
namespace {

constexpr Bilingual kIsDatabase{"%1 is the database of this program. Choose another file.",
                                "%1 è il database di questo programma. Scegliere un altro file."};
constexpr Bilingual kIsSitesFile{
    "%1 is this program's file of sites and visits. Choose another file.",
    "%1 è il file dei siti e delle visite di questo programma. Scegliere un altro file."};

/// A name that a file has stands for that file: the suffix is for new names alone. While the
/// dialog knows the suffix it would put it behind either.
class SuffixForNewNames {
  public:
    explicit SuffixForNewNames(QFileDialog& dialog) : dialog_(dialog) {
        take();
        // Behind the one that chooses another suffix with another kind of file.
        QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, [this] { take(); });
        // Without its suffix the name of a file may be none.
        if (!suffix_.isEmpty()) dialog.setFileMode(QFileDialog::AnyFile);
    }

    QString put_behind(const QString& chosen) const {
        const QFileInfo about(chosen);
        const bool as_it_is =
            suffix_.isEmpty() || about.exists() || about.fileName().contains(u'.');
        return as_it_is ? chosen : chosen + u'.' + suffix_;
    }

  private:
    void take() {
        suffix_ = dialog_.defaultSuffix();
        dialog_.setDefaultSuffix({});
    }

    QFileDialog& dialog_;
    QString suffix_;
};

/// The dialog's own question, for a name that it has not seen.
bool agrees_to_replace(QFileDialog& dialog, const QString& path) {
    const QString text = QFileDialog::tr("%1 already exists.\nDo you want to replace it?")
                             .arg(QFileInfo(path).fileName());
    QMessageBox box(QMessageBox::Warning, dialog.windowTitle(), text,
                    QMessageBox::Yes | QMessageBox::No, dialog.parentWidget());
    box.setTextFormat(Qt::PlainText);
    return box.exec() == QMessageBox::Yes;
}

bool confirms_replacing(const QFileDialog& dialog) {
    return dialog.acceptMode() == QFileDialog::AcceptSave &&
           !dialog.testOption(QFileDialog::DontConfirmOverwrite);
}

/// The file that the user has chosen, empty for none.
QString chosen_file(QFileDialog& dialog) {
    const SuffixForNewNames suffix(dialog);
    while (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty()) {
        const QString chosen = dialog.selectedFiles().constFirst();
        const QString path = suffix.put_behind(chosen);
        const bool replaces = path != chosen && QFileInfo::exists(path);
        if (!replaces || !confirms_replacing(dialog) || agrees_to_replace(dialog, path))
            return path;
    }
    return {};
}

bool lead_to_one_file(const QString& path, const QString& kept) {
    const QString file = QFileInfo(kept).canonicalFilePath();
    return !file.isEmpty() && QFileInfo(path).canonicalFilePath() == file;
}

/// What the program keeps at `path` for itself, which is nobody's to choose; nothing for all else.
const Bilingual* kept_at(const QString& path, const ProgramState& program) {
    if (lead_to_one_file(path, program.database_file)) return &kIsDatabase;
    return lead_to_one_file(path, program.sites_file) ? &kIsSitesFile : nullptr;
}

QString name_of_now(const QString& stem, const QString& format, const QString& suffix) {
    const QString name = stem + u'-' + QDateTime::currentDateTime().toString(format);
    return suffix.isEmpty() ? name : name + u'.' + suffix;
}

}  // namespace

QString proposed_name(const QString& stem, const QString& suffix) {
    return name_of_now(stem, QStringLiteral("yyyyMMdd"), suffix);
}

QString proposed_name_with_time(const QString& stem, const QString& suffix) {
    return name_of_now(stem, QStringLiteral("yyyyMMdd-HHmmss"), suffix);
}

QString ask_for_file(QFileDialog& dialog, const ProgramState& program, FilePurpose purpose) {
    dialog.setDirectory(program.preferences.directory(purpose, program.base_dir));
    const QString chosen = chosen_file(dialog);
    if (chosen.isEmpty()) return {};
    if (const Bilingual* kept = kept_at(chosen, program)) {
        QMessageBox box(QMessageBox::Warning, dialog.windowTitle(),
                        program.texts.pick(*kept).arg(chosen), QMessageBox::Ok,
                        dialog.parentWidget());
        box.setTextFormat(Qt::PlainText);
        box.exec();
        return {};
    }
    program.preferences.file_chosen(purpose, chosen);
    return chosen;
}

}  // namespace m47
