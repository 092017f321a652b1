// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QWidget>

#include "texts.h"

class QLabel;
class QToolButton;

namespace m47::shell {

/// "Saved day.dwl [Open]" in the status line, for as long as somebody looks there. What is saved in
/// a box would have to be clicked away.
class SavedNotice : public QWidget {
    Q_OBJECT
  public:
    explicit SavedNotice(const Texts& texts, QWidget* parent = nullptr);

    /// Shows the file, in the language in use now. Open hands it to the desktop.
    void show_file(const QString& path);

  private:
    const Texts& texts_;
    QLabel* name_;
    QToolButton* open_;
    QString path_;
};

}  // namespace m47::shell
