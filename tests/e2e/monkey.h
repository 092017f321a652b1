// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAction>
#include <QDialog>
#include <QMainWindow>
#include <QMap>
#include <QPointer>
#include <QRandomGenerator>
#include <QStringList>
#include <QTimer>

namespace m47 {

/// A user without sense but with a seed: clicks, types, turns and drags at whatever is on the
/// screen, and answers whatever box comes up. It leaves files outside `folder` alone.
class Monkey : public QObject {
  public:
    Monkey(QMainWindow& window, const QString& folder, quint32 seed);

    /// One thing done; what it was, for a report.
    QString step();

    /// Every box that came up, by its kind and title, and how often.
    QMap<QString, int> boxes;
    /// The texts of the boxes that tell of a fault of a handler.
    QStringList faults_told;

    /// Something that nobody would type.
    QString strange_text();

  private:
    int below(int limit) { return random_.bounded(limit); }
    bool one_in(int times) { return below(times) == 0; }
    template <class Kind>
    Kind pick(const QList<Kind>& from) {
        return from.at(below(static_cast<int>(from.size())));
    }

    QString press_action(const QList<QAction*>& from);
    QString press_key_of_a_screen();
    QString poke_widget();
    void click(QWidget* widget);
    void press_key(QWidget* widget);
    void type(QWidget* widget);
    void turn_wheel(QWidget* widget);
    void look_out();
    void handle_front();
    void answer(QDialog* dialog);
    void note(QDialog* dialog);

    QMainWindow& window_;
    QString folder_;
    QRandomGenerator random_;
    QPointer<QDialog> known_;
    int tries_ = 0;
};

}  // namespace m47
