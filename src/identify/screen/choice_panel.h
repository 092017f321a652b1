// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QWidget>

#include "candidate_choice.h"
#include "texts.h"

namespace m47::identify {

/// What stands in the boxes of the choice.
struct ChoiceBoxes {
    enum From { tables, part_of_arc, plans };
    enum Kind { universal, single, c_band };
    int from = tables;
    QString one = QStringLiteral("5.0E");
    QString other = QStringLiteral("30.0E");
    QString folder = QString::fromLatin1(kTablesFolder);
    int lnb = universal;
    QString oscillator = QStringLiteral("9750");  ///< MHz, of a single one
    bool circular = false;
    QString dish = QStringLiteral("80");  ///< diameter, cm
};

/// What the boxes ask for.
CandidateChoice choice_of(const ChoiceBoxes& boxes);

/// The sentence about what in the boxes cannot be; null where all can.
const Bilingual* fault_of(const ChoiceBoxes& boxes);

/// The choice before the start: which satellites are candidates, and which LNB is at hand.
class ChoicePanel : public QWidget {
    Q_OBJECT
  public:
    ChoicePanel(const ChoiceBoxes& boxes, const Texts& texts, QWidget* parent = nullptr);

    ChoiceBoxes boxes() const;
    /// The scan tables lie in `folder`.
    void set_folder(const QString& folder);

  Q_SIGNALS:
    /// Another folder of scan tables is wanted.
    void folder_asked();

  private:
    void build_candidates(QGridLayout* layout, const ChoiceBoxes& boxes);
    void build_lnb(QGridLayout* layout, const ChoiceBoxes& boxes);
    void build_dish(QBoxLayout* row, const ChoiceBoxes& boxes);
    QComboBox* list(const char* name, const Bilingual& caption, QGridLayout* layout, int row);
    QLineEdit* box(const char* name, const QString& text, const QString& longest,
                   const Bilingual& tip);
    void enable_boxes();
    void lnb_chosen();

    const Texts& texts_;
    QString folder_;
    QComboBox* from_ = nullptr;
    QLineEdit* one_ = nullptr;
    QLineEdit* other_ = nullptr;
    QPushButton* tables_ = nullptr;
    QComboBox* lnb_ = nullptr;
    QLineEdit* oscillator_ = nullptr;
    QCheckBox* circular_ = nullptr;
    QLineEdit* dish_ = nullptr;
    int usual_dish_ = 0;  ///< of the LNB that was chosen last, cm
};

}  // namespace m47::identify
