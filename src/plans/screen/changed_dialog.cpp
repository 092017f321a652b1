// SPDX-License-Identifier: GPL-3.0-or-later
#include "changed_dialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "field_words.h"
#include "text_table.h"

namespace m47::plans {
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
constexpr Bilingual kDeleteChanged{
    "Another program has changed what is to be deleted since it was shown here. Nothing has been "
    "deleted yet: delete it all the same?",
    "Un altro programma ha modificato ciò che è da cancellare da quando è mostrato qui. Nulla è "
    "ancora cancellato: cancellare lo stesso?"};
constexpr Bilingual kDeleteAllTheSame{"&Delete all the same", "&Cancella lo stesso"};
constexpr Bilingual kStoringColumns[] = {
    {"Field", "Campo"}, {"Stored meanwhile", "Memorizzato nel frattempo"}, {"Yours", "Vostro"}};
constexpr Bilingual kDeletingColumns[] = {{"Field", "Campo"},
                                          {"Stored meanwhile", "Memorizzato nel frattempo"},
                                          {"Shown here", "Mostrato qui"}};

QString name_of_field(const ChangedField& field, const Texts& texts) {
    const QString name = field_name_in_words(QString::fromLatin1(field.field), texts);
    return field.number.isEmpty() ? name : field.number + QStringLiteral(": ") + name;
}

QList<QStringList> rows_of_changes(const QList<ChangedField>& fields, const Texts& texts) {
    QList<QStringList> rows;
    for (const ChangedField& field : fields) {
        const QString name = QString::fromLatin1(field.field);
        rows.append(QStringList{name_of_field(field, texts),
                                field_in_words(name, field.stored, texts),
                                field_in_words(name, field.typed, texts)});
    }
    return rows;
}

}  // namespace

ChangedDialog::ChangedDialog(const ChangedMeanwhile& change, const Texts& texts, QWidget* parent)
    : QDialog(parent) {
    show_changes(texts.pick(kWhichToKeep), changed_fields(change), kStoringColumns, texts);
    add_button("changed_mine", texts.pick(kStoreMine), Choice::mine);
    add_button("changed_stored", texts.pick(kKeepStored), Choice::stored);
    add_button("changed_neither", texts.pick(kGoOnTyping), Choice::neither);
}

ChangedDialog::ChangedDialog(const RemovalChanged& change, const Texts& texts, QWidget* parent)
    : QDialog(parent) {
    show_changes(texts.pick(kDeleteChanged), changed_fields(change), kDeletingColumns, texts);
    add_button("changed_mine", texts.pick(kDeleteAllTheSame), Choice::mine);
    add_button("changed_neither", texts.pick(kKeepStored), Choice::neither);
}

void ChangedDialog::show_changes(const QString& question, const QList<ChangedField>& fields,
                                 std::span<const Bilingual> columns, const Texts& texts) {
    setObjectName(QStringLiteral("changed_meanwhile"));
    setWindowTitle(texts.pick(kChangedTitle));
    auto* label = new QLabel(question);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    buttons_ = new QDialogButtonBox;
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(text_table("changed_table", columns, rows_of_changes(fields, texts), texts));
    layout->addWidget(buttons_);
    resize(fontMetrics().averageCharWidth() * 70, fontMetrics().height() * 20);
}

/// The last one added is what Enter does: it changes nothing.
void ChangedDialog::add_button(const char* name, const QString& text, Choice choice) {
    QPushButton* button = buttons_->addButton(text, QDialogButtonBox::ActionRole);
    button->setObjectName(QString::fromLatin1(name));
    button->setAutoDefault(false);
    button->setDefault(choice == Choice::neither);
    connect(button, &QPushButton::clicked, this, [this, choice] {
        choice_ = choice;
        accept();
    });
}

}  // namespace m47::plans
