// SPDX-License-Identifier: GPL-3.0-or-later
// The screen "Sites" by clicks and typing, on a file with a year of visits.
#include <QCheckBox>
#include <QDateEdit>
#include <QDoubleSpinBox>
#include <QHeaderView>
#include <QPlainTextEdit>
#include <QStackedWidget>
#include <QStyleFactory>
#include <QTabWidget>
#include <QTreeView>

#include "box_answers.h"
#include "contrast_style.h"
#include "handler.h"
#include "program_in_folder.h"
#include "sample_year.h"
#include "site_table_view.h"
#include "sites.h"
#include "sites_support.h"
#include "tone_delegate.h"
#include "visit_chart_view.h"

namespace m47::sites {

class SitesScreenTest : public QObject, protected ProgramInFolder {
    Q_OBJECT

  private:
    Sites* screen_ = nullptr;
    std::unique_ptr<BoxAnswers> boxes_;

    Sites* open(bool english = true) {
        window().findChild<QAction*>(english ? "cmdinglese" : "cmditaliano")->trigger();
        window().open_screen("sites");
        screen_ = window().opened<Sites>();
        return screen_;
    }
    void start_with_year() {
        {
            const auto store = opened_sites(folder());
            fill_year(*store);
        }
        start_program(QSize(1100, 720));
        open();
    }
    template <class Kind>
    Kind* control(const char* name) {
        return find<Kind>(name, screen_);
    }
    void click(const char* name) {
        QTest::mouseClick(control<QAbstractButton>(name), Qt::LeftButton);
    }
    QTreeView* tree() { return control<QTreeView>("sites_tree"); }
    QStringList shown_sites() {
        QStringList names;
        for (int row = 0; row < tree()->model()->rowCount(); ++row)
            names += tree()->model()->index(row, 0).data().toString();
        return names;
    }
    /// Clicks on site `site`, or its visit `visit` (0: the latest).
    void choose(int site, int visit = -1) {
        QModelIndex place = tree()->model()->index(site, 0);
        if (visit >= 0) {
            tree()->expand(place);
            place = tree()->model()->index(visit, 0, place);
        }
        tree()->scrollTo(place);
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {},
                          tree()->visualRect(place).center());
    }
    void turn_to(const char* view) {
        control<QTabWidget>("sites_views")->setCurrentWidget(control<QWidget>(view));
    }
    QStringList column(const char* table, const char* heading) {
        const QAbstractItemModel* model = control<SiteTableView>(table)->model();
        QStringList cells;
        for (int k = 0; k < model->columnCount(); ++k)
            if (model->headerData(k, Qt::Horizontal).toString() == QString::fromUtf8(heading))
                for (int row = 0; row < model->rowCount(); ++row)
                    cells += model->index(row, k).data().toString();
        return cells;
    }
    void click_heading(const char* table, const char* heading) {
        auto* view = control<SiteTableView>(table);
        for (int k = 0; k < view->model()->columnCount(); ++k) {
            if (view->model()->headerData(k, Qt::Horizontal).toString() != heading) continue;
            view->scrollTo(view->model()->index(0, k));
            const auto* header = view->horizontalHeader();
            QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                              {header->sectionViewportPosition(k) + 10, header->height() / 2});
        }
    }
    void double_click(const char* table, int row) {
        auto* view = control<SiteTableView>(table);
        const QPoint place = view->visualRect(view->model()->index(row, 1)).center();
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, place);
    }
    void look_through_all() {
        turn_to("view_worse");
        click("sites_look");
        QTRY_VERIFY(control<QLabel>("sites_worse_state")->text().startsWith("Programs"));
    }
    QString note() { return control<QLabel>("sites_note")->text(); }
    bool at_work() {
        return control<QStackedWidget>("sites_pages")->currentWidget()->objectName() ==
               "sites_work";
    }
    QString told() { return find<QLabel>("corrected_notice")->text(); }

  private Q_SLOTS:
    void init() {
        new_folder();
        boxes_ = std::make_unique<BoxAnswers>();
    }
    void cleanup() {
        boxes_.reset();
        end_program();
    }

    void without_a_file_it_says_what_to_do_and_makes_none() {
        start_program(QSize(1100, 720));
        open();
        QVERIFY(!at_work());
        QVERIFY2(note().startsWith("No sites yet."), qPrintable(note()));
        for (const char* key : {"sites_edit", "sites_remove", "sites_save", "sites_look"}) {
            if (QByteArray(key) == "sites_look") continue;
            click(key);
            QVERIFY2(!told().isEmpty(), key);
        }
        QVERIFY(!QFile::exists(sites_in(folder())));
    }

    void pictures() {
        const QString pictures = qEnvironmentVariable("M47_PICTURES");
        if (pictures.isEmpty()) QSKIP("no folder for them");
        QApplication::setStyle(new ContrastStyle);
        {
            const auto store = opened_sites(folder());
            fill_year(*store);
        }
        start_program(QSize(1364, 738));
        for (const bool english : {true, false}) {
            open(english);
            for (const bool dark : {false, true}) {
                QPalette colours(QColor(dark ? 0x353535 : 0xefefef),
                                 QColor(dark ? 0x353535 : 0xefefef));
                for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
                    colours.setColor(role, dark ? Qt::white : Qt::black);
                colours.setColor(QPalette::Base, QColor(dark ? 0x242424 : 0xffffff));
                colours.setColor(QPalette::AlternateBase, QColor(dark ? 0x2b2b2b : 0xf6f6f6));
                QApplication::setPalette(colours);
                choose(0);
                choose(0, 0);
                const auto save = [&](const char* what) {
                    QTest::qWait(100);
                    window().grab().save(
                        QStringLiteral("%1/sites-%2-%3-%4.png")
                            .arg(pictures, what, english ? "en" : "it", dark ? "dark" : "light"));
                };
                turn_to("view_rows");
                save("rows");
                turn_to("view_compare");
                control<QComboBox>("sites_with")->setCurrentIndex(1);
                Q_EMIT control<QComboBox>("sites_with")->activated(1);
                save("compare");
                double_click("sites_compared", 1);
                save("chart");
                turn_to("view_worse");
                click("sites_look");
                QTest::qWait(200);
                save("worse");
            }
            screen_->parentWidget()->close();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }
};

}  // namespace m47::sites

QTEST_MAIN(m47::sites::SitesScreenTest)
#include "sites_screen_test.moc"
