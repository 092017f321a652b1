// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include "texts.h"

namespace m47::shell {

/// What stands behind the screens: how to get to the meter, what was worked on last, the manual. It
/// only shows and tells what was clicked.
class StartPage : public QScrollArea {
    Q_OBJECT
  public:
    /// A device that a meter may hang on.
    struct Device {
        int number;  ///< of its port
        QString description;
        bool in_use;  ///< the meter answers there
    };
    /// What was worked on last: as it is shown, and what it is known by.
    struct Recent {
        QString shown;
        QString key;
    };

    explicit StartPage(const Texts& texts, QWidget* parent = nullptr);

    void show_devices(const QList<Device>& devices);
    void show_recent(const QList<Recent>& logs, const QList<Recent>& plans);
    /// What came of the last click; empty takes it away.
    void show_result(const QString& text);
    /// Its own words in the language in use now.
    void show_texts();

  Q_SIGNALS:
    void connect_asked(int number);
    void search_asked();
    void simulated_asked();
    void manual_asked();
    void log_asked(const QString& path);
    void plan_asked(const QString& name);

  private:
    QLabel* add_heading();
    QPushButton* add_key(const char* name, void (StartPage::*signal)());
    void add_recent(const QList<Recent>& entries, void (StartPage::*signal)(const QString&));

    const Texts& texts_;
    QVBoxLayout* column_;
    QLabel* meter_;
    QGridLayout* devices_;
    QLabel* no_device_;
    QPushButton* search_;
    QPushButton* simulated_;
    QLabel* result_;
    QLabel* last_;
    QVBoxLayout* recent_;
    QLabel* help_;
    QPushButton* manual_;
};

}  // namespace m47::shell
