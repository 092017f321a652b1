// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine.h"

#include <QFileInfo>
#include <QUrl>
#include <atomic>
#include <utility>

#include "statement_fault.h"

namespace m47::db {
namespace {

std::string words_of(const QSqlError& error) {
    const QString words = error.databaseText().isEmpty() ? error.text() : error.databaseText();
    return words.toStdString();
}

int code_of(const QSqlError& error) {
    bool is_number = false;
    const int code = error.nativeErrorCode().toInt(&is_number);
    return is_number ? code : -1;
}

QString path_of(const QString& address) {
    const QUrl url = QUrl::fromEncoded(address.toLatin1());
    return url.isLocalFile() ? url.toLocalFile() : address;
}

QString next_connection_name() {
    static std::atomic<unsigned> count{0};
    return QStringLiteral("m47-database-%1").arg(++count);
}

StatementFault& statement_fault() {
    static StatementFault current;
    return current;
}

void fail_on_purpose(const QString& statement, const QString& address) {
    if (!statement_fault()) return;
    if (const auto error = statement_fault()(statement)) throw EngineFault(*error, address);
}

}  // namespace

void set_statement_fault(StatementFault fault) {
    statement_fault() = std::move(fault);
}

EngineFault::EngineFault(const QSqlError& error, const QString& address)
    : Fault(words_of(error)), code_(code_of(error)), path_(path_of(address)) {}

Query::Query(const QSqlDatabase& database, const QString& statement, const QVariantList& values)
    : query_(database), address_(database.databaseName()) {
    query_.setForwardOnly(true);
    fail_on_purpose(statement, address_);
    if (!query_.prepare(statement)) throw EngineFault(query_.lastError(), address_);
    run(values);
}

void Query::again(const QVariantList& values) {
    fail_on_purpose(query_.lastQuery(), address_);
    run(values);
}

void Query::run(const QVariantList& values) {
    for (const QVariant& value : values) query_.addBindValue(value);
    if (!query_.exec()) throw EngineFault(query_.lastError(), address_);
}

bool Query::next() {
    fail_on_purpose(query_.lastQuery(), address_);
    if (query_.next()) return true;
    if (query_.lastError().isValid()) throw EngineFault(query_.lastError(), address_);
    return false;
}

QVariant Query::value(int column) const {
    QVariant found = query_.value(column);
    if (found.isNull()) found.clear();
    return found;
}

Connection::Connection(const QString& path)
    : database_(QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), next_connection_name())) {
    // As an address with mode=rw the engine does not make a file that has vanished meanwhile.
    const QUrl address = QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath());
    database_.setDatabaseName(QString::fromLatin1(address.toEncoded()) +
                              QStringLiteral("?mode=rw"));
    database_.setConnectOptions(QStringLiteral("QSQLITE_OPEN_URI;QSQLITE_BUSY_TIMEOUT=3000"));
    if (database_.open()) return;
    const EngineFault fault(database_.lastError(), database_.databaseName());
    forget();
    throw fault;
}

Connection::~Connection() {
    forget();
}

void Connection::forget() {
    const QString name = database_.connectionName();
    database_.close();
    // The last handle has to be gone before the name is.
    database_ = QSqlDatabase();
    QSqlDatabase::removeDatabase(name);
}

QString engine_version() {
    const QString name = next_connection_name();
    QString version;
    {
        QSqlDatabase memory = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        memory.setDatabaseName(QStringLiteral(":memory:"));
        memory.open();
        QSqlQuery asked(QStringLiteral("select sqlite_version()"), memory);
        if (asked.next()) version = asked.value(0).toString();
    }
    QSqlDatabase::removeDatabase(name);
    return version;
}

}  // namespace m47::db
