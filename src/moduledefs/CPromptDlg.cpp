#include "CPromptDlg.h"

#include "CMScrollListBox.h"
#include "DialogControls.h"
#include "HostServices.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

// The row of the selected item; -1 when nothing is selected.
int SelectedRow(const CMScrollListBox* list) {
    const QList<QListWidgetItem*> selected = list->selectedItems();
    return selected.isEmpty() ? -1 : list->row(selected.first());
}

}  // namespace

CPromptDlg::CPromptDlg(QWidget* parent)
    : HelpDialog(parent, QStringLiteral("plc_mod_prompts")),
      m_lstLabels(new CMScrollListBox(this)),
      m_lstPrompts(new CMScrollListBox(this)),
      m_edtEntry(new QLineEdit(this)) {
    setWindowTitle(tr("Prompts"));
    SetControlId(m_lstLabels, kIdLabels);
    SetControlId(m_lstPrompts, kIdPrompts);
    SetControlId(m_edtEntry, kIdEntry);
    auto* set = new QPushButton(tr("&Set"), this);
    auto* clear = new QPushButton(tr("C&lear"), this);
    SetControlId(set, kIdSet);
    SetControlId(clear, kIdClear);
    for (CMScrollListBox* list : {m_lstLabels, m_lstPrompts}) {
        list->setSelectionMode(QAbstractItemView::SingleSelection);
        list->setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
        connect(list, &CMScrollListBox::scrolled, this, &CPromptDlg::FollowScroll);
    }
    connect(m_lstLabels, &QListWidget::itemSelectionChanged, this,
            [this] { FollowSelection(m_lstLabels, m_lstPrompts); });
    connect(m_lstPrompts, &QListWidget::itemSelectionChanged, this,
            [this] { FollowSelection(m_lstPrompts, m_lstLabels); });
    connect(set, &QPushButton::clicked, this, &CPromptDlg::OnSet);
    connect(clear, &QPushButton::clicked, this, &CPromptDlg::OnClear);

    auto* buttons = new QDialogButtonBox(
        QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Help, this);
    SetControlId(buttons->button(QDialogButtonBox::Ok), kIdOk);
    SetControlId(buttons->button(QDialogButtonBox::Cancel), kIdCancel);
    SetControlId(buttons->button(QDialogButtonBox::Help), kIdHelp);
    connect(buttons, &QDialogButtonBox::accepted, this, &CPromptDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CPromptDlg::reject);
    connect(buttons, &QDialogButtonBox::helpRequested, this, &CPromptDlg::ShowHelp);

    auto* grid = new QGridLayout;
    grid->addWidget(new QLabel(tr("Placeholder"), this), 0, 0);
    grid->addWidget(new QLabel(tr("Prompt"), this), 0, 1);
    grid->addWidget(m_lstLabels, 1, 0);
    grid->addWidget(m_lstPrompts, 1, 1);
    grid->setColumnStretch(1, 1);
    auto* entry = new QHBoxLayout;
    entry->addWidget(m_edtEntry, 1);
    entry->addWidget(set);
    entry->addWidget(clear);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addWidget(new QLabel(tr("New text of the chosen prompt:"), this));
    layout->addLayout(entry);
    layout->addWidget(buttons);
    setMinimumWidth(ScaledX(360));
}

void CPromptDlg::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!m_bInited) {
        m_bInited = true;
        OnInitDialog();
    }
}

void CPromptDlg::OnInitDialog() {
    for (int i = 0; i < m_aPrompts.size(); ++i) {
        m_lstLabels->addItem(QStringLiteral("%%%1").arg(i + 1));
        m_lstPrompts->addItem(m_aPrompts[i]);
    }
}

void CPromptDlg::OnSet() {
    m_strEntry = m_edtEntry->text();
    if (ReplaceSelectedPrompt(m_strEntry)) {
        m_strEntry.clear();
        m_edtEntry->setText(m_strEntry);
    }
}

void CPromptDlg::OnClear() {
    ReplaceSelectedPrompt(QString());
}

bool CPromptDlg::ReplaceSelectedPrompt(const QString& text) {
    const int row = SelectedRow(m_lstPrompts);
    if (row < 0) {
        return false;
    }
    m_lstPrompts->item(row)->setText(text);
    return true;
}

void CPromptDlg::FollowSelection(CMScrollListBox* from, CMScrollListBox* to) {
    const int row = SelectedRow(from);
    if (row >= 0 && row != SelectedRow(to)) {
        to->setCurrentRow(row);
    }
}

void CPromptDlg::FollowScroll(int topIndex) {
    for (CMScrollListBox* list : {m_lstLabels, m_lstPrompts}) {
        QListWidgetItem* item = list->item(topIndex);
        if (item && list->TopIndex() != topIndex) {
            list->scrollToItem(item, QAbstractItemView::PositionAtTop);
        }
    }
}

void CPromptDlg::accept() {
    m_strEntry = m_edtEntry->text();
    m_aPrompts.clear();
    for (int i = 0; i < m_lstLabels->count(); ++i) {
        const QListWidgetItem* prompt = m_lstPrompts->item(i);
        m_aPrompts.append(prompt ? prompt->text() : QString());
    }
    QDialog::accept();
}
