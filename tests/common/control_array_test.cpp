// SPDX-License-Identifier: GPL-3.0-or-later
#include "control_array.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QTest>

#include "fault.h"

namespace m47 {

class ControlArrayTest : public QObject {
    Q_OBJECT

    template <class Control>
    static Control* add(QWidget* parent, const char* name) {
        auto* control = new Control(parent);
        control->setObjectName(QString::fromLatin1(name));
        return control;
    }

    /// What is wrong with the array "box" of `screen`, as a form's author would read it.
    static QString fault_of(const QWidget& screen) {
        try {
            const ControlArray<QCheckBox> array(&screen, "box");
        } catch (const Fault& fault) {
            return QString::fromUtf8(fault.what());
        }
        return QString("no fault");
    }

  private Q_SLOTS:
    void in_order_whatever_the_form_s_order() {
        QWidget screen;
        // More than ten, so that 10 must not come before 2.
        QList<QCheckBox*> boxes;
        for (int k = 11; k >= 0; --k)
            boxes.prepend(add<QCheckBox>(&screen, QByteArray("box_" + QByteArray::number(k))));
        const ControlArray<QCheckBox> array(&screen, "box");
        QCOMPARE(array.size(), std::size_t{12});
        for (std::size_t k = 0; k < array.size(); ++k)
            QCOMPARE(array[k], boxes[static_cast<qsizetype>(k)]);
        QCOMPARE(QList<QCheckBox*>(array.begin(), array.end()), boxes);
    }

    void within_frames() {
        QWidget screen;
        auto* frame = add<QGroupBox>(&screen, "frame");
        auto* second = add<QCheckBox>(frame, "box_1");
        auto* first = add<QCheckBox>(&screen, "box_0");
        const ControlArray<QCheckBox> array(&screen, "box");
        QCOMPARE(array.size(), std::size_t{2});
        QCOMPARE(array[0], first);
        QCOMPARE(array[1], second);
    }

    void similar_names_do_not_count() {
        QWidget screen;
        add<QCheckBox>(&screen, "box_0");
        for (const char* name :
             {"box", "box_", "box_a", "box_1a", "my_box_1", "box_1_2", "boxes_1"})
            add<QCheckBox>(&screen, name);
        QCOMPARE(ControlArray<QCheckBox>(&screen, "box").size(), std::size_t{1});
    }

    void a_name_is_no_pattern() {
        QWidget screen;
        add<QCheckBox>(&screen, "box_0");
        QVERIFY_THROWS_EXCEPTION(Fault, ControlArray<QCheckBox>(&screen, "b.x"));
    }

    void past_the_end() {
        QWidget screen;
        add<QCheckBox>(&screen, "box_0");
        const ControlArray<QCheckBox> array(&screen, "box");
        QVERIFY_THROWS_EXCEPTION(std::out_of_range, static_cast<void>(array[1]));
    }

    void faults_data() {
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QString>("named");
        QTest::newRow("none") << QStringList{} << "box";
        QTest::newRow("does not start at 0") << QStringList{"box_1"} << "box_1";
        QTest::newRow("gap") << QStringList{"box_0", "box_1", "box_3"} << "box_3";
        QTest::newRow("twice") << QStringList{"box_0", "box_1", "box_1"} << "box_1";
        QTest::newRow("far away") << QStringList{"box_0", "box_99999999999"} << "box_99999999999";
    }

    void faults() {
        QFETCH(QStringList, names);
        QFETCH(QString, named);
        QWidget screen;
        for (const QString& name : names) add<QCheckBox>(&screen, name.toLatin1());
        const QString fault = fault_of(screen);
        QVERIFY2(fault.contains(named) && fault != "no fault", qPrintable(fault));
    }

    void another_kind() {
        QWidget screen;
        add<QCheckBox>(&screen, "box_0");
        add<QLabel>(&screen, "box_1");
        const QString fault = fault_of(screen);
        QVERIFY2(fault.contains("box") && fault.contains(u'1'), qPrintable(fault));
    }
};

}  // namespace m47

QTEST_MAIN(m47::ControlArrayTest)
#include "control_array_test.moc"
