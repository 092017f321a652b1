// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>
#include <QDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QTest>
#include <QTimer>
#include <deque>
#include <functional>

namespace m47 {

/// A user who sits before the boxes that a handler opens: answers them in order, as laid ready, and
/// writes down what each one shows. A box that nobody has an answer for is closed.
class BoxAnswers : public QObject {
  public:
    using Answer = std::function<void(QDialog*)>;

    BoxAnswers() {
        connect(&timer_, &QTimer::timeout, this, [this] { look(); });
        timer_.start(10);
    }

    void press(QMessageBox::StandardButton button) {
        answers_.push_back([button](QDialog* box) {
            QTest::mouseClick(qobject_cast<QMessageBox*>(box)->button(button), Qt::LeftButton);
        });
    }
    /// Types `text` in place of what is proposed and presses Enter.
    void type(const QString& text) {
        answers_.push_back([text](QDialog* box) {
            auto* line = box->findChild<QLineEdit*>();
            line->selectAll();
            QTest::keyClick(line, Qt::Key_Delete);
            QTest::keyClicks(line, text);
            QTest::keyClick(line, Qt::Key_Return);
        });
    }
    void answer(const Answer& answer) { answers_.push_back(answer); }

    /// "icon|title|text|button,button" of every message box, "input|title|text|proposal" of every
    /// input box and the object's name of every other, since the last call.
    QStringList take_seen() { return std::exchange(seen_, {}); }

  private:
    void look() {
        auto* box = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!box || box == shown_) return;
        shown_ = box;
        seen_ += described(box);
        if (answers_.empty()) return box->reject();
        const Answer answer = answers_.front();
        answers_.pop_front();
        answer(box);
    }

    static QString described(QDialog* dialog) {
        if (auto* box = qobject_cast<QMessageBox*>(dialog)) {
            static const QStringList kIcons{"none", "information", "exclamation", "critical",
                                            "question"};
            QStringList buttons;
            if (box->standardButtons() & QMessageBox::Ok) buttons += "OK";
            if (box->standardButtons() & QMessageBox::Cancel) buttons += "Cancel";
            return QStringList{kIcons[box->icon()], box->windowTitle(), box->text(),
                               buttons.join(u',')}
                .join(u'|');
        }
        if (auto* box = qobject_cast<QInputDialog*>(dialog))
            return QStringList{"input", box->windowTitle(), box->labelText(), box->textValue()}
                .join(u'|');
        return dialog->objectName();
    }

    QTimer timer_;
    QPointer<QDialog> shown_;
    std::deque<Answer> answers_;
    QStringList seen_;
};

}  // namespace m47
