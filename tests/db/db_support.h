// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QMap>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTest>
#include <memory>

#include "database.h"

namespace m47::db {

/// The database file in `folder`.
QString database_in(const QString& folder);

/// Opens the file; a failure ends the test with the fault's number and words.
std::unique_ptr<Database> opened(const QString& path);

/// Makes the database file in `folder` and opens it.
std::unique_ptr<Database> made_in(const QString& folder);

/// Appends a row with the given fields.
void add_row(Recordset& set, const QMap<QString, QVariant>& fields);

/// The names and contents of all files in `folder`, hidden ones too.
QMap<QString, QByteArray> files_in(const QString& folder);

QByteArray content_of(const QString& path);
void write_file(const QString& path, const QByteArray& content);

/// Runs statements on a connection of its own and gives back the first column of the answer to the
/// last one. Independent of the code under test.
QStringList run_sql(const QString& path, const QStringList& statements);

/// The fields of the row that are set, as text, read by a connection of its own.
QMap<QString, QString> row_of(const QString& path, const QString& table, qint64 id);

/// As the first argument of a Child: give up the rights of root first.
inline constexpr const char* kOrdinaryUser = "--ordinary-user";

/// This test program again as another process, in one of the roles of run_child.
class Child {
  public:
    /// `ordinary_user`: without the rights of root, where the test runs as root.
    explicit Child(const QStringList& arguments, bool ordinary_user = false);
    ~Child();

    /// The next line it prints, without its end; fails the test after 30 s.
    QString line();
    void kill_now();
    /// Waits for its end and gives back everything it has printed since.
    QString rest();

  private:
    QProcess process_;
};

/// The roles of a Child; the process's exit status.
int run_child(QStringList arguments);

}  // namespace m47::db

/// The main function of a test that starts itself as a Child.
#define M47_DB_TEST_MAIN(TestClass)                                  \
    int main(int argc, char** argv) {                                \
        const QCoreApplication application(argc, argv);              \
        const QStringList arguments = QCoreApplication::arguments(); \
        if (arguments.value(1) == QLatin1String("--child"))          \
            return m47::db::run_child(arguments.mid(2));             \
        TestClass test;                                              \
        return QTest::qExec(&test, argc, argv);                      \
    }

/// The statement has to fault, and the words have to contain `part`.
#define M47_VERIFY_FAULT(statement, part)                                 \
    do {                                                                  \
        QString words = QStringLiteral("(no fault)");                     \
        try {                                                             \
            statement;                                                    \
        } catch (const m47::Fault& fault) {                               \
            words = QString::fromUtf8(fault.what());                      \
        }                                                                 \
        QVERIFY2(words.contains(QLatin1String(part)), qPrintable(words)); \
    } while (false)
