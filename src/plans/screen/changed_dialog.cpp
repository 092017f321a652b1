// SPDX-License-Identifier: GPL-3.0-or-later
#include "changed_dialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "field_words.h"
#include "text_table.h"

namespace m47 {
namespace {

constexpr Bilingual kChangedTitle{"Stored meanwhile", "Memorizzato nel frattempo"};
constexpr Bilingual kWhichToKeep{
    "Another program has changed this program of the plan since it was shown here. Nothing of "
    "yours has been stored yet: which is to stay?",
    "Un altro programma ha modificato questo programma del piano da quando è mostrato qui. Dei "
    "vostri dati nulla è ancora memorizzato: quali devono restare?"};
constexpr Bilingual kStoreMine{"Store &yours", "Memorizza i &vostri"};
constexpr Bilingual kKeepStored{"&Keep what is stored", "&Lascia i memorizzati"};
constexpr Bilingual kGoOnTyping{"&Go on typing", "&Continua a scrivere"};
constexpr Bilingual kChangedColumns[] = {
    {"Field", "Campo"}, {"Stored meanwhile", "Memorizzato nel frattempo"}, {"Yours", "Vostro"}};

QList<QStringList> rows_of_changes(const QList<ChangedField>& fields, const Texts& texts) {
    QList<QStringList> rows;
    for (const ChangedField& field : fields) {
        const QString name = QString::fromLatin1(field.field);
        rows.append(QStringList{field_name_in_words(name, texts),
                                field_in_words(name, field.stored, texts),
                                field_in_words(name, field.typed, texts)});
    }
    return rows;
}

}  // namespace

ChangedDialog::ChangedDialog(const ChangedMeanwhile& change, const Texts& texts, QWidget* parent)
    : QDialog(parent) {
    setObjectName(QStringLiteral("changed_meanwhile"));
    setWindowTitle(texts.pick(kChangedTitle));
    auto* question = new QLabel(texts.pick(kWhichToKeep));
    question->setTextFormat(Qt::PlainText);
    question->setWordWrap(true);
    auto* buttons = new QDialogButtonBox;
    add_button(buttons, "changed_mine", texts.pick(kStoreMine), Choice::mine);
    add_button(buttons, "changed_stored", texts.pick(kKeepStored), Choice::stored);
    add_button(buttons, "changed_neither", texts.pick(kGoOnTyping), Choice::neither);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(question);
    layout->addWidget(text_table("changed_table", kChangedColumns,
                                 rows_of_changes(changed_fields(change), texts), texts));
    layout->addWidget(buttons);
    resize(fontMetrics().averageCharWidth() * 70, fontMetrics().height() * 20);
}

/// The last one added is what Enter does: it changes nothing.
void ChangedDialog::add_button(QDialogButtonBox* box, const char* name, const QString& text,
                               Choice choice) {
    QPushButton* button = box->addButton(text, QDialogButtonBox::ActionRole);
    button->setObjectName(QString::fromLatin1(name));
    button->setAutoDefault(false);
    button->setDefault(choice == Choice::neither);
    connect(button, &QPushButton::clicked, this, [this, choice] {
        choice_ = choice;
        accept();
    });
}

}  // namespace m47
