#pragma once

#include "ModDB.h"

#include <QList>
#include <QWidget>

#include <functional>

class CModuleTree;
class QLineEdit;
class QStackedWidget;
class QTreeWidget;
class QTreeWidgetItem;

// A search field above the module tree. While it holds text, a list of the modules
// whose texts hold it stands in for the tree; choosing one walks the tree there as a
// user would and ends the search. Return and the cancel key stay with the search, so
// that the dialog around it neither confirms nor closes.
class CModuleSearch : public QWidget {
    Q_OBJECT

public:
    // Control numbers, free in both dialogs that hold the search.
    enum Control { kIdField = 250, kIdMatches = 251 };
    // More would only make the list longer than anyone reads; the user types on.
    static constexpr int kMatchLimit = 200;

    // Takes the tree into its own layout, below the field.
    explicit CModuleSearch(CModuleTree* tree, QWidget* parent = nullptr);

    QLineEdit& Field() { return *m_field; }
    QTreeWidget& Matches() { return *m_matches; }
    void Clear();

    // The owner's way to a chosen module: true when the selection went there. Without
    // one the module's catalog is selected in the tree. A refused walk keeps the search.
    std::function<bool(const ModDB::ModuleMatch& match)> walkTo;

signals:
    // A module was chosen and the search ended; the tree shows it.
    void moduleChosen();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void OnTextChanged(const QString& text);
    void ShowMatches(const QString& fragment);
    void MoveCurrent(int step);
    void ChooseCurrent();
    void Choose(QTreeWidgetItem* row);
    void RevealSelection();
    // The keys of the field and of the list of matches; true when the search took it.
    bool OnKey(const QObject* watched, int key);

    CModuleTree* m_tree;
    QLineEdit* m_field;
    QStackedWidget* m_stack;
    QTreeWidget* m_matches;
    QList<ModDB::ModuleMatch> m_found;
};
