// SPDX-License-Identifier: GPL-3.0-or-later
#include "tooltips.h"

#include <QAction>
#include <QGroupBox>
#include <QLineEdit>
#include <QMainWindow>
#include <QTest>
#include <QToolBar>

#include "fault.h"

namespace m47 {
namespace {

const Tooltip kTable[] = {
    {"fsat", "Select frequency", "Selezione frequenza"},
    {"ol_freq", "Local Oscillator Frequency", nullptr},
    {"time_act", nullptr, "Data e ora del sistema"},
    {"start", "Timed Acquisition", "Citt\xc3\xa0"},
};

/// A screen with a frame, two boxes, a label within it and a toolbar key.
class Screen : public QMainWindow {
  public:
    Screen() {
        auto* frame = named(new QGroupBox(this), "satdigmea");
        fsat = named(new QLineEdit(frame), "fsat");
        ol_freq = named(new QLineEdit(this), "ol_freq");
        time_act = named(new QWidget(this), "time_act");
        start = named(addToolBar("barracomandi")->addAction("start"), "start");
        time_act->setToolTip("of the form");
    }
    QWidget* fsat;
    QWidget* ol_freq;
    QWidget* time_act;
    QAction* start;

  private:
    template <class Control>
    static Control* named(Control* control, const char* name) {
        control->setObjectName(QString::fromLatin1(name));
        return control;
    }
};

}  // namespace

class TooltipsTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void by_language_data() {
        QTest::addColumn<int>("language");
        QTest::addColumn<bool>("italian");
        for (int language = 0; language <= 6; ++language)
            QTest::addRow("%d", language) << language << (language == 4);
    }

    void by_language() {
        QFETCH(int, language);
        QFETCH(bool, italian);
        Screen screen;
        Texts texts;
        texts.language = language;
        set_tooltips(&screen, kTable, texts);
        QCOMPARE(screen.fsat->toolTip(),
                 QString(italian ? "Selezione frequenza" : "Select frequency"));
        QCOMPARE(screen.ol_freq->toolTip(), QString("Local Oscillator Frequency"));
        QCOMPARE(screen.time_act->toolTip(), QString(italian ? "Data e ora del sistema" : ""));
        QCOMPARE(screen.start->toolTip(),
                 italian ? QStringLiteral("Citt\u00e0") : QString("Timed Acquisition"));
    }

    void an_open_screen_keeps_its_language() {
        Screen screen;
        Texts texts;
        texts.language = kItalian;
        set_tooltips(&screen, kTable, texts);
        texts.language = kEnglish;
        QCOMPARE(screen.fsat->toolTip(), QString("Selezione frequenza"));
        Screen opened_again;
        set_tooltips(&opened_again, kTable, texts);
        QCOMPARE(opened_again.fsat->toolTip(), QString("Select frequency"));
    }

    void an_entry_without_its_control() {
        Screen screen;
        const Tooltip table[] = {{"fsat", "a", "b"}, {"srqpsk_txt", "c", "d"}};
        QString what;
        try {
            set_tooltips(&screen, table, Texts());
        } catch (const Fault& fault) {
            what = QString::fromUtf8(fault.what());
        }
        QVERIFY2(what.contains("srqpsk_txt"), qPrintable(what));
    }

    void one_tooltip_of_a_widget_or_a_key() {
        Screen screen;
        set_tooltip(screen.fsat, "one");
        set_tooltip(screen.start, "Open file");
        QCOMPARE(screen.fsat->toolTip(), QString("one"));
        QCOMPARE(screen.start->toolTip(), QString("Open file"));
    }
};

}  // namespace m47

QTEST_MAIN(m47::TooltipsTest)
#include "tooltips_test.moc"
