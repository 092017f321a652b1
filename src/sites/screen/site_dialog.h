// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QLineEdit>
#include <QPlainTextEdit>

#include "site_records.h"
#include "texts.h"

class QFormLayout;

namespace m47::sites {

/// The fields of a site. A site has a name: without one there is no OK.
class SiteDialog : public QDialog {
    Q_OBJECT
  public:
    SiteDialog(const Site& site, bool is_new, const Texts& texts, QWidget* parent);

    /// As it stands in the fields.
    Site site() const;

  private:
    QLineEdit* add_line(QFormLayout* form, const char* name, const Bilingual& caption,
                        const QString& text, const Texts& texts);

    Site site_;
    QLineEdit* name_;
    QLineEdit* customer_;
    QLineEdit* address_;
    QPlainTextEdit* remarks_;
};

}  // namespace m47::sites
