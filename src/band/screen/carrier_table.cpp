// SPDX-License-Identifier: GPL-3.0-or-later
#include "carrier_table.h"

#include <QHeaderView>
#include <QKeyEvent>

#include "measurement.h"
#include "tooltips.h"

namespace m47::band {
namespace {

constexpr Bilingual kCarrierColumns[] = {{"LNB", "LNB"},         {"Centre", "Centro"},
                                         {"Width", "Larghezza"}, {"Level", "Livello"},
                                         {"Height", "Altezza"},  {"Name", "Nome"}};
constexpr Bilingual kUnits[] = {
    {"LNB supply and tone", "Alimentazione e tono LNB"},
    {"Centre, MHz", "Centro, MHz"},
    {"Width at half of the power, MHz", "Larghezza a metà della potenza, MHz"},
    {"Level of its top, in the meter's unit", "Livello della sommità, nell'unità dello strumento"},
    {"Height above the valley beside it, dB", "Altezza sopra la valle accanto, dB"},
    {"Name in the scan table", "Nome nella tabella di scansione"}};
constexpr Bilingual kAsItIs{"as it is", "com'è"};
constexpr Bilingual kAll{"all four", "tutti e quattro"};

QString with_digit(double value) {
    return QString::number(value, 'f', 1);
}

QStringList cells_of(const FoundCarrier& found, const Texts& texts) {
    const Carrier& carrier = found.carrier;
    const double centre = found.terms.oscillator
                              ? sky_frequency(carrier.centre, *found.terms.oscillator)
                              : carrier.centre;
    return {feed_text(found.terms.feed, texts), with_digit(centre),
            with_digit(carrier.width),          with_digit(carrier.level),
            with_digit(carrier.height),         carrier.name};
}

}  // namespace

CarrierTable::CarrierTable(QWidget* parent) : QTableWidget(parent) {
    verticalHeader()->hide();
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setTabKeyNavigation(false);
    setColumnCount(static_cast<int>(std::size(kCarrierColumns)));
    horizontalHeader()->setStretchLastSection(true);
    connect(this, &QTableWidget::cellClicked, this, &CarrierTable::chosen);
}

void CarrierTable::show_carriers(const std::vector<FoundCarrier>& carriers, const Texts& texts) {
    for (int column = 0; column < columnCount(); ++column) {
        auto* header = new QTableWidgetItem(texts.pick(kCarrierColumns[column]));
        header->setToolTip(texts.pick(kUnits[column]));
        setHorizontalHeaderItem(column, header);
    }
    setRowCount(static_cast<int>(carriers.size()));
    for (int row = 0; row < rowCount(); ++row) {
        const QStringList cells = cells_of(carriers[static_cast<std::size_t>(row)], texts);
        for (int column = 0; column < columnCount(); ++column) {
            auto* item = new QTableWidgetItem(cells[column]);
            const bool number = column > 0 && column < columnCount() - 1;
            if (number) item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
            // A name may be longer than its column.
            if (!number) item->setToolTip(plain_tooltip(cells[column]));
            setItem(row, column, item);
        }
    }
    // The last one takes what is left.
    for (int column = 0; column < columnCount() - 1; ++column) resizeColumnToContents(column);
    // The toolkit would do that by a timer, which rests as long as a sweep goes on.
    doItemsLayout();
}

void CarrierTable::keyPressEvent(QKeyEvent* event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && currentRow() >= 0) {
        Q_EMIT chosen(currentRow());
        return;
    }
    QTableWidget::keyPressEvent(event);
}

QString feed_text(const Feed& feed, const Texts& texts) {
    if (!feed.volts && !feed.tone) return texts.pick(kAsItIs);
    QStringList parts;
    if (feed.volts) parts += QStringLiteral("%1 V").arg(*feed.volts);
    if (feed.tone.value_or(false)) parts += QStringLiteral("22 kHz");
    return parts.join(u' ');
}

QString all_feeds_text(const Texts& texts) {
    return texts.pick(kAll);
}

}  // namespace m47::band
