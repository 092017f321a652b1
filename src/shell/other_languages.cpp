// SPDX-License-Identifier: GPL-3.0-or-later
#include "other_languages.h"

#include <QCoreApplication>
#include <QDir>
#include <QLocale>
#include <QMap>
#include <QStandardPaths>
#include <memory>
#include <utility>

#include "busy_input.h"

namespace m47::shell {
namespace {

const QString kStem = QStringLiteral("m47-remote_");
const QString kSuffix = QStringLiteral(".qm");

/// The name of a language in itself.
QString name_of(const QString& code) {
    QString name = QLocale(code).nativeLanguageName();
    if (name.isEmpty()) return code;
    name[0] = name[0].toUpper();
    return name;
}

}  // namespace

QStringList language_folders(const QString& program_folder) {
    const QDir folder(program_folder);
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return {
        QDir::cleanPath(folder.filePath(QStringLiteral("translations"))),
        QDir::cleanPath(folder.filePath(QStringLiteral("../share/m47-remote/translations"))),
        data + QStringLiteral("/m47-remote/translations"),
    };
}

OtherLanguages::OtherLanguages(QMenu* menu, Texts& texts, const QStringList& folders)
    : QObject(menu), menu_(menu), texts_(texts), folders_(folders) {
    connect(menu, &QMenu::aboutToShow, this, &OtherLanguages::list);
}

OtherLanguages::~OtherLanguages() {
    leave();
}

void OtherLanguages::list() {
    qDeleteAll(std::exchange(entries_, {}));
    QMap<QString, QString> found;
    for (const QString& folder : folders_)
        for (const QString& file : QDir(folder).entryList({kStem + u'*' + kSuffix}, QDir::Files)) {
            const QString code = file.mid(kStem.size()).chopped(kSuffix.size());
            if (!found.contains(code)) found[code] = QDir(folder).filePath(file);
        }
    for (auto one = found.cbegin(); one != found.cend(); ++one) add_entry(one.key(), one.value());
}

void OtherLanguages::add_entry(const QString& code, const QString& path) {
    QAction* entry = menu_->addAction(name_of(code));
    entry->setObjectName(QStringLiteral("cmdlanguage_") + code);
    entry->setCheckable(true);
    entry->setChecked(code == code_);
    keep_while_busy(entry);
    connect(entry, &QAction::triggered, this, [this, code, path] { choose(path, code); });
    entries_ += entry;
}

void OtherLanguages::choose(const QString& path, const QString& code) {
    auto catalogue = std::make_shared<Catalogue>();
    // A file that is none leaves all as it is.
    if (!catalogue->load(path)) return;
    leave();
    QCoreApplication::installTranslator(catalogue.get());
    texts_.catalogue = catalogue;
    texts_.language = kEnglish;
    code_ = code;
    Q_EMIT chosen();
}

void OtherLanguages::leave() {
    code_.clear();
    if (!texts_.catalogue) return;
    QCoreApplication::removeTranslator(texts_.catalogue.get());
    texts_.catalogue.reset();
}

}  // namespace m47::shell
