// SPDX-License-Identifier: GPL-3.0-or-later
#include "about_box.h"

#include <QClipboard>
#include <QDir>
#include <QGuiApplication>
#include <QMessageBox>
#include <QPushButton>

#include "engine.h"
#include "icons.h"

namespace m47::shell {
namespace {

constexpr Bilingual kAboutTitle{"About m47-remote", "Informazioni su m47-remote"};
constexpr Bilingual kCopyKey{"C&opy", "C&opia"};
constexpr Bilingual kAboutText{
    "m47-remote %1\n"
    "Remote control for the M47 signal level meter\n\n"
    "Qt %2\n"
    "SQLite %3\n"
    "Licence: GPL-3.0-or-later\n"
    "Folder: %4",
    "m47-remote %1\n"
    "Controllo remoto del misuratore di livello M47\n\n"
    "Qt %2\n"
    "SQLite %3\n"
    "Licenza: GPL-3.0-or-later\n"
    "Cartella: %4"};

}  // namespace

QString about_text(const ProgramState& program) {
    return Said{kAboutText,
                {QStringLiteral(M47_VERSION), QString::fromLatin1(qVersion()), db::engine_version(),
                 QDir::cleanPath(program.base_dir)}}
        .in(program.texts);
}

void show_about(QWidget* parent, const ProgramState& program) {
    QMessageBox box(parent);
    box.setObjectName(QStringLiteral("about"));
    box.setWindowTitle(program.texts.pick(kAboutTitle));
    box.setIconPixmap(application_icon().pixmap(64));
    // Before the text: the name of a folder is no mark-up.
    box.setTextFormat(Qt::PlainText);
    box.setText(about_text(program));
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    const QAbstractButton* copy =
        box.addButton(program.texts.pick(kCopyKey), QMessageBox::ActionRole);
    box.setDefaultButton(box.addButton(QMessageBox::Close));
    box.setEscapeButton(QMessageBox::Close);
    // The box stays, so that it is seen what was copied.
    copy->disconnect();
    QObject::connect(copy, &QAbstractButton::clicked, &box,
                     [&box] { QGuiApplication::clipboard()->setText(box.text()); });
    box.exec();
}

}  // namespace m47::shell
