// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractButton>
#include <QAction>
#include <QHash>
#include <QMainWindow>
#include <QToolBar>
#include <functional>
#include <type_traits>

#include "joints.h"
#include "key_words.h"

namespace m47 {

/// What all screens of the main window have in common: how a handler is run, a key of the toolbar
/// finds its work, and the screen is left.
class Screen : public QMainWindow {
    Q_OBJECT
  public:
    explicit Screen(QWidget* parent = nullptr);

    /// Loads the screen and opens it to the keyboard; run once, when it is there and visible.
    void load();
    /// Prepares the screen, a part of load().
    virtual void Form_Load() = 0;
    /// Run each time the screen comes to the front.
    virtual void Form_Activate() {}
    /// False where the user, who has been asked, wants to stay: the program does not end then.
    virtual bool may_be_left() { return true; }

    /// Whether the keys of the toolbar have words under them.
    void show_words(bool wanted);

    /// A click on the toolbar key `key`; one without work does nothing.
    void toolbar_ButtonClick(const QString& key);

  Q_SIGNALS:
    /// The entry or button "&Exit": the screen asks to be closed.
    void exit_asked();
    /// A key of the toolbar that has no work was clicked; `caption` is what its tooltip says.
    void no_work(const QString& caption);

  protected:
    /// Runs `body` as run_handler() does, by the name `name`, between taking what stands in the
    /// joined controls and showing what became of it.
    virtual void handle(const char* name, const std::function<void()>& body);

    /// Runs `body`, which takes the argument of `signal` or none, as the handler `name`.
    template <class Sender, class Signal, class Body>
    void when(Sender* sender, Signal signal, const char* name, Body body) {
        if constexpr (std::is_invocable_v<Body>)
            connect(sender, signal, this, [this, name, body] { handle(name, body); });
        else
            connect(sender, signal, this,
                    [this, name, body](auto argument) { handle(name, [&] { body(argument); }); });
    }

    /// What a click on `key` of the toolbar does.
    void add_key(const QAction* key, const std::function<void()>& work);

    /// Which control shows which value of the rules.
    Joints& joints() { return joints_; }

    // To be called once the form is set up.
    void take_toolbar(QToolBar* bar);
    void take_exit(QAction* exit);
    void take_exit(QAbstractButton* exit);
    /// No list of the screen changes because the wheel passes over it.
    void guard_lists();

  private:
    /// What has no room in a low window is scrolled to.
    void let_body_scroll();

    Joints joints_;
    QHash<QString, std::function<void()>> keys_;
    QByteArray toolbar_handler_;
    KeyWords* words_ = nullptr;
};

}  // namespace m47
