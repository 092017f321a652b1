// SPDX-License-Identifier: GPL-3.0-or-later
#include "meter_settings.h"

#include <QTest>

namespace m47::link {

class MeterSettingsTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void what_the_meter_was_told_is_known_data();
    void what_the_meter_was_told_is_known();
    void another_meter_is_not_known();
};

void MeterSettingsTest::what_the_meter_was_told_is_known_data() {
    QTest::addColumn<QStringList>("commands");
    QTest::addColumn<QString>("known");
    const auto add = [](const char* name, const QStringList& commands, const char* known) {
        QTest::newRow(name) << commands << QString::fromLatin1(known);
    };
    add("nothing", {}, "- - -");
    add("unit", {"UNIT 02"}, "2 - -");
    add("unit asked", {"UNIT? 1"}, "1 - -");
    add("unit of no meter", {"UNIT 02", "UNIT? 7"}, "- - -");
    add("unit that is no number", {"UNIT 02", "UNIT? x"}, "- - -");
    add("frequency", {"FREQ 1000.0", "FREQ 11778"}, "- 11778 -");
    add("frequency asked", {"FREQ? 1177.5"}, "- 1177.5 -");
    add("frequency that was lost", {"FREQ 1000.0", "FREQ?"}, "- - -");
    add("oscillator of the plan", {"LOCOSC 1 09750", "LOCOSC 1"}, "- - 9750");
    add("of two", {"LOCOSC 1 09750", "LOCOSC 2 10600", "LOCOSC 2"}, "- - 10600");
    add("of the option", {"LOCOSC 1 A 10600", "LOCOSC 1 A"}, "- - 10600");
    add("of the box", {"LOCOSC0110600", "LOCOSC01"}, "- - 10600");
    add("stored, not in use", {"LOCOSC 1 09750"}, "- - -");
    add("in use, never stored", {"LOCOSC 3"}, "- - -");
    add("oscillator asked", {"LOCOSC? 01 A 10600"}, "- - 10600");
    add("asked, none", {"LOCOSC 1 09750", "LOCOSC 1", "LOCOSC? 00"}, "- - -");
    add("asked, no answer", {"LOCOSC 1 09750", "LOCOSC 1", "LOCOSC?"}, "- - -");
    add("none", {"LOCOSC 1 09750", "LOCOSC 1", "LOCOSC 00"}, "- - -");
    add("none, of the plan", {"LOCOSC 1 09750", "LOCOSC 1", "LOCOSC 0"}, "- - -");
}

void MeterSettingsTest::what_the_meter_was_told_is_known() {
    QFETCH(QStringList, commands);
    MeterSettings settings;
    for (const QString& command : commands) {
        const qsizetype query = command.indexOf(u'?') + 1;
        const QString sent = query > 0 ? command.left(query) : command;
        settings.take(sent, query > 0 ? command.mid(query + 1) : QStringLiteral("OK"));
    }
    const auto text = [](auto value) {
        return value ? QString::number(*value) : QStringLiteral("-");
    };
    QTEST(text(settings.unit()) + u' ' + text(settings.frequency()) + u' ' +
              text(settings.oscillator()),
          "known");
}

void MeterSettingsTest::another_meter_is_not_known() {
    MeterSettings settings;
    settings.take(QStringLiteral("UNIT 02"), QStringLiteral("OK"));
    settings.forget();
    QVERIFY(!settings.unit());
}

}  // namespace m47::link

QTEST_APPLESS_MAIN(m47::link::MeterSettingsTest)
#include "meter_settings_test.moc"
