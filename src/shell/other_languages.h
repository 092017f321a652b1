// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAction>
#include <QMenu>
#include <QObject>
#include <QStringList>

#include "texts.h"

namespace m47::shell {

/// Where files of further languages may lie for a program in `program_folder`, in the order in
/// which they are looked for: beside it, where an installation has them, in the user's data folder.
QStringList language_folders(const QString& program_folder);

/// The languages besides English and Italian in the menu, an entry for each file
/// "m47-remote_CODE.qm", of which that of the first folder counts. To the rules such a language is
/// English with other words.
class OtherLanguages : public QObject {
    Q_OBJECT
  public:
    /// The entries come behind those of `menu`, whenever it is about to show.
    OtherLanguages(QMenu* menu, Texts& texts, const QStringList& folders);
    ~OtherLanguages() override;

    /// Lists what is there now.
    void list();
    /// None of them is in use any more.
    void leave();

  Q_SIGNALS:
    /// Another language is in use.
    void chosen();

  private:
    void add_entry(const QString& code, const QString& path);
    void choose(const QString& path, const QString& code);

    QMenu* menu_;
    Texts& texts_;
    QStringList folders_;
    QList<QAction*> entries_;
    QString code_;  ///< of the language in use, empty for none of these
};

}  // namespace m47::shell
