#pragma once

#include "MessageSink.h"

#include <QStringList>

#include <deque>
#include <functional>

class QDialog;

// Takes the user's part while a dialog runs modally: it may fill the dialog's controls,
// press its buttons, run nested dialogs, and answers what the user would end with.
class ModalScript {
public:
    virtual ~ModalScript() = default;
    // kIdOk presses OK (the dialog's accept()), kIdCancel presses Cancel (reject());
    // any other answer leaves the dialog as the script left it.
    virtual int run(QDialog& dialog) = 0;
};

// The one way a dialog runs modally. The dialog is shown first, so that its start-up
// (done on its first show) runs as it would for a user and may end the dialog at once;
// then a user, or the script when one is set, works with it until it is finished.
class ModalRunner {
public:
    // kIdOk when the dialog was accepted, kIdCancel otherwise.
    static int Run(QDialog& dialog);
    // Null restores the user.
    static void SetScript(ModalScript* script);
    static ModalScript* Script();
};

// A script for tests: one step per dialog, taken from the front in the order the
// dialogs run, nested ones included. It is the runner's script while it lives.
class QueuedModalScript : public ModalScript {
public:
    using Step = std::function<int(QDialog& dialog)>;

    QueuedModalScript();
    ~QueuedModalScript() override;
    QueuedModalScript(const QueuedModalScript&) = delete;
    QueuedModalScript& operator=(const QueuedModalScript&) = delete;

    void push(Step step);
    // A step that only ends the dialog with this answer.
    void pushAnswer(int answer);
    int run(QDialog& dialog) override;

    bool done() const { return m_steps.empty(); }
    // Class names of the dialogs run, in order; a dialog with no step left is
    // cancelled and counted in unexpected.
    QStringList seen;
    int unexpected = 0;

private:
    std::deque<Step> m_steps;
    ModalScript* m_previous = nullptr;
};
