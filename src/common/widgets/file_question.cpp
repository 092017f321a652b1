// SPDX-License-Identifier: GPL-3.0-or-later
#include "file_question.h"

namespace m47 {

QString ask_for_file(QFileDialog& dialog, const ProgramState& program) {
    dialog.setDirectory(program.preferences.directory(program.base_dir));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
    const QString chosen = dialog.selectedFiles().constFirst();
    program.preferences.file_chosen(chosen);
    return chosen;
}

}  // namespace m47
