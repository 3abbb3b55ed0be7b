#include "ModalRunner.h"

#include <QDialog>
#include <QEventLoop>

namespace {
ModalScript* g_script = nullptr;

int AnswerOf(const QDialog& dialog) {
    return dialog.result() == QDialog::Accepted ? kIdOk : kIdCancel;
}

// What the script ended with, applied as the user's last press.
void Apply(QDialog& dialog, int answer) {
    if (answer == kIdOk) {
        dialog.accept();
    } else if (answer == kIdCancel) {
        dialog.reject();
    }
}
}  // namespace

// QDialog::exec() would wait forever for a dialog that ends itself while it is being
// shown, so the loop runs only while the dialog is still open.
int ModalRunner::Run(QDialog& dialog) {
    bool finished = false;
    QEventLoop loop;
    const auto connection = QObject::connect(&dialog, &QDialog::finished, &loop, [&] {
        finished = true;
        loop.quit();
    });
    dialog.setAttribute(Qt::WA_ShowModal, true);
    dialog.setResult(QDialog::Rejected);
    dialog.show();
    if (!finished && g_script) {
        Apply(dialog, g_script->run(dialog));
        if (!finished) {
            dialog.QDialog::done(QDialog::Rejected);  // the user closes the window
        }
    } else if (!finished) {
        loop.exec(QEventLoop::DialogExec);
    }
    QObject::disconnect(connection);
    return AnswerOf(dialog);
}

void ModalRunner::SetScript(ModalScript* script) {
    g_script = script;
}

ModalScript* ModalRunner::Script() {
    return g_script;
}

QueuedModalScript::QueuedModalScript() : m_previous(ModalRunner::Script()) {
    ModalRunner::SetScript(this);
}

QueuedModalScript::~QueuedModalScript() {
    ModalRunner::SetScript(m_previous);
}

void QueuedModalScript::push(Step step) {
    m_steps.push_back(std::move(step));
}

void QueuedModalScript::pushAnswer(int answer) {
    push([answer](QDialog&) { return answer; });
}

int QueuedModalScript::run(QDialog& dialog) {
    seen.append(QString::fromLatin1(dialog.metaObject()->className()));
    if (m_steps.empty()) {
        ++unexpected;
        return kIdCancel;
    }
    // Taken off before it runs, so that a dialog it opens gets the next step.
    const Step step = std::move(m_steps.front());
    m_steps.pop_front();
    return step(dialog);
}
