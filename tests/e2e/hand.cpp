// SPDX-License-Identifier: GPL-3.0-or-later
// A hand in the real program: a plug-in of the toolkit, loaded because a test's environment asks
// for it. It takes orders from stdin, one a line, in their turn, each as soon as it can be done:
//   trigger NAME     the action NAME of a menu or toolbar
//   click NAME       the button NAME, in the box in front where there is one
//   pick NAME ROW    a row of the list NAME
//   press BUTTON     a standard button of the message box in front, "Yes"
//   accept           the dialog in front
//   file PATH        the file dialog in front takes PATH
//   print PATH       the print dialog in front prints into the PDF file PATH
//   type NAME TEXT   into the box NAME
//   choose NAME ROW  of a drop-down list
// Each order is said on stdout when it is begun, "ready" when there is none left.
#include <unistd.h>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QFileDialog>
#include <QGenericPlugin>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QMetaEnum>
#include <QPrintDialog>
#include <QPrinter>
#include <QSocketNotifier>
#include <QTimer>
#include <chrono>

namespace m47 {
namespace {

constexpr std::chrono::milliseconds kLookAgain{10};

template <class Object>
Object* find(const QString& name) {
    QWidgetList windows = QApplication::topLevelWidgets();
    if (QWidget* box = QApplication::activeModalWidget()) windows = {box};
    for (QWidget* window : std::as_const(windows))
        for (Object* found : window->findChildren<Object*>(name))
            if (found->isEnabled()) return found;
    return nullptr;
}

template <class Dialog>
Dialog* in_front() {
    return qobject_cast<Dialog*>(QApplication::activeModalWidget());
}

/// What has to be done, or nothing while that is not possible yet.
std::function<void()> deed_of(const QStringList& words) {
    const QString& verb = words.constFirst();
    const QString name = words.value(1);
    if (verb == QLatin1String("trigger")) {
        if (auto* action = find<QAction>(name)) return [action] { action->trigger(); };
    } else if (verb == QLatin1String("click")) {
        if (auto* button = find<QAbstractButton>(name)) return [button] { button->click(); };
    } else if (verb == QLatin1String("pick")) {
        auto* list = find<QListWidget>(name);
        const int row = words.value(2).toInt();
        if (list && row < list->count()) return [list, row] { list->setCurrentRow(row); };
    } else if (verb == QLatin1String("type")) {
        if (auto* box = find<QLineEdit>(name))
            return [box, words] { box->setText(words.value(2)); };
    } else if (verb == QLatin1String("choose")) {
        const int row = words.value(2).toInt();
        if (auto* list = find<QComboBox>(name))
            return [list, row] {
                list->setCurrentIndex(row);
                Q_EMIT list->activated(row);
            };
    } else if (verb == QLatin1String("press")) {
        auto* box = in_front<QMessageBox>();
        const int button = QMetaEnum::fromType<QMessageBox::StandardButtons>().keyToValue(
            name.toLatin1().constData());
        if (auto* key = box ? box->button(QMessageBox::StandardButton(button)) : nullptr)
            return [key] { key->click(); };
    } else if (verb == QLatin1String("accept")) {
        if (auto* dialog = in_front<QDialog>()) return [dialog] { dialog->accept(); };
    } else if (verb == QLatin1String("print")) {
        if (auto* dialog = in_front<QPrintDialog>()) {
            return [dialog, name] {
                dialog->printer()->setOutputFormat(QPrinter::PdfFormat);
                dialog->printer()->setOutputFileName(name);
                dialog->done(QDialog::Accepted);
            };
        }
    } else if (verb == QLatin1String("file")) {
        if (auto* files = in_front<QFileDialog>()) {
            return [files, name] {
                files->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(name);
                static_cast<QDialog*>(files)->accept();
            };
        }
    }
    return {};
}

class Hand : public QObject {
  public:
    Hand() : orders_(STDIN_FILENO, QSocketNotifier::Read) {
        connect(&orders_, &QSocketNotifier::activated, this, [this] { read(); });
        look_again();
    }

  private:
    void read() {
        QByteArray block(4096, ' ');
        const ssize_t got = ::read(STDIN_FILENO, block.data(), std::size_t(block.size()));
        if (got <= 0) return orders_.setEnabled(false);
        text_ += block.first(got);
    }

    /// Anew for each order: a deed may not return before the next one is done, as with a box.
    void look_again() {
        QTimer::singleShot(kLookAgain, this, [this] { look(); });
    }

    void look() {
        look_again();
        const qsizetype end = text_.indexOf('\n');
        if (end < 0 || !qApp) return;
        const auto deed = deed_of(QString::fromUtf8(text_.first(end)).split(u' '));
        if (!deed) return;
        say(text_.first(end));
        text_.remove(0, end + 1);
        ++running_;
        deed();
        --running_;
        if (running_ == 0 && text_.isEmpty()) say("ready");
    }

    static void say(const QByteArray& text) {
        const QByteArray line = text + '\n';
        static_cast<void>(!::write(STDOUT_FILENO, line.constData(), std::size_t(line.size())));
    }

    QSocketNotifier orders_;
    QByteArray text_;
    int running_ = 0;
};

}  // namespace

class HandPlugin : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "hand.json")
  public:
    QObject* create(const QString&, const QString&) override { return new Hand; }
};

}  // namespace m47

#include "hand.moc"
